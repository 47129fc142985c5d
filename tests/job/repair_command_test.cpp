#include <filesystem>
#include <gtest/gtest.h>

#include "job_rig.h"
#include "platform/folders.h"
#include "support/small_file_system.h"

// The Repair command, from the press of the button to the started worker.
namespace clipfix::test {
namespace {

// A file of that many bytes that takes no room.
void MakeSparseFile(const std::string& path, std::uint64_t bytes) {
    WriteFile(path, {});
    std::filesystem::resize_file(path, bytes);
}

const Lines kRefusedHome = {
    "stop animation",
    "Pause = IDS_RESUME",
    "dialog 4: IDS_REPAIR_PROCESSING | IDS_INFORMATION |  | Ok",
    "answered Ok",
    "animate repair",
    "Pause = IDS_PAUSE",
};

TEST(RepairCommand, ResetsTheFlagsOfTheJobAndNoOthers) {
    JobRig rig;
    rig.ChooseAvi();
    rig.state.g_bProgressFresh = 0;
    rig.state.g_bRepairCancelled = 1;
    rig.state.g_bRepairPaused = 1;
    rig.state.g_nMovPercent = 99;
    rig.state.g_tsPaused = 5;
    rig.state.g_tsPausedTotal = 6;
    rig.state.g_nAviPercent = 70;
    rig.state.g_nAviPercentShown = 71;
    rig.state.g_nPauseAccounted = 1;
    rig.state.g_bMessageYes = 1;
    rig.face.Before("Title = IDS_REPAIRING_VIDEO", [&] {
        EXPECT_EQ(rig.state.g_bProgressFresh, 1);
        EXPECT_EQ(rig.state.g_bRepairCancelled, 0);
        EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0");
        EXPECT_EQ(rig.state.g_nMovPercent, 0);
        EXPECT_EQ(rig.state.g_tsPaused, 0);
        EXPECT_EQ(rig.state.g_tsPausedTotal, 0);
        EXPECT_EQ(rig.state.g_nAviPercent, 70);
        EXPECT_EQ(rig.state.g_nAviPercentShown, 71);
        EXPECT_EQ(rig.state.g_nPauseAccounted, 1);
        EXPECT_EQ(rig.state.g_bMessageYes, 1);
    });
    rig.driver.OnRepair();
    rig.Wait();
}

TEST(RepairCommand, StartsAMovJobWithTheDamagedFileAsItsOwnReference) {
    JobRig rig;
    rig.ChooseMov();
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.OfInterface(), Join({kMovProgressView, {"timer 1: 1000 ms"}}));
    EXPECT_EQ(rig.log.OfWorkers().at(2), "check " + rig.DamagedMov());
    EXPECT_EQ(rig.state.g_strReferencePath, rig.DamagedMov());
    EXPECT_EQ(rig.state.g_tStart, kTestNow);
}

TEST(RepairCommand, LeavesAChosenReferenceAlone) {
    JobRig rig;
    rig.ChooseMov();
    rig.ChooseReference();
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.OfWorkers().at(2), "check " + rig.Healthy());
    EXPECT_EQ(rig.state.g_strReferencePath, rig.Healthy());
}

TEST(RepairCommand, StartsAnAviJob) {
    JobRig rig;
    rig.ChooseAvi();
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.OfInterface(), Join({kAviProgressView, {"timer 1: 1000 ms"}}));
    EXPECT_EQ(rig.log.OfWorkers().at(1), "repair " + rig.DamagedAvi());
}

// The home step finds g_bRepairRunning at 1, refuses, and the progress view stays.
TEST(RepairCommand, StaysInTheProgressViewWhenTheMovFileCannotBeOpened) {
    JobRig rig;
    rig.ChooseMov();
    std::filesystem::remove(rig.DamagedMov());
    rig.face.WillAnswer("IDS_MOVERROR4", MessageAnswer::Ok,
                        [&] { EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0"); });
    rig.face.WillAnswer("IDS_REPAIR_PROCESSING", MessageAnswer::Ok,
                        [&] { EXPECT_EQ(rig.RepairFlags(), "running 1, paused 1"); });
    rig.driver.OnRepair();
    EXPECT_EQ(rig.log.All(),
              Join({kMovProgressView,
                    {"dialog 4: IDS_MOVERROR4 | IDS_INFORMATION |  | Ok", "answered Ok"},
                    kRefusedHome}));
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0");
    EXPECT_EQ(rig.driver.End(), JobEnd::CannotOpen);
}

TEST(RepairCommand, CanBeLeftByCancelWhenTheMovFileCannotBeOpened) {
    JobRig rig;
    rig.ChooseMov();
    std::filesystem::remove(rig.DamagedMov());
    rig.face.WillAnswer("IDS_MOVERROR4", MessageAnswer::Ok);
    rig.face.WillAnswer("IDS_REPAIR_PROCESSING", MessageAnswer::Ok);
    rig.driver.OnRepair();
    rig.log.Clear();
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
    rig.face.WillAnswer("IDS_REPAIR_ABORTED", MessageAnswer::Ok);
    rig.driver.OnCancelJob();
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    rig.log.Clear();
    rig.driver.OnHomePage();
    EXPECT_EQ(rig.log.All(), kHomeState);
}

TEST(RepairCommand, ShowsNothingWhenTheAviFileCannotBeOpened) {
    JobRig rig;
    rig.ChooseAvi();
    std::filesystem::remove(rig.DamagedAvi());
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.All(), kAviProgressView);
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0");
    EXPECT_EQ(rig.state.g_tStart, 0);
    const auto keys = rig.face.KeysRead();
    ASSERT_GE(keys.size(), 2U);
    EXPECT_EQ(keys[keys.size() - 2], "IDS_AVIERROR7");
    EXPECT_EQ(keys.back(), "IDS_INFORMATION");

    // The way out is Cancel, which in an AVI job shows no note.
    rig.log.Clear();
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
    rig.driver.OnCancelJob();
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
}

TEST(RepairCommand, ShowsNothingWhenNoAviFileWasChosen) {
    JobRig rig;
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.All(), kAviProgressView);
    EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0");
    const auto keys = rig.face.KeysRead();
    EXPECT_EQ(keys[keys.size() - 2], "IDS_WORD5");
    EXPECT_EQ(keys.back(), "IDS_INFORMATION");
}

TEST(RepairCommand, RefusesAFolderAsItRefusesAFileThatIsMissing) {
    JobRig rig;
    ChooseCorruptFile(rig.state, rig.folder.Path().string());
    rig.driver.OnRepair();
    EXPECT_EQ(rig.face.KeysRead().at(rig.face.KeysRead().size() - 2), "IDS_AVIERROR7");
}

class RepairCommandOnASmallDisk : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!disk.IsMounted()) {
            GTEST_SKIP() << "only root can mount the small file system of this test";
        }
        free = platform::FreeBytes(disk.Path()).value();
        ASSERT_GT(free, 100 * kMiB);
    }

    SmallFileSystem disk{101 * kMiB};
    std::uint64_t free = 0;
};

const Lines kWantOfSpace = Join({
    {"dialog 5: IDS_ERROR9 | IDS_INFORMATION |  | Ok", "answered Ok", "stop animation",
     "Pause = IDS_RESUME"},
    kHomeState,
});

TEST_F(RepairCommandOnASmallDisk, StartsAMovJobThatJustFits) {
    JobRig rig(disk / "$tp");
    rig.ChooseMov();
    MakeSparseFile(rig.DamagedMov(), free - 100 * kMiB);
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.OfInterface(), Join({kMovProgressView, {"timer 1: 1000 ms"}}));
}

TEST_F(RepairCommandOnASmallDisk, GoesHomeFromAMovJobThatIsOneByteTooLarge) {
    JobRig rig(disk / "$tp");
    rig.ChooseMov();
    MakeSparseFile(rig.DamagedMov(), free - 100 * kMiB + 1);
    rig.face.WillAnswer("IDS_ERROR9", MessageAnswer::Ok,
                        [&] { EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0"); });
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.All(), Join({kMovProgressView, kWantOfSpace}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 1") << "the flag stays until the next Repair";
    EXPECT_EQ(rig.driver.End(), JobEnd::NoSpace);
}

TEST_F(RepairCommandOnASmallDisk, GoesHomeFromAnAviJobThatIsTooLarge) {
    JobRig rig(disk / "$tp");
    rig.ChooseAvi();
    MakeSparseFile(rig.DamagedAvi(), free - 100 * kMiB + 1);
    rig.face.WillAnswer("IDS_ERROR9", MessageAnswer::Ok);
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.All(), Join({kAviProgressView, kWantOfSpace}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 1");
}

TEST_F(RepairCommandOnASmallDisk, StartsTheNextJobUnpaused) {
    JobRig rig(disk / "$tp");
    rig.ChooseAvi();
    MakeSparseFile(rig.DamagedAvi(), free);
    rig.face.WillAnswer("IDS_ERROR9", MessageAnswer::Ok);
    rig.driver.OnRepair();
    rig.FinishAviJob();
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
}

// The size tested is the reference's. That is how it is meant.
TEST_F(RepairCommandOnASmallDisk, LetsALargeDamagedFileThroughWithASmallReference) {
    JobRig rig(disk / "$tp");
    rig.ChooseMov();
    MakeSparseFile(rig.DamagedMov(), 20 * free);
    rig.ChooseReference();
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
}

TEST_F(RepairCommandOnASmallDisk, RefusesWhenLessThanTheReserveIsFree) {
    SmallFileSystem tiny(kMiB);
    JobRig rig(tiny / "$tp");
    rig.ChooseAvi();
    MakeSparseFile(rig.DamagedAvi(), 0);  // 0 is above a negative number of free bytes
    rig.face.WillAnswer("IDS_ERROR9", MessageAnswer::Ok);
    rig.driver.OnRepair();
    EXPECT_EQ(rig.driver.End(), JobEnd::NoSpace);
}

}  // namespace
}  // namespace clipfix::test
