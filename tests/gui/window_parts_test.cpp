// Parts of the main window that need no window: details, failed starts, filters, calls to the
// interface thread.

#include <QApplication>
#include <QFileDialog>
#include <QHeaderView>
#include <QTemporaryFile>
#include <QTest>
#include <QTreeView>
#include <array>
#include <atomic>
#include <thread>

#include "shell/desktop.h"
#include "shell/details.h"
#include "shell/interface_calls.h"
#include "shell/sections/x_container.h"
#include "shell/toolkit_texts.h"

namespace clipfix {
namespace {

QStringList ValuesOf(JobState& state) {
    QStringList values;
    for (const DetailRow& row : MakeDetails(state, nullptr)) {
        values << QString::fromStdString(row.value);
    }
    return values;
}

class WindowPartsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void ANameOf30CharactersStandsWholeAndOneOf31IsCut() {
        JobState state;
        state.g_strCorruptName = std::string(30, 'n');
        QCOMPARE(ValuesOf(state)[0], QStringLiteral(": ") + QString(30, QLatin1Char('n')));
        state.g_strCorruptName = std::string(31, 'n');
        QCOMPARE(ValuesOf(state)[0],
                 QStringLiteral(": ") + QString(30, QLatin1Char('n')) + QStringLiteral("..."));
    }

    // It is meant: whoever reads the name later finds the display form.
    void TheNameIsOverwrittenByItsDisplayForm() {
        JobState state;
        state.g_strCorruptName = "film.avi";
        (void)ValuesOf(state);
        QCOMPARE(state.g_strCorruptName, std::string(": film.avi"));
        QCOMPARE(ValuesOf(state)[0], QStringLiteral(": : film.avi"));
    }

    void ValuesOfAnAviJob() {
        JobState state;
        state.g_strCorruptName = "film.avi";
        state.g_ullAviRiffBody = 3 * 1048576 / 2;
        state.g_nAviVideoChunks = 93750;
        state.g_dwAviMicroSecPerFrame = 40999;
        state.g_szAviCodec = std::string("XVID\0junk", 9);
        // 93750 chunks of 40 ms are 3750 s.
        QCOMPARE(ValuesOf(state),
                 QStringList({QStringLiteral(": film.avi"), QStringLiteral(": 1.50 MB"),
                              QStringLiteral(": 1"), QStringLiteral(": XVID"),
                              QStringLiteral(": 40"), QStringLiteral(": 01:02:30")}));
        state.g_nAviAudioChunks = 7;
        state.g_ullAviRiffBody = 1073741824;
        QCOMPARE(ValuesOf(state)[2], QStringLiteral(": 2"));
        QCOMPARE(ValuesOf(state)[1], QStringLiteral(": 1.00 GB"));
    }

    void AnAllZeroDurationOfAnAviIsShownByLetters() {
        JobState state;
        QCOMPARE(ValuesOf(state)[5], QStringLiteral(": xx:xx:xx"));
        QCOMPARE(ValuesOf(state)[2], QStringLiteral(": 0"));
    }

    void ValuesOfAMovJobWithoutAMovie() {
        JobState state;
        state.g_bMovJob = 1;
        state.g_strCorruptName = "film.mp4";
        state.g_strVideoCoderFormat = "HVC1_VIDEO_CODER_FORMAT";
        state.g_liOutputSize = 1023LL * 1048576;
        QCOMPARE(ValuesOf(state),
                 QStringList({QStringLiteral(": film.mp4"), QStringLiteral(": 1023.00 MB"),
                              QStringLiteral(": 0"), QStringLiteral(": HVC1"),
                              QStringLiteral(": 0.00 fps"), QStringLiteral(": 00:00:00")}));
        state.g_liOutputSize = 1024LL * 1048576;
        QCOMPARE(ValuesOf(state)[1], QStringLiteral(": 1.00 GB"));
    }

    void TheFilterKeepsItsMissingDot() {
        QVERIFY(QString::fromLatin1(kVideoFilter).contains(QStringLiteral(";*divx;")));
        QCOMPARE(ToolkitFilter(QString::fromLatin1(kVideoFilter)),
                 QStringLiteral("Video Files (*.avi *divx *.xvid *.mov *.mp4)"));
        QCOMPARE(ToolkitFilter(QString::fromLatin1(kReferenceFilter)),
                 QStringLiteral("Mov Files (*.mov *.mp4)"));
        QCOMPARE(ToolkitFilter(QStringLiteral("Movie File(*.mov)|*.mov||")),
                 QStringLiteral("Movie File (*.mov)"));
    }

    void TheToolkitsOwnWordsFollowTheLanguage() {
        const std::array<std::pair<const char*, const char*>, 6> words{{{"German", "Abbrechen"},
                                                                        {"French", "Annuler"},
                                                                        {"Italian", "Annulla"},
                                                                        {"Portuguese", "Cancelar"},
                                                                        {"Spanish", "Cancelar"},
                                                                        {"English", "Cancel"}}};
        ToolkitTexts texts;
        for (const auto& [language, cancel] : words) {
            texts.Use(language);
            QVERIFY2(QCoreApplication::translate("QPlatformTheme", "Cancel") ==
                         QString::fromUtf8(cancel),
                     "the package qt6-translations-l10n is missing");
        }
        texts.Use("German");
        texts.Use("Klingon");
        QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Cancel"));
    }

    void TheToolkitsFileDialogHasRoomForItsColumns() {
        QFileDialog dialog;
        dialog.setOption(QFileDialog::DontUseNativeDialog);
        MakeRoom(dialog);
        const auto* header = dialog.findChild<QTreeView*>()->header();
        QCOMPARE(header->sectionResizeMode(0), QHeaderView::Stretch);
        QCOMPARE(header->sectionResizeMode(3), QHeaderView::ResizeToContents);
        QVERIFY(dialog.width() >= 800);
    }

    void EachCodeOfAFailedStartHasItsText() {
        QCOMPARE(FailedStartText(0),
                 QStringLiteral("The operating system is out of memory or resources."));
        QCOMPARE(FailedStartText(3), QStringLiteral("The specified path was not found."));
        QCOMPARE(FailedStartText(5), QStringLiteral("The operating system denied access to the "
                                                    "specified file."));
        QCOMPARE(FailedStartText(32), QStringLiteral("The specified DLL was not found."));
        for (const int code : {2, 8, 11, 26, 27, 28, 29, 30, 31}) {
            QVERIFY(!FailedStartText(code).isEmpty());
        }
        QVERIFY(FailedStartText(1).isEmpty());
    }

    void ARealStartTellsWhyItFailed() {
        SystemDesktop desktop;
        QCOMPARE(desktop.StartProgram("/nowhere/at/all/kc-mplayer", {}, "/"), 3);
        QCOMPARE(desktop.StartProgram("/tmp/there-is-no-such-program", {}, "/"), 2);
        QTemporaryFile noProgram;
        QVERIFY(noProgram.open());
        QCOMPARE(desktop.StartProgram(noProgram.fileName().toStdString(), {}, "/"), 5);
        QCOMPARE(desktop.StartProgram("/bin/true", {}, "/"), kStarted);
        QCOMPARE(desktop.Open(QUrl::fromLocalFile(QStringLiteral("/nowhere/page.html"))), 2);
    }

    void ACallRunsOnTheInterfaceThreadAndIsWaitedFor() {
        InterfaceCalls calls;
        std::atomic<bool> ended{false};
        const QThread* ranOn = nullptr;
        std::thread worker([&] {
            QVERIFY(calls.Run([&] { ranOn = QThread::currentThread(); }));
            ended = true;
        });
        QTRY_VERIFY(ended.load());
        worker.join();
        QCOMPARE(ranOn, QThread::currentThread());
    }

    void LeavingLetsEveryCallerGoWithoutRunningItsCall() {
        InterfaceCalls calls;
        std::atomic<int> givenUp{0};
        std::atomic<bool> ran{false};
        const auto call = [&] { givenUp += calls.Run([&] { ran = true; }) ? 0 : 1; };
        std::thread first(call);
        std::thread second(call);
        QTest::qSleep(50);  // both wait, as far as a test can tell; either way is to end
        calls.Leave();
        first.join();
        second.join();
        call();
        QCoreApplication::processEvents();
        QCOMPARE(givenUp.load(), 3);
        QVERIFY(!ran.load());
    }
};

}  // namespace
}  // namespace clipfix

QTEST_MAIN(clipfix::WindowPartsTest)

#include "window_parts_test.moc"
