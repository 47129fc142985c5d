#include <functional>
#include <gtest/gtest.h>
#include <ostream>

#include "job_rig.h"

// The states of a job and each way from one to another: what stands on the page, how the flags of
// the repair stand, and which dialogs came up on the way.
namespace clipfix::test {
namespace {

using Work = JobControl::Work;
using Id = JobControlId;

// A job that is led from state to state. Its engines stand at a checkpoint until they are let go.
class Stage {
  public:
    Stage() {
        rig.engines.check = [this](JobContext job) {
            if (!checks.stop) {
                return holdsMovie.load();
            }
            return GoRound(job, Work::StructureCheck, checks.pace) && holdsMovie;
        };
        rig.engines.find = [this](JobContext job) {
            if (engines.stop) {
                static_cast<void>(GoRound(job, Work::MovEngine, engines.pace));
            }
        };
        rig.engines.write = [this](JobContext job, const std::string& output) {
            if (!job.control.KeepGoing(Work::MovEngine)) {
                return;
            }
            ScriptedEngines::WriteTenBytes(job, output);
            if (engineFails) {
                job.state.g_nMessageKind = 4;
                job.frontEnd.RunMessageDialog("IDS_UNHEALTHY_1", "IDS_INFORMATION", "Yes", "No");
                job.state.g_bJobFailed = 1;
            }
        };
        rig.engines.repair = [this](JobContext job) {
            if (engines.stop && !GoRound(job, Work::AviEngine, engines.pace)) {
                return 1;
            }
            ScriptedEngines::WriteTenBytes(job, job.state.g_strAviRepairedPath);
            return engineFails ? 0 : 1;
        };
    }
    ~Stage() {
        holdsMovie = true;
        rig.face.AnswerAnything([](const std::string& /*text*/) { return MessageAnswer::Ok; });
        checks.pace.Finish();
        engines.pace.Finish();
    }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    // What the file dialogs show of a choice; that is the window's part of the flow.
    void PickMov() {
        rig.ChooseMov();
        Picked(Id::CorruptedLabel);
    }
    void PickAvi() {
        rig.ChooseAvi();
        Picked(Id::PathLabel);
    }
    void PickReference() {
        rig.ChooseReference();
        rig.face.SetEnabled(Id::Repair, true);
        rig.face.SetVisible(Id::Repair, true);
    }
    void Answer(const std::string& text, MessageAnswer answer) {
        rig.face.WillAnswer(text, answer);
    }
    void RunToTheEnd() {
        rig.driver.OnRepair();
        rig.Wait();
    }
    // Presses Repair; the worker then stands in the check, or in its engine.
    void StandInTheCheck() {
        checks.stop = true;
        rig.driver.OnRepair();
        ASSERT_TRUE(checks.pace.WaitForArrivals(1));
    }
    void StandInTheEngine() {
        engines.stop = true;
        rig.driver.OnRepair();
        ASSERT_TRUE(engines.pace.WaitForArrivals(1));
    }
    void LetTheEngineGo() {
        engines.pace.Finish();
        rig.Wait();
    }
    // Behind the question the engine is let through and stands at its checkpoint, where it later
    // finds out that it was cancelled.
    void AnswerYesToCancel() {
        rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes,
                            [this] { engines.pace.LetThrough(1); });
    }
    [[nodiscard]] std::string Save(const std::string& name) {
        const std::string path = (rig.folder / name).string();
        rig.face.WillChoose(path);
        return path;
    }

    struct Stop {
        std::atomic<bool> stop{false};
        Pace pace;
    };
    Stop checks;
    Stop engines;
    std::atomic<bool> holdsMovie{true};
    std::atomic<bool> engineFails{false};
    JobRig rig;

  private:
    void Picked(JobControlId label) {
        for (const auto control : {Id::Hint, Id::AddFile, Id::ChooseReference}) {
            rig.face.SetVisible(control, false);
        }
        for (const auto control : {Id::SelectedText, label, Id::Repair, Id::Back}) {
            rig.face.SetVisible(control, true);
        }
    }
};

struct Way {
    std::string name;
    std::function<void(Stage&)> from;
    std::function<void(Stage&)> event;
    std::string page;   // the controls that stand in the end
    std::string flags;  // of the repair
    Lines dialogs;      // their texts, in order
};

std::ostream& operator<<(std::ostream& out, const Way& way) {
    return out << way.name;
}

const std::string kHome = "AddFile Hint";
const std::string kProgress =
    "StatusText ProgressBar StartTimeCaption StartTimeValue ElapsedTimeCaption ElapsedTimeValue "
    "PercentText";
const std::string kRepairingMov = kProgress + " Pause Cancel SelectedText CorruptedLabel";
const std::string kRepairingAvi = kProgress + " Pause Cancel SelectedText PathLabel";
const std::string kNeedReference =
    "ChooseReference WhyHealthyLink Repair Back SelectedText CorruptedLabel ReferenceText";
const std::string kFinished = "DetailsGrid PlayPicture Home Preview Save";
const std::string kSaving = kProgress + " Cancel PathLabel";

const std::string kIdle = "running 0, paused 0";
const std::string kRuns = "running 1, paused 0";
const std::string kStands = "running 1, paused 1";

void AtHome(Stage& /*stage*/) {}
void ChosenMov(Stage& stage) {
    stage.PickMov();
}
void ChosenAvi(Stage& stage) {
    stage.PickAvi();
}
void NeedReference(Stage& stage) {
    stage.PickMov();
    stage.holdsMovie = false;
    stage.RunToTheEnd();
}
void ReferenceChosen(Stage& stage) {
    NeedReference(stage);
    stage.PickReference();
}
void CheckingFirstRun(Stage& stage) {
    stage.PickMov();
    stage.StandInTheCheck();
}
void CheckingReference(Stage& stage) {
    ReferenceChosen(stage);
    stage.StandInTheCheck();
}
void RepairingMov(Stage& stage) {
    stage.PickMov();
    stage.StandInTheEngine();
}
void RepairingAvi(Stage& stage) {
    stage.PickAvi();
    stage.StandInTheEngine();
}
void PausedMov(Stage& stage) {
    RepairingMov(stage);
    stage.rig.driver.OnPauseResume();
}
void PausedAvi(Stage& stage) {
    RepairingAvi(stage);
    stage.rig.driver.OnPauseResume();
}
void FinishedMov(Stage& stage) {
    stage.PickMov();
    stage.RunToTheEnd();
}
void FinishedAvi(Stage& stage) {
    stage.PickAvi();
    stage.RunToTheEnd();
}

void Cancel(Stage& stage) {
    stage.rig.driver.OnCancelJob();
}

const std::vector<Way> kWays = {
    {"FromHomeAMovieIsChosen",
     AtHome,
     [](Stage& s) { s.PickMov(); },
     "Repair Back SelectedText CorruptedLabel",
     kIdle,
     {}},
    {"FromHomeAnAviIsChosen",
     AtHome,
     [](Stage& s) { s.PickAvi(); },
     "Repair Back SelectedText PathLabel",
     kIdle,
     {}},

    {"FromChosenBackLeadsHome",
     ChosenMov,
     [](Stage& s) { s.rig.driver.OnBack(); },
     kHome,
     kIdle,
     {}},
    {"FromChosenAviBackLeadsHome",
     ChosenAvi,
     [](Stage& s) { s.rig.driver.OnBack(); },
     kHome,
     kIdle,
     {}},
    {"FromNeedReferenceBackLeadsHome",
     NeedReference,
     [](Stage& s) { s.rig.driver.OnBack(); },
     kHome,
     kIdle,
     {}},
    {"FromReferenceChosenBackLeadsHome",
     ReferenceChosen,
     [](Stage& s) { s.rig.driver.OnBack(); },
     kHome,
     kIdle,
     {}},

    {"FromChosenRepairLeadsToTheCheck",
     ChosenMov,
     [](Stage& s) { s.StandInTheCheck(); },
     kRepairingMov,
     kRuns,
     {}},
    {"FromReferenceChosenRepairLeadsToTheCheck",
     ReferenceChosen,
     [](Stage& s) { s.StandInTheCheck(); },
     kProgress + " Pause Cancel SelectedText CorruptedLabel ReferenceText",
     kRuns,
     {}},
    {"FromChosenAviRepairLeadsToTheEngine",
     ChosenAvi,
     [](Stage& s) { s.StandInTheEngine(); },
     kRepairingAvi,
     kRuns,
     {}},
    {"AMovieThatCannotBeOpenedStaysInTheProgressView",
     ChosenMov,
     [](Stage& s) {
         std::filesystem::remove(s.rig.DamagedMov());
         s.Answer("IDS_MOVERROR4", MessageAnswer::Ok);
         s.Answer("IDS_REPAIR_PROCESSING", MessageAnswer::Ok);
         s.RunToTheEnd();
     },
     kRepairingMov,
     kRuns,
     {"IDS_MOVERROR4", "IDS_REPAIR_PROCESSING"}},
    {"AnAviThatCannotBeOpenedStaysInTheProgressViewWithoutAWord",
     ChosenAvi,
     [](Stage& s) {
         std::filesystem::remove(s.rig.DamagedAvi());
         s.RunToTheEnd();
     },
     kRepairingAvi,
     kRuns,
     {}},

    {"FromAFirstCheckWithoutAMovieAReferenceIsNeeded",
     CheckingFirstRun,
     [](Stage& s) {
         s.holdsMovie = false;
         s.checks.pace.Finish();
         s.rig.Wait();
     },
     kNeedReference,
     kIdle,
     {}},
    {"FromACheckOfAReferenceWithoutAMovieTheJobFails",
     CheckingReference,
     [](Stage& s) {
         s.Answer("IDS_UNHEALTHY_1", MessageAnswer::Ok);
         s.checks.pace.Finish();
         s.rig.Wait();
     },
     kHome,
     kIdle,
     {"IDS_UNHEALTHY_1"}},
    {"FromACheckWithAMovieTheEngineStarts",
     CheckingFirstRun,
     [](Stage& s) {
         s.engines.stop = true;
         s.checks.pace.Finish();
         ASSERT_TRUE(s.engines.pace.WaitForArrivals(1));
     },
     kRepairingMov,
     kRuns,
     {}},
    {"FromNeedReferenceAReferenceIsChosen",
     NeedReference,
     [](Stage& s) { s.PickReference(); },
     kNeedReference,
     kIdle,
     {}},

    {"FromRepairingPauseLeadsToPaused",
     RepairingMov,
     [](Stage& s) { s.rig.driver.OnPauseResume(); },
     kRepairingMov,
     kStands,
     {}},
    {"FromRepairingAviPauseLeadsToPaused",
     RepairingAvi,
     [](Stage& s) { s.rig.driver.OnPauseResume(); },
     kRepairingAvi,
     kStands,
     {}},
    {"FromPausedResumeLeadsBack",
     PausedMov,
     [](Stage& s) { s.rig.driver.OnPauseResume(); },
     kRepairingMov,
     kRuns,
     {}},
    {"FromPausedAviResumeLeadsBack",
     PausedAvi,
     [](Stage& s) { s.rig.driver.OnPauseResume(); },
     kRepairingAvi,
     kRuns,
     {}},

    {"FromRepairingCancelAndNoLeadBack",
     RepairingMov,
     [](Stage& s) {
         s.Answer("IDS_CANCEL_DLG_MSG ", MessageAnswer::No);
         Cancel(s);
     },
     kRepairingMov,
     kRuns,
     {"IDS_CANCEL_DLG_MSG "}},
    {"FromPausedCancelAndNoLeadToRepairing",
     PausedMov,
     [](Stage& s) {
         s.Answer("IDS_CANCEL_DLG_MSG ", MessageAnswer::No);
         Cancel(s);
     },
     kRepairingMov,
     kRuns,
     {"IDS_CANCEL_DLG_MSG "}},
    {"FromPausedAviCancelAndNoLeadToRepairing",
     PausedAvi,
     [](Stage& s) {
         s.Answer("IDS_CANCEL_DLG_MSG ", MessageAnswer::No);
         Cancel(s);
     },
     kRepairingAvi,
     kRuns,
     {"IDS_CANCEL_DLG_MSG "}},
    {"FromRepairingCancelAndYesLeadHome",
     RepairingMov,
     [](Stage& s) {
         s.AnswerYesToCancel();
         s.Answer("IDS_REPAIR_ABORTED", MessageAnswer::Ok);
         Cancel(s);
         s.rig.Wait();
     },
     kHome,
     kIdle,
     {"IDS_CANCEL_DLG_MSG ", "IDS_REPAIR_ABORTED"}},
    {"FromPausedCancelAndYesLeadHome",
     PausedMov,
     [](Stage& s) {
         s.AnswerYesToCancel();
         s.Answer("IDS_REPAIR_ABORTED", MessageAnswer::Ok);
         Cancel(s);
         s.rig.Wait();
     },
     kHome,
     kIdle,
     {"IDS_CANCEL_DLG_MSG ", "IDS_REPAIR_ABORTED"}},
    {"FromRepairingCancelAndYesAtNinetyNineLeadBack",
     RepairingMov,
     [](Stage& s) {
         s.rig.state.g_nMovPercent = 99;
         s.Answer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
         Cancel(s);
     },
     kRepairingMov,
     kRuns,
     {"IDS_CANCEL_DLG_MSG "}},
    {"FromRepairingAviCancelAndYesWaitInTheProgressView",
     RepairingAvi,
     [](Stage& s) {
         s.Answer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
         Cancel(s);
     },
     kRepairingAvi,
     kIdle,
     {"IDS_CANCEL_DLG_MSG "}},
    {"FromAnAbortedAviTheNextDialogLeadsHome",
     RepairingAvi,
     [](Stage& s) {
         s.AnswerYesToCancel();
         Cancel(s);
         s.Answer("IDS_CLOSE_DLG_MSG ", MessageAnswer::No);
         EXPECT_FALSE(s.rig.driver.OnCloseFrame());
         s.rig.Wait();
     },
     kHome,
     kIdle,
     {"IDS_CANCEL_DLG_MSG ", "IDS_CLOSE_DLG_MSG "}},

    {"FromRepairingAGoodEndLeadsToFinished",
     RepairingMov,
     [](Stage& s) { s.LetTheEngineGo(); },
     kFinished,
     kIdle,
     {}},
    {"FromRepairingAviAGoodEndLeadsToFinished",
     RepairingAvi,
     [](Stage& s) { s.LetTheEngineGo(); },
     kFinished,
     kIdle,
     {}},
    {"FromRepairingAFailureLeadsHome",
     RepairingMov,
     [](Stage& s) {
         s.engineFails = true;
         s.Answer("IDS_UNHEALTHY_1", MessageAnswer::Ok);
         s.LetTheEngineGo();
     },
     kHome,
     kIdle,
     {"IDS_UNHEALTHY_1"}},
    {"FromRepairingAviAFailureLeadsHome",
     RepairingAvi,
     [](Stage& s) {
         s.engineFails = true;
         s.Answer("IDS_UNHEALTHY_1", MessageAnswer::Ok);
         s.LetTheEngineGo();
     },
     kHome,
     kIdle,
     {"IDS_UNHEALTHY_1"}},
    {"FromRepairingTheHomeStepIsRefused",
     RepairingMov,
     [](Stage& s) {
         s.Answer("IDS_REPAIR_PROCESSING", MessageAnswer::Ok);
         s.rig.driver.OnHomePage();
     },
     kRepairingMov,
     kRuns,
     {"IDS_REPAIR_PROCESSING"}},

    {"FromFinishedHomeLeadsHome",
     FinishedMov,
     [](Stage& s) { s.rig.driver.OnHome(); },
     kHome,
     kIdle,
     {}},
    {"FromFinishedTheTitleBarLeadsHome",
     FinishedAvi,
     [](Stage& s) { s.rig.driver.OnHomePage(); },
     kHome,
     kIdle,
     {}},
    {"FromFinishedACancelledSaveDialogStays",
     FinishedMov,
     [](Stage& s) {
         s.rig.face.WillChoose(std::nullopt);
         s.rig.driver.OnSave();
     },
     kFinished,
     kIdle,
     {}},
    {"FromFinishedSaveLeadsToSaved",
     FinishedMov,
     [](Stage& s) {
         static_cast<void>(s.Save("s.mov"));
         s.Answer("IDS_SAVE_COMPLETED", MessageAnswer::Ok);
         s.rig.driver.OnSave();
         s.rig.Wait();
     },
     kSaving,
     kIdle,
     {"IDS_SAVE_COMPLETED"}},
    {"FromFinishedAviSaveLeadsToSaved",
     FinishedAvi,
     [](Stage& s) {
         static_cast<void>(s.Save("s.avi"));
         s.Answer("IDS_SAVE_COMPLETED", MessageAnswer::Ok);
         s.rig.driver.OnSave();
         s.rig.Wait();
     },
     kSaving,
     kIdle,
     {"IDS_SAVE_COMPLETED"}},
    {"FromSavedTheTimerLeadsHome",
     FinishedMov,
     [](Stage& s) {
         static_cast<void>(s.Save("s.mov"));
         s.Answer("IDS_SAVE_COMPLETED", MessageAnswer::Ok);
         s.rig.driver.OnSave();
         s.rig.Wait();
         s.rig.driver.OnTimer(kHomeTimer);
     },
     kHome,
     kIdle,
     {"IDS_SAVE_COMPLETED"}},
};

class JobStates : public ::testing::TestWithParam<Way> {};

TEST_P(JobStates, AreReachedAsTheTableSays) {
    const Way& way = GetParam();
    Stage stage;
    way.from(stage);
    stage.rig.log.Clear();
    way.event(stage);
    EXPECT_EQ(stage.rig.face.Visible(), way.page);
    EXPECT_EQ(stage.rig.RepairFlags(), way.flags);
    EXPECT_EQ(stage.rig.state.g_nMessageKind, 0);
    Lines dialogs;
    for (const auto& line : stage.rig.log.All()) {
        if (line.rfind("dialog ", 0) == 0) {
            dialogs.push_back(line.substr(10, line.find(" | ") - 10));
        }
    }
    EXPECT_EQ(dialogs, way.dialogs);
}

INSTANTIATE_TEST_SUITE_P(OfTheTable, JobStates, ::testing::ValuesIn(kWays),
                         [](const auto& way) { return way.param.name; });

}  // namespace
}  // namespace clipfix::test
