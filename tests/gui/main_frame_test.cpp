#include "shell/main_frame.h"

#include <QAccessible>
#include <QApplication>
#include <QFile>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "gui/gui_support.h"
#include "shell/message_dlg.h"
#include "shell/skin/pictures.h"

namespace clipfix {
namespace {

class MainFrameTest : public QObject {
    Q_OBJECT

    JobState state_;
    test::LanguageTexts english_{QStringLiteral("English")};

    // Answers the next message window with the command `id`, and keeps its texts.
    void AnswerNextDialogWith(int id) {
        QTimer::singleShot(50, this, [this, id] {
            auto* dialog = qobject_cast<CMessageDlg*>(QApplication::activeModalWidget());
            QVERIFY(dialog != nullptr);
            askedKind_ = dialog->Kind();
            askedText_ = dialog->findChild<CXStatic*>(QStringLiteral("61266"))->text();
            askedTitle_ = dialog->findChild<CXStatic*>(QStringLiteral("61265"))->text();
            dialog->OnCommand(id);
        });
    }
    int askedKind_ = 0;
    QString askedText_;
    QString askedTitle_;

  private Q_SLOTS:
    void ItHasItsSizeAndNoCaptionBar() {
        CMainFrame frame(state_, english_.Get(), {});
        QVERIFY(frame.Create());
        QCOMPARE(CMainFrame::kFirstSize, QSize(1025, 528));
        QCOMPARE(frame.size(), QSize(1025, 585));
        QCOMPARE(frame.windowTitle(), QStringLiteral("Kelvo Clipfix"));
        QVERIFY(frame.windowFlags().testFlag(Qt::FramelessWindowHint));
    }

    void ItsBarHasItsButtons() {
        CMainFrame frame(state_, english_.Get(), {});
        QVERIFY(frame.Create());
        for (const int id : {320, 321, 322, 325, 327, 330}) {
            auto* button = frame.findChild<CButtonST*>(QString::number(id));
            QVERIFY(button != nullptr);
            QVERIFY(!button->accessibleName().isEmpty());
            QVERIFY(button->geometry().bottom() < CMainFrame::kTitleBarHeight);
            QVERIFY(frame.rect().contains(button->geometry()));
        }
    }

    void CloseAsksAndStaysOnNo() {
        CMainFrame frame(state_, english_.Get(), {});
        QVERIFY(frame.Create());
        frame.show();
        AnswerNextDialogWith(344);
        QVERIFY(!frame.close());
        QVERIFY(frame.isVisible());
        QCOMPARE(askedKind_, 1);
        QCOMPARE(askedText_, english_.Word("IDS_CLOSE_DLG_MSG "));
        QCOMPARE(askedTitle_, english_.Word("IDS_CONFIRMATION"));
        QCOMPARE(state_.g_nMessageKind.load(), 0);
    }

    void CloseLeavesTheProcessWith0OnYes() {
        CMainFrame frame(state_, english_.Get(), {});
        QVERIFY(frame.Create());
        frame.show();
        QTimer::singleShot(0, this, [&] {
            AnswerNextDialogWith(343);
            frame.findChild<CButtonST*>(QStringLiteral("320"))->click();
        });
        QTimer::singleShot(5000, this, [] { QCoreApplication::exit(9); });
        QCOMPARE(QApplication::exec(), 0);
        QVERIFY(!frame.isVisible());
    }

    void MaximiseTakesTheWorkAreaAndRestoreComesBackToTheMiddle() {
        CMainFrame frame(state_, english_.Get(), {});
        QVERIFY(frame.Create());
        frame.show();
        auto* button = frame.findChild<CButtonST*>(QStringLiteral("322"));
        QCOMPARE(button->CurrentPicture(), skin::kMaximise);
        button->click();
        QVERIFY(frame.IsMaximisedByUs());
        QCOMPARE(frame.geometry(), frame.screen()->availableGeometry());
        QCOMPARE(button->CurrentPicture(), skin::kRestore);
        button->click();
        QVERIFY(!frame.IsMaximisedByUs());
        QCOMPARE(frame.size(), QSize(1025, 585));
        const QPoint apart =
            frame.geometry().center() - frame.screen()->availableGeometry().center();
        QVERIFY(apart.manhattanLength() <= 2);
        QCOMPARE(button->CurrentPicture(), skin::kMaximise);
    }

    void TheUpdaterIsStartedInTheBackground() {
        const QTemporaryDir folder;
        QFile updater(folder.filePath(QStringLiteral("kcupdate")));
        QVERIFY(updater.open(QIODevice::WriteOnly));
        updater.write("#!/bin/sh\necho \"$@\" > arguments.part && mv arguments.part arguments\n");
        updater.close();
        updater.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        CMainFrame frame(state_, english_.Get(), {.programFolder = folder.path().toStdString()});
        QVERIFY(frame.Create());
        QFile arguments(folder.filePath(QStringLiteral("arguments")));
        QTRY_VERIFY(arguments.exists());
        QVERIFY(arguments.open(QIODevice::ReadOnly));
        QCOMPARE(arguments.readAll(), QByteArray("/SilentCheck /NoIcon /NoUpdateSelf\n"));
    }

    void AMissingUpdaterChangesNothing() {
        const QTemporaryDir folder;
        CMainFrame frame(state_, english_.Get(), {.programFolder = folder.path().toStdString()});
        QVERIFY(frame.Create());
        QVERIFY(QApplication::activeModalWidget() == nullptr);
    }
};

}  // namespace
}  // namespace clipfix

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    clipfix::test::PrepareLook(application);
    clipfix::MainFrameTest frames;
    return QTest::qExec(&frames, argc, argv);
}

#include "main_frame_test.moc"
