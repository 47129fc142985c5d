#include <filesystem>
#include <gtest/gtest.h>

#include "job_rig.h"

// The way home, the Back button, and the close command of the frame.
namespace clipfix::test {
namespace {

TEST(HomeStep, PutsTheSectionsBackAndForgetsTheReference) {
    JobRig rig;
    rig.ChooseMov();
    rig.ChooseReference();
    rig.state.g_lJobAlive = 1;
    rig.driver.OnHomePage();
    EXPECT_EQ(rig.log.All(), kHomeState);
    EXPECT_EQ(rig.state.g_bMovJob, 0);
    EXPECT_EQ(rig.state.g_lJobAlive, 0);
    EXPECT_EQ(rig.state.g_strReferencePath, "");
    EXPECT_EQ(rig.state.g_strCorruptPath, rig.DamagedMov()) << "reset by the next choice only";
}

TEST(HomeStep, StopsTheClockOnlyWhenItRuns) {
    JobRig rig;
    rig.driver.OnHome();
    EXPECT_EQ(rig.log.All(), kHomeState);
    rig.FinishMovJob();
    rig.log.Clear();
    rig.driver.OnHome();
    EXPECT_EQ(rig.log.All(), Join({{"stop timer 1", "rebuild sections"}, kHomeState}));
    rig.log.Clear();
    rig.driver.OnHome();
    EXPECT_EQ(rig.log.All(), kHomeState);
}

// The timers of the sections end with them.
TEST(HomeStep, ByTheTitleBarFindsNoClockToStopAfterTheSectionsWereRebuilt) {
    JobRig rig;
    rig.FinishMovJob();
    rig.log.Clear();
    rig.driver.OnHomePage();
    EXPECT_EQ(rig.log.All(), Join({{"rebuild sections"}, kHomeState}));
    rig.log.Clear();
    rig.driver.OnHome();
    EXPECT_EQ(rig.log.All(), kHomeState);
}

TEST(HomeStep, DeletesTheResultOfAMovJob) {
    JobRig rig;
    rig.FinishMovJob();
    ASSERT_TRUE(std::filesystem::exists(rig.RepairedMov()));
    rig.driver.OnHome();
    EXPECT_FALSE(std::filesystem::exists(rig.RepairedMov()));
    EXPECT_TRUE(std::filesystem::exists(rig.driver.WorkFolder())) << "the folder stays";
}

TEST(HomeStep, ClosesTheEngineAndDeletesTheResultOfAnAviJob) {
    JobRig rig;
    rig.FinishAviJob();
    ASSERT_TRUE(std::filesystem::exists(rig.RepairedAvi()));
    rig.log.Clear();
    rig.driver.OnHome();
    EXPECT_EQ(rig.log.All(),
              Join({{"stop timer 1", "close work files", "rebuild sections"}, kHomeState}));
    EXPECT_FALSE(std::filesystem::exists(rig.RepairedAvi()));
}

TEST(HomeStep, RebuildsTheWindowsOnceAfterTheFirstFinishedJob) {
    JobRig rig;
    rig.FinishMovJob();
    EXPECT_EQ(rig.state.g_nFinishedJobs, 1);
    rig.driver.OnHome();
    EXPECT_EQ(rig.state.g_nFinishedJobs, 0);
    rig.log.Clear();
    rig.driver.OnHome();
    EXPECT_FALSE(rig.log.Has("rebuild sections"));
}

TEST(HomeStep, RebuildsTheWindowsFromSevenThousandGraphicObjectsOn) {
    JobRig rig;
    rig.face.graphicObjects = 6999;
    rig.driver.OnHome();
    EXPECT_FALSE(rig.log.Has("rebuild sections"));
    rig.face.graphicObjects = 7000;
    rig.driver.OnHome();
    EXPECT_TRUE(rig.log.Has("rebuild sections"));
}

TEST(HomeStep, DoesNotRebuildAtTwoFinishedJobs) {
    JobRig rig;
    rig.state.g_nFinishedJobs = 2;
    rig.driver.OnHome();
    EXPECT_FALSE(rig.log.Has("rebuild sections"));
    EXPECT_EQ(rig.state.g_nFinishedJobs, 2);
}

TEST(HomeStep, ClosesAPlayerThatIsOpen) {
    JobRig rig;
    rig.state.g_bPlayerOpen = 1;
    rig.driver.OnHomePage();
    EXPECT_EQ(rig.log.All(), Join({{"close player"}, kHomeState}));
    EXPECT_EQ(rig.state.g_bPlayerOpen, 0);
}

TEST(HomeStep, DoesNothingAtAllDuringASave) {
    JobRig rig;
    rig.FinishMovJob();
    rig.state.g_bSaving = 1;
    rig.state.g_bPlayerOpen = 1;
    rig.log.Clear();
    rig.driver.OnHomePage();
    EXPECT_EQ(rig.log.All(), Lines{});
    EXPECT_TRUE(std::filesystem::exists(rig.RepairedMov()));
}

const std::string kNote = "dialog 4: IDS_REPAIR_PROCESSING | IDS_INFORMATION |  | Ok";

// What the home step and the close command do while a job runs, paused before or not.
class Refusal : public ::testing::Test {
  protected:
    ~Refusal() override { pace.Finish(); }
    void SetUp() override {
        rig.engines.find = [this](JobContext job) {
            static_cast<void>(GoRound(job, JobControl::Work::MovEngine, pace));
        };
        rig.ChooseMov();
        rig.driver.OnRepair();
        ASSERT_TRUE(pace.WaitForArrivals(1));
        rig.log.Clear();
        rig.face.WillAnswer("IDS_REPAIR_PROCESSING", MessageAnswer::Ok, [this] {
            EXPECT_EQ(rig.RepairFlags(), "running 1, paused 1");
            pace.LetThrough(1);
            EXPECT_FALSE(pace.ArrivesInAMoment(2));
        });
    }
    const Lines pauseAndResume = {"stop animation", "Pause = IDS_RESUME", kNote,
                                  "answered Ok",    "animate repair",     "Pause = IDS_PAUSE"};
    Pace pace;
    JobRig rig;
};

TEST_F(Refusal, OfTheHomeStepPausesTheJobAroundItsNote) {
    rig.driver.OnHomePage();
    EXPECT_EQ(rig.log.OfInterface(), pauseAndResume);
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0");
    EXPECT_TRUE(pace.WaitForArrivals(2));
}

TEST_F(Refusal, OfTheHomeCommandStopsTheClockAllTheSame) {
    rig.driver.OnHome();
    EXPECT_EQ(rig.log.OfInterface(), Join({{"stop timer 1"}, pauseAndResume}));
}

TEST_F(Refusal, OfTheHomeStepLeavesAJobPausedThatWasPaused) {
    rig.driver.OnPauseResume();
    rig.log.Clear();
    rig.driver.OnHomePage();
    EXPECT_EQ(rig.log.All(), (Lines{kNote, "answered Ok"}));
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 1");
}

TEST_F(Refusal, OfTheCloseCommandPausesTheJobAroundItsNote) {
    EXPECT_FALSE(rig.driver.OnCloseFrame());
    EXPECT_EQ(rig.log.OfInterface(), pauseAndResume);
}

TEST_F(Refusal, OfTheCloseCommandLeavesAJobPausedThatWasPaused) {
    rig.driver.OnPauseResume();
    rig.log.Clear();
    EXPECT_FALSE(rig.driver.OnCloseFrame());
    EXPECT_EQ(rig.log.All(), (Lines{kNote, "answered Ok"}));
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 1");
}

TEST(BackCommand, EnablesRepairAndGoesHome) {
    JobRig rig;
    rig.ChooseMov();
    rig.driver.OnBack();
    EXPECT_EQ(rig.log.All(), Join({{"enable Repair"}, kHomeState}));
}

TEST(CloseCommand, LeavesAfterYesAndDeletesTheResult) {
    JobRig rig;
    rig.FinishMovJob();
    rig.log.Clear();
    rig.face.WillAnswer("IDS_CLOSE_DLG_MSG ", MessageAnswer::Yes);
    EXPECT_TRUE(rig.driver.OnCloseFrame());
    EXPECT_EQ(rig.log.All(), (Lines{"dialog 1: IDS_CLOSE_DLG_MSG  | IDS_CONFIRMATION | Yes | No",
                                    "answered Yes", "close player"}));
    EXPECT_FALSE(std::filesystem::exists(rig.RepairedMov()));
}

TEST(CloseCommand, StaysAfterNo) {
    JobRig rig;
    rig.FinishMovJob();
    rig.log.Clear();
    rig.face.WillAnswer("IDS_CLOSE_DLG_MSG ", MessageAnswer::No);
    EXPECT_FALSE(rig.driver.OnCloseFrame());
    EXPECT_FALSE(rig.log.Has("close player"));
    EXPECT_TRUE(std::filesystem::exists(rig.RepairedMov()));
}

TEST(WorkFolder, IsMadeOnceAndStays) {
    JobRig rig;
    rig.driver.MakeWorkFolder();
    ASSERT_TRUE(std::filesystem::is_directory(rig.driver.WorkFolder()));
    std::filesystem::permissions(rig.driver.WorkFolder(), std::filesystem::perms::owner_all);
    rig.driver.MakeWorkFolder();
    EXPECT_EQ(std::filesystem::status(rig.driver.WorkFolder()).permissions(),
              std::filesystem::perms::owner_all);
}

}  // namespace
}  // namespace clipfix::test
