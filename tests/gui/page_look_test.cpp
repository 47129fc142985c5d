// What the eye is led to: one filled button on a page, and the place of a drop while a file is
// dragged over the window.

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>

#include "gui/page_walk.h"
#include "shell/skin/pictures.h"

namespace clipfix {
namespace {

QStringList FilledButtons(const CMainFrame& frame) {
    QStringList filled;
    for (const auto* button : frame.findChildren<const CXCmdBtn*>()) {
        const int face = button->CurrentFace();
        if (button->isVisible() && (face == skin::kCommandNormal || face == skin::kCommandHover)) {
            filled << button->objectName();
        }
    }
    return filled;
}

class PageLookTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void EachPageHasAtMostOneFilledButtonWhichIsTheNextStep() {
        const QMap<QString, QString> awaited{
            {QStringLiteral("60-home"), QStringLiteral("333")},
            {QStringLiteral("61-chosen-mov"), QStringLiteral("335")},
            {QStringLiteral("62-need-reference"), QStringLiteral("336")},
            {QStringLiteral("63-reference-chosen"), QStringLiteral("335")},
            {QStringLiteral("64-chosen-avi"), QStringLiteral("335")},
            {QStringLiteral("65-repairing"), QString()},
            {QStringLiteral("66-paused"), QString()},
            {QStringLiteral("67-finished"), QStringLiteral("340")},
            {QStringLiteral("68-saving"), QString()}};
        test::WindowRig rig;
        int pages = 0;
        test::WalkPages(rig, test::MakeWalkedFilms(rig, QStringLiteral("film")),
                        [&](const char* page) {
                            ++pages;
                            QCOMPARE(FilledButtons(*rig.frame).join(QLatin1Char(' ')),
                                     awaited.value(QLatin1String(page)));
                        });
        QCOMPARE(pages, awaited.size());
    }

    void TheReferenceIsTheNextStepAgainAfterACancelledDialogAndInTheNextJob() {
        test::WindowRig rig;
        const test::WalkedFilms films = test::MakeWalkedFilms(rig, QStringLiteral("film"));
        for (int job = 0; job < 2; ++job) {
            rig.AddFile(films.movie);
            rig.Click(335);
            QVERIFY(rig.ComesTo(test::page::kNeedReference));
            QCOMPARE(FilledButtons(*rig.frame), QStringList(QStringLiteral("336")));
            rig.ChooseReference(films.movie);
            rig.Click(336);
            QVERIFY(rig.ComesTo(test::page::kNeedReference));
            QCOMPARE(FilledButtons(*rig.frame), QStringList(QStringLiteral("336")));
            rig.ChooseReference(films.movie);
            QCOMPARE(FilledButtons(*rig.frame), QStringList(QStringLiteral("335")));
            rig.Click(347);
        }
    }

    void AFileOverTheWindowShowsWhereItMayBeDropped() {
        test::WindowRig rig;
        const test::WalkedFilms films = test::MakeWalkedFilms(rig, QStringLiteral("film"));
        const auto enter = [&](const QString& file) {
            QMimeData data;
            data.setUrls({QUrl::fromLocalFile(file)});
            QDragEnterEvent event(QPoint(200, 200), Qt::CopyAction, &data, Qt::LeftButton, {});
            QApplication::sendEvent(rig.frame.get(), &event);
        };
        const CXContainer& container = rig.frame->Container();
        const QImage bare = rig.frame->grab().toImage();
        enter(QStringLiteral(CLIPFIX_EXAMPLES_FOLDER "/README.md"));
        QVERIFY(!container.ShowsDropTarget());
        enter(films.avi);
        QVERIFY(container.ShowsDropTarget());
        QVERIFY(rig.frame->grab().toImage() != bare);
        QDragLeaveEvent leave;
        QApplication::sendEvent(rig.frame.get(), &leave);
        QVERIFY(!container.ShowsDropTarget());
        enter(films.avi);
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(films.avi)});
        QDropEvent drop(QPointF(200, 200), Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(rig.frame.get(), &drop);
        QVERIFY(!container.ShowsDropTarget());
        QVERIFY(rig.ComesTo(test::page::kChosenAvi));
    }
};

}  // namespace
}  // namespace clipfix

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    clipfix::test::PrepareLook(application);
    clipfix::PageLookTest looks;
    return QTest::qExec(&looks, argc, argv);
}

#include "page_look_test.moc"
