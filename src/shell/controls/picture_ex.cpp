#include "shell/controls/picture_ex.h"

#include <QPainter>
#include <QSvgRenderer>
#include <utility>

#include "platform/crash_file.h"
#include "shell/interface_thread.h"
#include "shell/skin/pictures.h"

namespace clipfix {

namespace {

// One frame of an animated picture: the part "still", and the part "turning" turned about the
// middle of the picture.
QImage MakeFrame(QSvgRenderer& renderer, QSize pixels, int frame) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QSizeF whole = renderer.viewBoxF().size();
    painter.scale(pixels.width() / whole.width(), pixels.height() / whole.height());
    const QString still = QStringLiteral("still");
    const QString turning = QStringLiteral("turning");
    renderer.render(&painter, still, renderer.boundsOnElement(still));
    painter.translate(whole.width() / 2, whole.height() / 2);
    painter.rotate(360.0 * frame / CPictureEx::kFrames);
    painter.translate(-whole.width() / 2, -whole.height() / 2);
    renderer.render(&painter, turning, renderer.boundsOnElement(turning));
    return image;
}

}  // namespace

CPictureEx::CPictureEx(int id, QWidget* parent) : QWidget(parent) {
    setObjectName(QString::number(id));
    timer_.setInterval(kFrameMilliseconds);
    connect(&timer_, &QTimer::timeout, this, &CPictureEx::OnTimer);
}

CPictureEx::~CPictureEx() {
    EndMaking();
}

bool CPictureEx::Load(int picture) {
    file_ = skin::PictureFile(picture);
    frames_.clear();
    frame_ = 0;
    if (file_.isEmpty()) {
        EndMaking();
        return false;
    }
    MakeFrames();
    return true;
}

void CPictureEx::Start() {
    timer_.start();
}

void CPictureEx::Stop() {
    timer_.stop();
}

void CPictureEx::OnTimer() {
    frame_ = (frame_ + 1) % kFrames;
    update();
}

void CPictureEx::MakeFrames() {
    EndMaking();
    if (file_.isEmpty() || size().isEmpty()) {
        return;
    }
    framesScale_ = devicePixelRatioF();
    stopMaking_ = false;
    maker_ = std::thread(
        [this, file = file_, pixels = (QSizeF(size()) * framesScale_).toSize(), making = making_] {
            const platform::CrashStack crashStack;
            QSvgRenderer renderer(file);
            std::vector<QImage> frames;
            for (int i = 0; i < kFrames && !stopMaking_; ++i) {
                frames.push_back(MakeFrame(renderer, pixels, i));
            }
            // Runs on the interface thread, and not at all when the picture has gone by then.
            PostTo(*this, [this, frames = std::move(frames), making]() mutable {
                if (making == making_) {
                    frames_ = std::move(frames);
                    update();
                }
            });
        });
}

void CPictureEx::EndMaking() {
    ++making_;
    stopMaking_ = true;
    if (maker_.joinable()) {
        maker_.join();
    }
}

void CPictureEx::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    MakeFrames();
}

void CPictureEx::paintEvent(QPaintEvent* /*event*/) {
    if (!qFuzzyCompare(framesScale_, devicePixelRatioF())) {
        MakeFrames();
    }
    if (frames_.empty()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(rect(), frames_[static_cast<std::size_t>(frame_)]);
}

}  // namespace clipfix
