// The whole job as a person does it in the window, on real small films: what stands on each page,
// what is told and asked, and what lies on the disk in the end.

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

#include "gui/job_media.h"
#include "gui/window_rig.h"
#include "job/state/job_paths.h"
#include "shell/message_dlg.h"

namespace clipfix {
namespace {

using test::WindowRig;
namespace page = test::page;
using enum JobControlId;

constexpr int kPatience = 20000;  // milliseconds
constexpr int kYes = CMessageDlg::kYes;
constexpr int kNo = CMessageDlg::kNo;
constexpr int kOk = CMessageDlg::kOk;

class JobFlowTest : public QObject {
    Q_OBJECT

    test::JobMedia media_;

    static bool HasEngineStanding(const WindowRig& rig) {
        const int before = rig.engines.Rounds();
        return QTest::qWaitFor([&] { return rig.engines.Rounds() > before; }, kPatience);
    }
    static QStringList DetailsOf(const WindowRig& rig) {
        QStringList rows;
        const auto* grid = rig.frame->Container().Find(DetailsGrid);
        for (int id = 61267; id <= 61278; ++id) {
            rows << grid->findChild<CXStatic*>(QString::number(id))->text();
        }
        return rows;
    }

  private Q_SLOTS:
    void HomeStandsAtTheStart() {
        const WindowRig rig;
        QVERIFY(rig.ComesTo(page::kHome));
        QCOMPARE(rig.TextOf(Title), rig.Word("IDS_SELECT_VIDEO"));
        QCOMPARE(rig.TextOf(Hint), rig.Word("IDS_CLICK_ADD"));
    }

    void AnAviIsRepairedWithoutAReferenceAndSaved() {
        WindowRig rig;
        rig.engines.Hold();
        rig.AddFile(media_.Avi());
        QVERIFY(rig.ComesTo(page::kChosenAvi));
        QVERIFY(rig.TextOf(PathLabel).startsWith(QStringLiteral("Path: ")));
        QCOMPARE(rig.state.g_bMovJob.load(), 0);
        QCOMPARE(rig.state.g_bAviContinue.load(), 1);
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kRepairingAvi));
        QCOMPARE(rig.TextOf(Title), rig.Word("IDS_REPAIRING_VIDEO"));
        QCOMPARE(rig.TextOf(StatusText), rig.Word("IDS_PLEASE_WAIT"));
        QCOMPARE(rig.TextOf(PercentText), QStringLiteral("0%"));
        rig.engines.LetGo();
        QVERIFY(rig.ComesTo(page::kFinished));
        QCOMPARE(rig.TextOf(Title), rig.Word("IDS_REPAIRED_DETAILS"));
        QVERIFY(QFile::exists(rig.WorkFile("Repaired.avi")));

        const QString destination = rig.work.filePath(QStringLiteral("saved.avi"));
        rig.desktop.filesToSave.push_back(destination.toStdString());
        rig.moveStands = true;
        rig.Click(340);
        QVERIFY(rig.ComesTo(page::kSaving));
        QCOMPARE(rig.TextOf(Title), rig.Word("IDS_SAVING_VIDEO"));
        QCOMPARE(rig.TextOf(StatusText), rig.Word("IDS_PLEASE_WAIT_SAVING"));
        QCOMPARE(rig.TextOf(PathLabel),
                 rig.Word("IDS_DESTINATION") + QStringLiteral(": ") +
                     QString::fromStdString(DisplayPath(destination.toStdString(), kDisplayLimit)));
        rig.AnswerNext(kOk);
        rig.moveStands = false;
        QVERIFY(rig.ComesTo(page::kHome));
        QCOMPARE(rig.Told(), QStringList(QStringLiteral("3 IDS_SAVE_COMPLETED")));
        QVERIFY(QFile::exists(destination));
        QVERIFY(!QFile::exists(rig.WorkFile("Repaired.avi")));
        QCOMPARE(rig.desktop.opened,
                 QStringList(QUrl::fromLocalFile(rig.work.path() + QLatin1Char('/')).toString()));
        QCOMPARE(rig.desktop.lastSave.filter, std::string("AVI File(*.avi)|*.avi||"));
    }

    void AFilmThatIsItsOwnReferenceGoesStraightOn() {
        WindowRig rig;
        rig.engines.Hold();
        rig.AddFile(media_.OwnReference());
        QVERIFY(rig.ComesTo(page::kChosenMov));
        QVERIFY(rig.TextOf(CorruptedLabel).startsWith(QStringLiteral("Corrupted File: ")));
        QCOMPARE(rig.TextOf(SelectedText), rig.Word("IDS_FILE_SELECTED"));
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kRepairingMov));
        QVERIFY(HasEngineStanding(rig));
        QCOMPARE(rig.TextOf(StatusText), QStringLiteral("Analyzing video file..."));
        rig.engines.LetGo();
        QVERIFY(rig.ComesTo(page::kFinished));
    }

    void AFilmWithoutAStructureAsksForAReference() {
        WindowRig rig;
        rig.engines.Hold();
        rig.AddFile(media_.Cut());
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kNeedReference));
        QCOMPARE(rig.TextOf(Title), rig.Word("IDS_SELECT_REFERNCE_HEADER"));
        QCOMPARE(rig.TextOf(ReferenceText), rig.Word("IDS_SELECT_REFERENCE"));
        auto* text = qobject_cast<CXStatic*>(rig.frame->Bottom().Find(ReferenceText));
        QCOMPARE(text->TextColour(), 0x0000FFU);
        rig.ChooseReference(media_.Healthy());
        QVERIFY(rig.ComesTo(page::kReferenceChosen));
        QVERIFY(rig.TextOf(ReferenceText).startsWith(QStringLiteral("Healthy File: ")));
        QCOMPARE(text->TextColour(), 0x4B4B4BU);
        QCOMPARE(rig.state.g_strCheckedPath, media_.Healthy().toStdString());
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kRepairingWithReference));
        rig.engines.LetGo();
        QVERIFY(rig.ComesTo(page::kFinished));
        QVERIFY(QFile::exists(rig.WorkFile("Repaired.mov")));
    }

    void ACancelledReferenceDialogAsksAgainAndDisablesRepair() {
        WindowRig rig;
        rig.AddFile(media_.Cut());
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kNeedReference));
        rig.ChooseReference(media_.Healthy());
        QVERIFY(rig.ComesTo(page::kReferenceChosen));
        rig.Click(336);
        QVERIFY(rig.ComesTo(page::kNeedReference));
        QCOMPARE(rig.TextOf(ReferenceText), rig.Word("IDS_SELECT_REFERENCE"));
        QVERIFY(rig.state.g_strReferencePath.empty());
        QCOMPARE(rig.desktop.filters.last(), QString::fromLatin1(kReferenceFilter));
    }

    void AReferenceThatCannotServeIsToldAndLeadsHome() {
        WindowRig rig;
        rig.AddFile(media_.Cut());
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kNeedReference));
        rig.ChooseReference(media_.Noise());
        rig.AnswerNext(kOk);
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kHome));
        QCOMPARE(rig.Told(), QStringList(QStringLiteral("4 IDS_UNHEALTHY_1")));
    }

    void PauseStopsTheWorkAndResumeLetsItGoOn() {
        WindowRig rig;
        rig.engines.Hold();
        rig.AddFile(media_.OwnReference());
        rig.Click(335);
        QVERIFY(HasEngineStanding(rig));
        rig.Click(337);
        QCOMPARE(rig.TextOf(Pause), rig.Word("IDS_RESUME"));
        QTest::qWait(100);
        const int rounds = rig.engines.Rounds();
        QTest::qWait(200);
        QCOMPARE(rig.engines.Rounds(), rounds);
        QVERIFY(rig.ComesTo(page::kRepairingMov));
        rig.Click(337);
        QCOMPARE(rig.TextOf(Pause), rig.Word("IDS_PAUSE"));
        QVERIFY(HasEngineStanding(rig));
        rig.engines.LetGo();
        QVERIFY(rig.ComesTo(page::kFinished));
    }

    void CancelAnsweredNoResumesAlsoAPausedJob() {
        WindowRig rig;
        rig.engines.Hold();
        rig.AddFile(media_.OwnReference());
        rig.Click(335);
        QVERIFY(HasEngineStanding(rig));
        rig.Click(337);
        rig.AnswerNext(kNo);
        rig.Click(334);
        QCOMPARE(rig.Told(), QStringList(QStringLiteral("2 IDS_CANCEL_DLG_MSG")));
        QCOMPARE(rig.TextOf(Pause), rig.Word("IDS_PAUSE"));
        QVERIFY(HasEngineStanding(rig));
        rig.engines.LetGo();
        QVERIFY(rig.ComesTo(page::kFinished));
    }

    void CancelAnsweredYesIsToldAndLeadsHome() {
        WindowRig rig;
        rig.engines.Hold();
        rig.AddFile(media_.OwnReference());
        rig.Click(335);
        QVERIFY(HasEngineStanding(rig));
        rig.AnswerNext(kYes);
        rig.AnswerNext(kOk);
        rig.Click(334);
        QVERIFY(rig.ComesTo(page::kHome));
        QCOMPARE(rig.Told(), QStringList({QStringLiteral("2 IDS_CANCEL_DLG_MSG"),
                                          QStringLiteral("3 IDS_REPAIR_ABORTED")}));
        QVERIFY(!QFile::exists(rig.WorkFile("Repaired.mov")));
    }

    // No note follows, and the worker waits for whatever dialog is closed next. That is meant.
    void ACancelledAviJobStandsUntilTheNextDialogIsClosed() {
        WindowRig rig;
        rig.engines.Hold();
        rig.AddFile(media_.Avi());
        rig.Click(335);
        QVERIFY(HasEngineStanding(rig));
        rig.AnswerNext(kYes);
        rig.Click(334);
        QTest::qWait(300);
        QVERIFY(rig.ComesTo(page::kRepairingAvi));
        rig.AnswerNext(kNo);
        rig.frame->close();
        QVERIFY(rig.ComesTo(page::kHome));
        QCOMPARE(rig.Told(), QStringList({QStringLiteral("2 IDS_CANCEL_DLG_MSG"),
                                          QStringLiteral("1 IDS_CLOSE_DLG_MSG")}));
    }

    void CloseAsksWhereNothingRunsAndRefusesWhereSomethingDoes() {
        WindowRig rig;
        const auto close = [&](int answer) {
            rig.AnswerNext(answer);
            rig.Click(320);
            return rig.Told().last();
        };
        const QString question = QStringLiteral("1 IDS_CLOSE_DLG_MSG");
        QCOMPARE(close(kNo), question);
        rig.AddFile(media_.OwnReference());
        QCOMPARE(close(kNo), question);
        rig.engines.Hold();
        rig.Click(335);
        QVERIFY(HasEngineStanding(rig));
        QCOMPARE(close(kOk), QStringLiteral("4 IDS_REPAIR_PROCESSING"));
        QVERIFY(HasEngineStanding(rig));
        rig.engines.LetGo();
        QVERIFY(rig.ComesTo(page::kFinished));
        QCOMPARE(close(kNo), question);
        QVERIFY(rig.ComesTo(page::kFinished));
        rig.moveStands = true;
        rig.desktop.filesToSave.push_back(rig.work.filePath("a.mov").toStdString());
        rig.Click(340);
        QVERIFY(rig.ComesTo(page::kSaving));
        QCOMPARE(close(kOk), QStringLiteral("4 IDS_SAVE_PROCESSING"));
        QVERIFY(rig.frame->isVisible());
        rig.AnswerNext(kOk);
        rig.moveStands = false;
        QVERIFY(rig.ComesTo(page::kHome));
    }

    void QuittingDeletesTheResultAndLeavesWith0() {
        WindowRig rig;
        rig.Repair(media_.OwnReference());
        QVERIFY(QFile::exists(rig.WorkFile("Repaired.mov")));
        rig.AnswerNext(kYes);
        QTimer::singleShot(0, rig.frame.get(), [&] { rig.Click(320); });
        QTimer::singleShot(kPatience, rig.frame.get(), [] { QCoreApplication::exit(9); });
        QCOMPARE(QApplication::exec(), 0);
        QVERIFY(!QFile::exists(rig.WorkFile("Repaired.mov")));
        QVERIFY(rig.desktop.playerClosings > 0);
    }

    void HomeLeavesARunningJobAloneAndDoesNothingDuringASave() {
        WindowRig rig;
        rig.engines.Hold();
        rig.AddFile(media_.OwnReference());
        rig.Click(335);
        QVERIFY(HasEngineStanding(rig));
        rig.AnswerNext(kOk);
        rig.Click(330);
        QCOMPARE(rig.Told(), QStringList(QStringLiteral("4 IDS_REPAIR_PROCESSING")));
        QVERIFY(HasEngineStanding(rig));
        QVERIFY(rig.ComesTo(page::kRepairingMov));
        rig.engines.LetGo();
        QVERIFY(rig.ComesTo(page::kFinished));
        rig.moveStands = true;
        rig.desktop.filesToSave.push_back(rig.work.filePath("a.mov").toStdString());
        rig.Click(340);
        QVERIFY(rig.ComesTo(page::kSaving));
        rig.Click(330);
        QVERIFY(rig.ComesTo(page::kSaving));
        QCOMPARE(rig.Told().size(), 1);
        rig.AnswerNext(kOk);
        rig.moveStands = false;
        QVERIFY(rig.ComesTo(page::kHome));
    }

    void HomeDeletesTheResultAndTheSectionsAreMadeAnewOnce() {
        WindowRig rig;
        rig.Repair(media_.OwnReference());
        const QPointer<CXContainer> first = &rig.frame->Container();
        rig.Click(338);
        QVERIFY(rig.ComesTo(page::kHome));
        QVERIFY(!QFile::exists(rig.WorkFile("Repaired.mov")));
        QTRY_VERIFY(first.isNull());
        const QPointer<CXContainer> second = &rig.frame->Container();
        rig.Click(330);
        QCoreApplication::processEvents();
        QCOMPARE(second.data(), &rig.frame->Container());
    }

    void BackAndHomeLeadHomeFromEachPageOfTheChoice() {
        WindowRig rig;
        for (const int button : {347, 330}) {
            rig.AddFile(media_.Cut());
            QVERIFY(rig.ComesTo(page::kChosenMov));
            rig.Click(button);
            QVERIFY(rig.ComesTo(page::kHome));
            rig.AddFile(media_.Cut());
            rig.Click(335);
            QVERIFY(rig.ComesTo(page::kNeedReference));
            rig.Click(button);
            QVERIFY(rig.ComesTo(page::kHome));
            QVERIFY(rig.state.g_strReferencePath.empty());
        }
        rig.AddFile(media_.Avi());
        QVERIFY(rig.ComesTo(page::kChosenAvi));
        rig.Click(347);
        QVERIFY(rig.ComesTo(page::kHome));
    }

    void ACancelledFileDialogKeepsNothingOfAnEarlierChoice() {
        WindowRig rig;
        rig.AddFile(media_.Cut());
        rig.Click(347);
        rig.Click(333);
        QVERIFY(rig.ComesTo(page::kHome));
        QVERIFY(rig.state.g_strCorruptPath.empty());
        QVERIFY(rig.state.g_strCorruptCopy.empty());
        QCOMPARE(rig.desktop.filters.last(), QString::fromLatin1(kVideoFilter));
    }

    void TheDetailsTellOfTheRepairedFilm() {
        WindowRig rig;
        rig.Repair(media_.Cut(), media_.Healthy());
        QStringList rows = DetailsOf(rig);
        QCOMPARE(rows.takeAt(3).left(3), QStringLiteral(": 0"));  // its size
        QCOMPARE(rows,
                 QStringList({rig.Word("IDS_FILE_NAME"), QStringLiteral(": cut.mp4"),
                              rig.Word("IDS_SIZE"), rig.Word("IDS_TRACK"), QStringLiteral(": 2"),
                              rig.Word("IDS_CODEC"), QStringLiteral(": AVC1"),
                              rig.Word("IDS_US_PER_FRAME"), QStringLiteral(": 25.00 fps"),
                              rig.Word("IDS_DURATION"), QStringLiteral(": 00:00:04")}));
        QCOMPARE(rig.state.g_strCorruptName, std::string(": cut.mp4"));
    }

    void TwoJobsInARowOfTwoKinds() {
        WindowRig rig;
        rig.Repair(media_.Avi());
        QCOMPARE(DetailsOf(rig).at(7), QStringLiteral(": FMP4"));
        rig.Click(338);
        QVERIFY(rig.ComesTo(page::kHome));
        rig.Repair(media_.Cut(), media_.Healthy());
        QCOMPARE(DetailsOf(rig).at(7), QStringLiteral(": AVC1"));
        rig.Click(338);
        QVERIFY(rig.ComesTo(page::kHome));
    }

    void ACancelledSaveDialogLeavesTheDetails() {
        WindowRig rig;
        rig.Repair(media_.OwnReference());
        rig.Click(340);
        QVERIFY(rig.ComesTo(page::kFinished));
        QVERIFY(rig.desktop.lastSave.name.starts_with("KelvoClipfix_ "));
        QVERIFY(QFile::exists(rig.WorkFile("Repaired.mov")));
    }

    void ACancelledSaveLeavesNothingAndLeadsHome() {
        WindowRig rig;
        rig.Repair(media_.OwnReference());
        const QString destination = rig.work.filePath(QStringLiteral("never.mov"));
        rig.desktop.filesToSave.push_back(destination.toStdString());
        rig.moveStands = true;
        rig.Click(340);
        QVERIFY(rig.ComesTo(page::kSaving));
        rig.AnswerNext(kNo);
        rig.Click(334);
        QVERIFY(rig.ComesTo(page::kSaving));
        rig.AnswerNext(kYes);
        rig.AnswerNext(kOk);  // two notes may come, of both threads
        rig.AnswerNext(kOk);
        rig.Click(334);
        QVERIFY(rig.ComesTo(page::kHome));
        QVERIFY(!QFile::exists(destination));
        QCOMPARE(rig.Told().at(1), QStringLiteral("2 IDS_CANCEL_DLG_MSG"));
        QCOMPARE(rig.Told().at(2), QStringLiteral("3 IDS_SAVE_ABORTED"));
    }

    void PreviewStartsThePlayerAndSendsItTheFile() {
        WindowRig rig;
        rig.Repair(media_.Avi());
        const int before = rig.desktop.playerClosings;
        rig.Click(339);
        QCOMPARE(rig.desktop.playerClosings, before + 1);
        QCOMPARE(rig.state.g_bPlayerOpen.load(), 1);
        QCOMPARE(rig.desktop.started.size(), 1U);
        QCOMPARE(rig.desktop.started[0].path, rig.work.filePath("kc-mplayer").toStdString());
        QCOMPARE(rig.desktop.started[0].arguments,
                 QStringList(QString::fromStdString(rig.state.g_strPlayerArgs)));
        QVERIFY(rig.desktop.started[0].arguments[0].endsWith(QStringLiteral("$$$$0")));
        QTRY_COMPARE(rig.desktop.sentToPlayer, QStringList(rig.WorkFile("Repaired.avi")));
        QCOMPARE(rig.state.g_strOutputPath, rig.WorkFile("Repaired.avi").toStdString());
        rig.Click(338);
        QVERIFY(rig.ComesTo(page::kHome));
        QCOMPARE(rig.state.g_bPlayerOpen.load(), 0);
        QCOMPARE(rig.desktop.playerClosings, before + 2);
    }

    void PreviewTellsThePlayerToStartInTheWorkFolderWhichIsMadeAnewWhereItIsGone() {
        WindowRig rig;
        rig.Repair(media_.OwnReference());
        QVERIFY(QDir(rig.WorkFile("")).removeRecursively());
        rig.Click(339);
        QVERIFY(QDir(rig.WorkFile("")).exists());
        QCOMPARE(rig.desktop.started.back().folder, rig.work.filePath("$tp").toStdString());
        QVERIFY(rig.desktop.started.back().arguments[0].startsWith(rig.WorkFile("Repaired.mov") +
                                                                   QStringLiteral("$$own.MP4$$")));
    }

    void APlayerOfAnEarlierPreviewIsClosedBeforeTheNextOneStarts() {
        WindowRig rig;
        rig.Repair(media_.OwnReference());
        rig.Click(339);
        const int closings = rig.desktop.playerClosings;
        rig.desktop.onStart = [&] { QCOMPARE(rig.desktop.playerClosings, closings + 1); };
        rig.Click(339);
        QCOMPARE(rig.desktop.started.size(), 2U);
    }

    void NoPreviewStartsDuringASave() {
        WindowRig rig;
        rig.Repair(media_.OwnReference());
        rig.moveStands = true;
        rig.desktop.filesToSave.push_back(rig.work.filePath("a.mov").toStdString());
        rig.Click(340);
        QVERIFY(rig.ComesTo(page::kSaving));
        rig.frame->Container().OnPreview();
        QVERIFY(rig.desktop.started.empty());
        QCOMPARE(rig.state.g_bPlayerOpen.load(), 0);
        rig.AnswerNext(kOk);
        rig.moveStands = false;
        QVERIFY(rig.ComesTo(page::kHome));
    }

    void ALeftPlayerIsSentNothing() {
        WindowRig rig;
        rig.Repair(media_.OwnReference());
        rig.Click(339);
        rig.Click(338);
        QVERIFY(rig.ComesTo(page::kHome));
        QTest::qWait(1200);  // the player would have got its file by then
        QVERIFY(rig.desktop.sentToPlayer.isEmpty());
    }

    void AnAviDisablesTheChoiceOfAReferenceAndAMovEnablesIt() {
        WindowRig rig;
        rig.AddFile(media_.Avi());
        QVERIFY(!rig.frame->Container().Find(ChooseReference)->isEnabled());
        rig.Click(347);
        rig.AddFile(media_.Cut());
        QVERIFY(rig.frame->Container().Find(ChooseReference)->isEnabled());
    }

    void APlayerThatCannotBeStartedIsTold() {
        WindowRig rig;
        rig.Repair(media_.OwnReference());
        rig.desktop.startCode = 2;
        rig.Click(339);
        QCOMPARE(rig.desktop.boxes,
                 QStringList(rig.Word("IDS_RUNNING3") +
                             QStringLiteral("|The specified file was not found.")));
        QVERIFY(rig.desktop.sentToPlayer.isEmpty());
    }

    void ALanguageChangesEveryTextThatStands() {
        WindowRig rig;
        rig.AddFile(media_.Cut());
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kNeedReference));
        const QString before = rig.TextOf(Title);
        rig.frame->OnCommand(40045);
        const test::LanguageTexts german(QStringLiteral("German"));
        QVERIFY(rig.TextOf(Title) != before);
        QCOMPARE(rig.TextOf(Title), german.Word("IDS_SELECT_REFERNCE_HEADER"));
        QCOMPARE(rig.TextOf(Repair), german.Word("IDS_REPAIR"));
        QCOMPARE(rig.TextOf(Back), german.Word("IDS_BACK"));
        QCOMPARE(rig.TextOf(ChooseReference), german.Word("IDS_CHOOSE_REFERENCE_MOV_FILE"));
        QCOMPARE(rig.TextOf(WhyHealthyLink), german.Word("IDS_WHY_HEALTHY"));
        QCOMPARE(rig.TextOf(ReferenceText), german.Word("IDS_SELECT_REFERENCE"));
    }

    void TheKeyboardAloneIsEnough() {
        WindowRig rig;
        rig.desktop.filesToOpen = {media_.Cut().toStdString(), media_.Healthy().toStdString()};
        rig.desktop.filesToSave = {rig.work.filePath("keys.mov").toStdString()};
        rig.Press(Qt::Key_Return);  // Add File
        QVERIFY(rig.ComesTo(page::kChosenMov));
        rig.Press(Qt::Key_Space);  // Repair
        QVERIFY(rig.ComesTo(page::kNeedReference));
        rig.Press(Qt::Key_Return);  // Choose Reference
        QVERIFY(rig.ComesTo(page::kReferenceChosen));
        rig.Press(Qt::Key_Return);  // Repair
        QVERIFY(rig.ComesTo(page::kFinished));
        rig.AnswerNext(kOk);
        rig.Press(Qt::Key_Return);  // Save
        QVERIFY(rig.ComesTo(page::kHome));
        QVERIFY(QFile::exists(rig.work.filePath("keys.mov")));
    }

    void TheKeyboardGoesToTheNextStepHoweverFastPagesChange() {
        WindowRig rig;
        rig.AddFile(media_.Avi());
        rig.Click(347);
        rig.AddFile(media_.Cut());
        QTRY_COMPARE(rig.frame->focusWidget(), rig.frame->Bottom().Find(Repair));
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kNeedReference));
        QTRY_COMPARE(rig.frame->focusWidget(), rig.frame->Container().Find(ChooseReference));
    }

    void TabReachesEveryControlOfAPage() {
        WindowRig rig;
        rig.AddFile(media_.Cut());
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kNeedReference));
        rig.ChooseReference(media_.Healthy());
        QStringList reached;
        for (int i = 0; i < 10; ++i) {
            rig.Press(Qt::Key_Tab);
            reached << rig.frame->focusWidget()->objectName();
        }
        reached.sort();
        QStringList awaited =
            QStringLiteral("320 321 322 325 327 330 335 336 346 347").split(QLatin1Char(' '));
        QCOMPARE(reached, awaited);
    }

    void AFileDroppedOnTheWindowIsTaken() {
        WindowRig rig;
        const auto drop = [&](const QString& file) {
            QMimeData data;
            data.setUrls({QUrl::fromLocalFile(file)});
            QDragEnterEvent enter(QPoint(200, 200), Qt::CopyAction, &data, Qt::LeftButton, {});
            enter.ignore();
            QApplication::sendEvent(rig.frame.get(), &enter);
            if (enter.isAccepted()) {
                QDropEvent event(QPointF(200, 200), Qt::CopyAction, &data, Qt::LeftButton, {});
                QApplication::sendEvent(rig.frame.get(), &event);
            }
            return enter.isAccepted();
        };
        QVERIFY(!drop(QStringLiteral(CLIPFIX_EXAMPLES_FOLDER "/README.md")));
        QVERIFY(!drop(media_.Folder()));
        QVERIFY(rig.ComesTo(page::kHome));
        QVERIFY(drop(media_.Avi()));
        QVERIFY(rig.ComesTo(page::kChosenAvi));
        QVERIFY(drop(media_.Cut()));
        QVERIFY(rig.ComesTo(page::kChosenMov));
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kNeedReference));
        QVERIFY(!drop(media_.Avi()));
        QVERIFY(drop(media_.Healthy()));
        QVERIFY(rig.ComesTo(page::kReferenceChosen));
        rig.engines.Hold();
        rig.Click(335);
        QVERIFY(rig.ComesTo(page::kRepairingWithReference));
        QVERIFY(!drop(media_.Cut()));
        rig.engines.LetGo();
        QVERIFY(rig.ComesTo(page::kFinished));
        QVERIFY(!drop(media_.Cut()));
    }

    void AFileNamedAtTheStartIsChosenAndOneThatIsNotThereIsTold() {
        WindowRig rig;
        rig.AnswerNext(kOk);
        rig.frame->OpenFile(media_.At("nowhere.mp4").toStdString());
        QCOMPARE(rig.Told(), QStringList(QStringLiteral("4 IDS_MOVERROR4")));
        QVERIFY(rig.ComesTo(page::kHome));
        rig.frame->OpenFile(media_.Avi().toStdString());
        QVERIFY(rig.ComesTo(page::kChosenAvi));
    }

    // A damaged AVI that is gone when Repair is pressed: no message, the progress view stays, and
    // Cancel leads out. That is meant.
    void AnAviThatIsGoneLeavesTheProgressViewWithoutAWord() {
        WindowRig rig;
        const QString gone = rig.work.filePath(QStringLiteral("gone.avi"));
        QVERIFY(QFile::copy(media_.Avi(), gone));
        rig.AddFile(gone);
        QVERIFY(QFile::remove(gone));
        rig.Click(335);
        QTest::qWait(200);
        QVERIFY(rig.ComesTo(page::kRepairingAvi));
        QVERIFY(rig.Told().isEmpty());
        rig.AnswerNext(kYes);
        rig.Click(334);
        rig.Click(330);
        QVERIFY(rig.ComesTo(page::kHome));
    }

    void TheWindowCanGoWhileAJobRuns() {
        WindowRig rig;
        rig.engines.Hold();
        rig.AddFile(media_.OwnReference());
        rig.Click(335);
        QVERIFY(HasEngineStanding(rig));
        rig.frame.reset();
        QVERIFY(true);
    }
};

}  // namespace
}  // namespace clipfix

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    clipfix::test::PrepareLook(application);
    clipfix::JobFlowTest flow;
    return QTest::qExec(&flow, argc, argv);
}

#include "job_flow_test.moc"
