// A small window at the bottom of the screen that shows a file as a folder does, so that it can be
// dragged onto another window. It stays until it is ended, since whoever takes the file asks for
// its name after it was let go.
//
//     file_to_drag FILE

#include <QApplication>
#include <QDrag>
#include <QFileInfo>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QScreen>
#include <QUrl>
#include <memory>

namespace {

class FileToDrag : public QLabel {
  public:
    explicit FileToDrag(const QString& file) : QLabel(QFileInfo(file).fileName()), file_(file) {
        setWindowFlag(Qt::FramelessWindowHint);
        setMargin(12);
        adjustSize();
        move(screen()->availableGeometry().bottomLeft() - QPoint(0, height()));
    }

  protected:
    void mouseMoveEvent(QMouseEvent* event) override {
        if (!event->buttons().testFlag(Qt::LeftButton)) {
            return;
        }
        auto file = std::make_unique<QMimeData>();
        file->setUrls({QUrl::fromLocalFile(QFileInfo(file_).absoluteFilePath())});
        auto* drag = std::make_unique<QDrag>(this).release();  // deletes itself
        drag->setMimeData(file.release());
        (void)drag->exec(Qt::CopyAction);
    }

  private:
    QString file_;
};

}  // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    FileToDrag file(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    file.show();
    return QApplication::exec();
}
