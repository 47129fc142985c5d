#include <filesystem>
#include <gtest/gtest.h>

#include "job_rig.h"

// Pause, resume and cancel of a repair. The engines go round after round at a checkpoint.
namespace clipfix::test {
namespace {

using Work = JobControl::Work;

const Lines kPaused = {"stop animation", "Pause = IDS_RESUME"};
const Lines kResumed = {"animate repair", "Pause = IDS_PAUSE"};
const std::string kAborted = "dialog 3: IDS_REPAIR_ABORTED | IDS_INFORMATION |  | Ok";

// A MOV job whose engine stands in its search, and an AVI job in its pass.
class RunningJob : public ::testing::Test {
  protected:
    ~RunningJob() override { pace.Finish(); }
    void StartMov() {
        rig.engines.find = [this](JobContext job) {
            static_cast<void>(GoRound(job, Work::MovEngine, pace));
        };
        rig.ChooseMov();
        rig.ChooseReference();
        rig.driver.OnRepair();
        ASSERT_TRUE(pace.WaitForArrivals(1));
        rig.log.Clear();
    }
    void StartAvi() {
        rig.engines.repair = [this](JobContext job) {
            WriteFile(job.state.g_strAviRepairedPath, ByteVector(4, 4));
            if (!GoRound(job, Work::AviEngine, pace)) {
                std::filesystem::remove(job.state.g_strAviRepairedPath);
            }
            return 1;
        };
        rig.ChooseAvi();
        rig.driver.OnRepair();
        ASSERT_TRUE(pace.WaitForArrivals(1));
        rig.log.Clear();
    }
    // The engine is let through and does not come round: it stands at its checkpoint.
    void ExpectStanding() {
        pace.LetThrough(1);
        EXPECT_FALSE(pace.ArrivesInAMoment(++rounds_));
    }
    void ExpectGoingOn() { EXPECT_TRUE(pace.WaitForArrivals(rounds_)); }

    Pace pace;
    JobRig rig;

  private:
    int rounds_ = 1;
};

TEST_F(RunningJob, StandsWhilePausedAndGoesOnWhenResumed) {
    StartMov();
    rig.state.g_nPauseAccounted = 1;
    rig.clock.Advance(7);
    rig.driver.OnPauseResume();
    EXPECT_EQ(rig.log.All(), kPaused);
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 1");
    EXPECT_EQ(rig.state.g_nPauseAccounted, 0);
    EXPECT_EQ(rig.state.g_tPause, kTestNow + 7);
    EXPECT_EQ(rig.state.g_bAnimationStopped, 1);
    ExpectStanding();
    rig.log.Clear();
    rig.driver.OnPauseResume();
    EXPECT_EQ(rig.log.All(), kResumed);
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0");
    EXPECT_EQ(rig.state.g_bAnimationStopped, 0);
    ExpectGoingOn();
    pace.Finish();
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
}

TEST_F(RunningJob, OfAviFilesIsPausedBySuspensionAlone) {
    StartAvi();
    rig.driver.OnPauseResume();
    ExpectStanding();
    rig.driver.OnPauseResume();
    ExpectGoingOn();
    pace.Finish();
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
}

TEST_F(RunningJob, LeavesAnAnimationThatStandsAlready) {
    StartMov();
    rig.state.g_bAnimationStopped = 1;
    rig.driver.OnPauseResume();
    EXPECT_EQ(rig.log.All(), Lines{"Pause = IDS_RESUME"});
    rig.state.g_bAnimationStopped = 0;
    rig.log.Clear();
    rig.driver.OnPauseResume();
    EXPECT_EQ(rig.log.All(), Lines{"Pause = IDS_PAUSE"});
    pace.Finish();
    rig.Wait();
}

TEST_F(RunningJob, DoesNotEndBehindAPause) {
    StartMov();
    rig.driver.OnPauseResume();
    pace.Finish();  // the engine leaves without another look at its checkpoint
    ASSERT_TRUE(rig.log.WaitFor("write " + rig.RepairedMov() + " from " + rig.DamagedMov()));
    EXPECT_FALSE(pace.ArrivesInAMoment(1000));
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 1");
    EXPECT_FALSE(rig.log.Has("details"));
    rig.driver.OnPauseResume();
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
}

TEST_F(RunningJob, StandsStillWhileTheQuestionIsUpAndGoesOnAfterNo) {
    StartMov();
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::No, [&] {
        EXPECT_EQ(rig.RepairFlags(), "running 1, paused 1");
        ExpectStanding();
    });
    rig.driver.OnCancelJob();
    EXPECT_EQ(rig.log.OfInterface(),
              Join({kPaused, {kQuestion, "answered No", "redraw Frame"}, kResumed}));
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0");
    ExpectGoingOn();
    pace.Finish();
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
}

// A job that the person had paused goes on after No, and its button reads Pause.
TEST_F(RunningJob, GoesOnAfterNoEvenIfItWasPausedBefore) {
    StartMov();
    rig.driver.OnPauseResume();
    rig.log.Clear();
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::No, [&] {
        EXPECT_EQ(rig.RepairFlags(), "running 1, paused 1");
        ExpectStanding();
    });
    rig.driver.OnCancelJob();
    EXPECT_EQ(rig.log.All(), Join({{kQuestion, "answered No", "redraw Frame"}, kResumed}));
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0");
    ExpectGoingOn();
    pace.Finish();
    rig.Wait();
}

TEST_F(RunningJob, OfMovFilesWaitsBehindTheNoteOfItsCancel) {
    StartMov();
    WriteFile(rig.Healthy() + ".out", ByteVector(3, 3));
    rig.state.g_strOutputPath = rig.Healthy() + ".out";
    rig.state.g_tsPaused = 3;
    rig.state.g_tsPausedTotal = 4;
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
    rig.face.WillAnswer("IDS_REPAIR_ABORTED", MessageAnswer::Ok, [&] {
        EXPECT_EQ(rig.RepairFlags(), "running 1, paused 1");
        EXPECT_EQ(rig.state.g_bRepairCancelled, 0);
        EXPECT_EQ(rig.state.g_lJobAlive, 0);
        EXPECT_EQ(rig.state.g_bMessageYes, 1);
        EXPECT_EQ(rig.state.g_tsPaused, 0);
        EXPECT_EQ(rig.state.g_tsPausedTotal, 0);
        EXPECT_FALSE(std::filesystem::exists(rig.Healthy() + ".out"));
        ExpectStanding();
    });
    rig.driver.OnCancelJob();
    rig.Wait();
    EXPECT_EQ(rig.log.OfInterface(), Join({kPaused,
                                           {kQuestion, "answered Yes", "redraw Frame",
                                            "sleep 500 ms", kAborted, "answered Ok", "redraw Frame",
                                            "Pause = IDS_PAUSE", "hide Save", "hide Home"}}));
    EXPECT_EQ(rig.log.OfWorkers(),
              Join({{"write " + rig.RepairedMov() + " from " + rig.DamagedMov(), "stop timer 1"},
                    kHomeState}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    EXPECT_EQ(rig.state.g_bRepairCancelled, 1);
    EXPECT_EQ(rig.driver.End(), JobEnd::Cancelled);
    EXPECT_FALSE(std::filesystem::exists(rig.RepairedMov()));
}

TEST_F(RunningJob, KeepsItsOutputForTheHomeStepOnMajorVersionSix) {
    StartMov();
    rig.state.g_bMajorVersion6 = 1;
    WriteFile(rig.Healthy() + ".out", ByteVector(3, 3));
    rig.state.g_strOutputPath = rig.Healthy() + ".out";
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes, [this] { pace.LetThrough(1); });
    rig.face.WillAnswer("IDS_REPAIR_ABORTED", MessageAnswer::Ok,
                        [&] { EXPECT_TRUE(std::filesystem::exists(rig.Healthy() + ".out")); });
    rig.driver.OnCancelJob();
    rig.Wait();
}

// An AVI job's cancel shows no note, so the answer Yes stands, and with it the worker.
TEST_F(RunningJob, OfAviFilesWaitsAfterACancelForTheNextDialog) {
    StartAvi();
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
    rig.driver.OnCancelJob();
    EXPECT_EQ(rig.log.OfInterface(),
              Join({kPaused,
                    {kQuestion, "answered Yes", "redraw Frame", "sleep 500 ms", "Pause = IDS_PAUSE",
                     "hide Save", "hide Home"}}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    EXPECT_EQ(rig.state.g_bAviContinue, 0);
    EXPECT_EQ(rig.state.g_lJobAlive, 1);
    EXPECT_EQ(rig.state.g_bMessageYes, 1);
    pace.LetThrough(1);
    EXPECT_FALSE(pace.ArrivesInAMoment(2));
    EXPECT_EQ(rig.log.OfWorkers(), Lines{});

    rig.log.Clear();
    rig.face.WillAnswer("IDS_CLOSE_DLG_MSG ", MessageAnswer::No);
    EXPECT_FALSE(rig.driver.OnCloseFrame());
    rig.Wait();
    EXPECT_EQ(rig.log.OfInterface(),
              (Lines{"dialog 1: IDS_CLOSE_DLG_MSG  | IDS_CONFIRMATION | Yes | No", "answered No"}));
    EXPECT_EQ(rig.log.OfWorkers(),
              Join({{"hide Cancel", "stop timer 1", "close work files"}, kHomeState}));
    EXPECT_EQ(rig.driver.End(), JobEnd::Cancelled);
    EXPECT_FALSE(std::filesystem::exists(rig.RepairedAvi()));
}

TEST_F(RunningJob, IgnoresAYesFromNinetyNinePercentOn) {
    StartMov();
    rig.state.g_nMovPercent = 99;
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
    rig.driver.OnCancelJob();
    EXPECT_EQ(rig.log.OfInterface(),
              Join({kPaused, {kQuestion, "answered Yes", "redraw Frame"}, kResumed}));
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0");
    EXPECT_NE(rig.state.g_lJobAlive, 0);
    pace.Finish();
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
}

TEST_F(RunningJob, TakesAYesAtNinetyEightPercent) {
    StartMov();
    rig.state.g_nMovPercent = 98;
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes, [this] { pace.LetThrough(1); });
    rig.face.WillAnswer("IDS_REPAIR_ABORTED", MessageAnswer::Ok);
    rig.driver.OnCancelJob();
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::Cancelled);
}

TEST_F(RunningJob, OfAviFilesTakesAYesAtAnyPercent) {
    StartAvi();
    rig.state.g_nAviPercent = 100;
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
    rig.driver.OnCancelJob();
    EXPECT_EQ(rig.state.g_bAviContinue, 0);
}

class RunningCheck : public ::testing::Test {
  protected:
    ~RunningCheck() override { pace.Finish(); }
    void Start() {
        rig.engines.check = [this](JobContext job) {
            return GoRound(job, Work::StructureCheck, pace);
        };
        rig.driver.OnRepair();
        ASSERT_TRUE(pace.WaitForArrivals(1));
        rig.log.Clear();
        rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes, [&] {
            pace.LetThrough(1);
            EXPECT_FALSE(pace.ArrivesInAMoment(2));
        });
    }
    Pace pace;
    JobRig rig;
};

TEST_F(RunningCheck, OfAFirstRunThatIsCancelledOpensTheReferencePageBehindTheNote) {
    rig.ChooseMov();
    Start();
    rig.face.WillAnswer("IDS_REPAIR_ABORTED", MessageAnswer::Ok,
                        [&] { EXPECT_TRUE(rig.log.WaitFor("hide PercentText")); });
    rig.driver.OnCancelJob();
    rig.Wait();
    EXPECT_EQ(rig.log.OfWorkers(),
              Join({{"stop animation", "hide AddFile", "enable ChooseReference",
                     "show ChooseReference", "enable WhyHealthyLink", "show WhyHealthyLink",
                     "CorruptedLabel = " + rig.state.g_strCorruptLabel},
                    kReferencePage}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    EXPECT_EQ(rig.driver.End(), JobEnd::Cancelled);
}

TEST_F(RunningCheck, OfAChosenReferenceThatIsCancelledTellsThatItCannotServe) {
    rig.ChooseMov();
    rig.ChooseReference();
    Start();
    rig.face.WillAnswer("IDS_UNHEALTHY_1", MessageAnswer::Ok);
    rig.face.WillAnswer("IDS_REPAIR_ABORTED", MessageAnswer::Ok,
                        [&] { EXPECT_TRUE(rig.log.WaitFor("show Hint")); });
    rig.driver.OnCancelJob();
    rig.Wait();
    const auto lines = rig.log.OfWorkers();
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines[0].substr(8), ": IDS_UNHEALTHY_1 | IDS_INFORMATION | Yes | No");
    EXPECT_EQ(Lines(lines.begin() + 1, lines.end()),
              Join({{"answered Ok", "stop timer 1"}, kHomeState}));
}

TEST(CancelCommand, DoesNothingWithoutARepairOrASave) {
    JobRig rig;
    rig.driver.OnCancelJob();
    EXPECT_EQ(rig.log.All(), Lines{});
}

// Only a worker that had passed its last checkpoint when the question came can do this.
TEST(CancelCommand, LeavesAJobAloneThatEndedBehindTheQuestion) {
    JobRig rig;
    Pace pace;
    rig.ChooseMov();
    rig.face.Before("stop timer 1", [&] { static_cast<void>(pace.NextRound()); });
    rig.driver.OnRepair();
    ASSERT_TRUE(pace.WaitForArrivals(1));
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes, [&] {
        pace.Finish();
        EXPECT_TRUE(rig.log.WaitFor("redraw Bottom"));
    });
    rig.log.Clear();
    rig.driver.OnCancelJob();
    rig.Wait();
    EXPECT_EQ(rig.log.OfInterface(),
              Join({kPaused, {kQuestion, "answered Yes", "redraw Frame", "Pause = IDS_PAUSE"}}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
    EXPECT_TRUE(std::filesystem::exists(rig.RepairedMov()));
}

TEST_F(RunningJob, IsLeftWithoutAQuestionByAnInterrupt) {
    StartMov();
    rig.driver.OnPauseResume();
    rig.driver.CancelAtOnce();
    pace.LetThrough(1);
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::Cancelled);
    EXPECT_FALSE(std::filesystem::exists(rig.RepairedMov()));
}

TEST_F(RunningJob, OfAviFilesIsLeftWithoutAQuestionByAnInterrupt) {
    StartAvi();
    rig.driver.CancelAtOnce();
    pace.LetThrough(1);
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::Cancelled);
    EXPECT_FALSE(std::filesystem::exists(rig.RepairedAvi()));
}

TEST(AviProgress, IsNothingToAMovJob) {
    JobRig rig;
    rig.state.g_bMovJob = 1;
    rig.state.g_bProgressFresh = 1;
    rig.driver.OnAviProgress();
    EXPECT_EQ(rig.log.All(), Lines{});
    EXPECT_EQ(rig.state.g_bProgressFresh, 1);
}

TEST(AviProgress, OnlyResetsTheBarTheFirstTime) {
    JobRig rig;
    rig.state.g_bProgressFresh = 1;
    rig.state.g_lJobAlive = 1;
    rig.state.g_nAviPercent = 3;
    rig.driver.OnAviProgress();
    EXPECT_EQ(rig.log.All(), (Lines{"bar reset", "redraw Centre"}));
    EXPECT_EQ(rig.state.g_bProgressFresh, 0);
    EXPECT_EQ(rig.state.g_nAviPercentShown, 0);
    rig.log.Clear();
    rig.driver.OnAviProgress();
    EXPECT_EQ(rig.log.All(), (Lines{"bar 3", "PercentText = 3%"}));
    EXPECT_EQ(rig.state.g_nAviPercentShown, 3);
}

TEST(AviProgress, FillsTheBarOfAJobThatIsNoLongerAlive) {
    JobRig rig;
    rig.state.g_nAviPercent = 40;
    rig.driver.OnAviProgress();
    EXPECT_EQ(rig.log.All(), Lines{"bar 100"});
    EXPECT_EQ(rig.state.g_nAviPercent, 100);
    EXPECT_EQ(rig.state.g_nAviPercentShown, 0);
}

TEST(AviProgress, DrawsAPercentOnce) {
    JobRig rig;
    rig.state.g_lJobAlive = 1;
    rig.state.g_nAviPercent = 40;
    rig.driver.OnAviProgress();
    rig.driver.OnAviProgress();
    EXPECT_EQ(rig.log.All(), (Lines{"bar 40", "PercentText = 40%"}));
}

TEST(AviProgress, ResetsTheBarAtOnceAtExactlyOneHundred) {
    JobRig rig;
    rig.state.g_lJobAlive = 1;
    rig.state.g_nAviPercent = 100;
    rig.driver.OnAviProgress();
    EXPECT_EQ(rig.log.All(), (Lines{"bar 100", "bar reset", "PercentText = 100%"}));
}

TEST(AviProgress, KeepsButDoesNotDrawAValueAboveOneHundred) {
    JobRig rig;
    rig.state.g_lJobAlive = 1;
    rig.state.g_nAviPercent = 101;
    rig.driver.OnAviProgress();
    EXPECT_EQ(rig.log.All(), Lines{});
    EXPECT_EQ(rig.state.g_nAviPercentShown, 101);
}

}  // namespace
}  // namespace clipfix::test
