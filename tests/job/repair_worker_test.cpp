#include <filesystem>
#include <gtest/gtest.h>

#include "job/driver/player_args.h"
#include "job_rig.h"

// What the repair worker shows and decides, from the structure check to the end of the job.
namespace clipfix::test {
namespace {

const std::string kAnalyzing =
    "StatusText = Analyzing video file... (20 px, 4B4B4B, Segoe UI, on FFFFFF)";
const Lines kUnhealthy = {"dialog 4: IDS_UNHEALTHY_1 | IDS_INFORMATION | Yes | No", "answered Ok"};

Lines ReferencePageOf(const JobRig& rig) {
    return Join({{"stop animation", "hide AddFile", "enable ChooseReference",
                  "show ChooseReference", "enable WhyHealthyLink", "show WhyHealthyLink",
                  "CorruptedLabel = " + rig.state.g_strCorruptLabel},
                 kReferencePage});
}

TEST(MovWorker, GoesStraightOnWhenTheDamagedFileReadsAsAMovie) {
    JobRig rig;
    rig.FinishMovJob();
    EXPECT_EQ(rig.log.All(),
              Join({kMovProgressView,
                    {"timer 1: 1000 ms", "make MOV engine", kAnalyzing, "check " + rig.DamagedMov(),
                     "find samples", "write " + rig.RepairedMov() + " from " + rig.DamagedMov()},
                    kFinishedMovPage}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    EXPECT_EQ(rig.state.g_lJobAlive, 0);
    EXPECT_EQ(rig.state.g_bJobFailed, 0);
    EXPECT_EQ(rig.state.g_nFinishedJobs, 1);
    EXPECT_EQ(rig.state.g_strOutputPath, rig.RepairedMov());
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
    EXPECT_EQ(ReadFile(rig.RepairedMov()), ByteVector(10, 0x42));
}

TEST(MovWorker, AsksForAReferenceWhenTheDamagedFileHoldsNoMovie) {
    JobRig rig;
    rig.ChooseMov();
    rig.engines.check = [](JobContext) { return false; };
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(
        rig.log.All(),
        Join({kMovProgressView,
              {"timer 1: 1000 ms", "make MOV engine", kAnalyzing, "check " + rig.DamagedMov()},
              ReferencePageOf(rig)}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    EXPECT_EQ(rig.state.g_strReferencePath, "");
    EXPECT_EQ(rig.driver.End(), JobEnd::ReferenceNeeded);
    EXPECT_FALSE(std::filesystem::exists(rig.driver.WorkFolder()));

    // Timer 1 goes on and does nothing.
    rig.log.Clear();
    rig.driver.OnTimer(kClockTimer);
    EXPECT_EQ(rig.log.All(), Lines{});
}

TEST(MovWorker, RunsWithTheReferenceThatWasThenChosen) {
    JobRig rig;
    rig.ChooseMov();
    rig.engines.check = [&](JobContext job) { return job.state.g_strCheckedPath == rig.Healthy(); };
    rig.driver.OnRepair();
    rig.Wait();
    rig.ChooseReference();
    rig.log.Clear();
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.All(),
              Join({kMovProgressView,
                    {"timer 1: 1000 ms", "make MOV engine", kAnalyzing, "check " + rig.Healthy(),
                     "find samples", "write " + rig.RepairedMov() + " from " + rig.DamagedMov()},
                    kFinishedMovPage}));
}

TEST(MovWorker, GoesHomeWhenTheChosenReferenceHoldsNoMovie) {
    JobRig rig;
    rig.ChooseMov();
    rig.ChooseReference();
    rig.engines.check = [](JobContext) { return false; };
    rig.face.WillAnswer("IDS_UNHEALTHY_1", MessageAnswer::Ok,
                        [&] { EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0"); });
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.All(),
              Join({kMovProgressView,
                    {"timer 1: 1000 ms", "make MOV engine", kAnalyzing, "check " + rig.Healthy()},
                    kUnhealthy,
                    {"stop timer 1"},
                    kHomeState}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    EXPECT_EQ(rig.driver.End(), JobEnd::ReferenceUnusable);
    EXPECT_FALSE(std::filesystem::exists(rig.driver.WorkFolder()));
}

TEST(MovWorker, AsksAgainWhenTheChosenReferenceIsTheDamagedFileItself) {
    JobRig rig;
    rig.ChooseMov();
    ChooseReferenceFile(rig.state, rig.DamagedMov());
    rig.engines.check = [](JobContext) { return false; };
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::ReferenceNeeded);
}

TEST(MovWorker, TakesAReferenceThatDiffersOnlyInCaseForAnotherFile) {
    JobRig rig;
    rig.ChooseMov();
    const std::string other = (rig.folder / "Damaged.mp4").string();
    WriteFile(other, ByteVector(5, 1));
    ChooseReferenceFile(rig.state, other);
    rig.engines.check = [](JobContext) { return false; };
    rig.face.WillAnswer("IDS_UNHEALTHY_1", MessageAnswer::Ok);
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::ReferenceUnusable);
}

// The check sets kind 4 and g_bJobFailed and shows nothing; kind 4 stands, so the clock stands too.
TEST(MovWorker, TreatsACheckThatCannotOpenItsFileAsAFileWithoutAMovie) {
    JobRig rig;
    rig.ChooseMov();
    rig.engines.check = [](JobContext job) {
        job.state.g_nMessageKind = 4;
        job.state.g_bJobFailed = 1;
        return false;
    };
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(
        rig.log.OfWorkers(),
        Join({{"make MOV engine", kAnalyzing, "check " + rig.DamagedMov()}, ReferencePageOf(rig)}));
    EXPECT_EQ(rig.state.g_nMessageKind, 4);
    EXPECT_EQ(rig.driver.End(), JobEnd::ReferenceNeeded);

    rig.engines.check = [&](JobContext) {
        rig.log.Clear();
        rig.driver.OnTimer(kClockTimer);
        EXPECT_EQ(rig.log.All(), Lines{});
        return true;
    };
    rig.ChooseReference();
    rig.driver.OnRepair();
    rig.Wait();
}

TEST(MovWorker, GoesHomeAfterAnEngineThatFoundNothingToWrite) {
    JobRig rig;
    rig.ChooseMov();
    rig.engines.write = [](JobContext job, const std::string& output) {
        WriteFile(output, {});
        job.state.g_nMessageKind = 4;
        job.frontEnd.RunMessageDialog("IDS_UNHEALTHY_1", "IDS_INFORMATION", "Yes", "No");
        job.state.g_bJobFailed = 1;
    };
    rig.face.WillAnswer("IDS_UNHEALTHY_1", MessageAnswer::Ok);
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.OfWorkers(),
              Join({{"make MOV engine", kAnalyzing, "check " + rig.DamagedMov(), "find samples",
                     "write " + rig.RepairedMov() + " from " + rig.DamagedMov()},
                    kUnhealthy,
                    {"stop timer 1"},
                    kHomeState}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    EXPECT_EQ(rig.driver.End(), JobEnd::NothingRecovered);
    EXPECT_FALSE(std::filesystem::exists(rig.RepairedMov()));
}

TEST(MovWorker, DeletesAnOlderResultBeforeTheEngineWrites) {
    JobRig rig;
    rig.ChooseMov();
    std::filesystem::create_directory(rig.driver.WorkFolder());
    WriteFile(rig.RepairedMov(), ByteVector(5, 9));
    bool stoodThere = true;
    rig.engines.find = [&](JobContext) { EXPECT_TRUE(std::filesystem::exists(rig.RepairedMov())); };
    rig.engines.write = [&](JobContext, const std::string& output) {
        stoodThere = std::filesystem::exists(output);
    };
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_FALSE(stoodThere);
}

TEST(MovWorker, EndsBadlyWithoutAPathToCheck) {
    JobRig rig;
    rig.ChooseMov();
    rig.ChooseReference();
    rig.state.g_strCheckedPath.clear();
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.OfWorkers(), Join({{"stop timer 1"}, kHomeState}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
}

// A cancel before the check has set g_lJobAlive does not stop the check; the flag for the engine
// stands, and the end of the job finds both.
TEST(MovWorker, TellsOfACancelThatCameTooLateToClearTheFlag) {
    JobRig rig;
    rig.ChooseMov();
    rig.engines.write = [](JobContext job, const std::string& output) {
        WriteFile(output, {});
        job.state.g_bRepairCancelled = 1;
    };
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.OfWorkers(),
              Join({{"make MOV engine", kAnalyzing, "check " + rig.DamagedMov(), "find samples",
                     "write " + rig.RepairedMov() + " from " + rig.DamagedMov(), "message 800B",
                     "box: IDS_WORD8 | IDS_INFORMATION"}}));
    EXPECT_EQ(rig.state.g_strOutputPath, " ");
    EXPECT_FALSE(std::filesystem::exists(rig.RepairedMov()));
    EXPECT_EQ(rig.state.g_lJobAlive, 0);
    EXPECT_EQ(rig.driver.End(), JobEnd::Cancelled);
}

// A path of one blank names no file here, wherever the program was started.
TEST(MovWorker, DeletesNothingByABlankedPath) {
    JobRig rig;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(rig.folder.Path());
    WriteFile(" ", ByteVector(3, 3));
    rig.ChooseMov();
    rig.state.g_strOutputPath = " ";
    rig.driver.OnHomePage();
    EXPECT_TRUE(std::filesystem::exists(rig.folder / " "));
    std::filesystem::current_path(before);
}

TEST(MovWorker, ReplacesTheEngineOfTheFirstJobByThatOfTheSecond) {
    JobRig rig;
    rig.FinishMovJob();
    const MovJob* first = rig.driver.CurrentMovJob();
    ASSERT_NE(first, nullptr);
    rig.driver.OnHome();
    EXPECT_EQ(rig.driver.CurrentMovJob(), first) << "kept for the details until the next job";
    rig.FinishMovJob();
    EXPECT_NE(rig.driver.CurrentMovJob(), nullptr);
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
    EXPECT_EQ(rig.state.g_nFinishedJobs, 1) << "rebuilt in between";
}

TEST(AviWorker, RunsToTheDetails) {
    JobRig rig;
    rig.FinishAviJob();
    EXPECT_EQ(rig.log.All(),
              Join({kAviProgressView,
                    {"timer 1: 1000 ms", "make AVI engine", "repair " + rig.DamagedAvi()},
                    kFinishedAviPage}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    EXPECT_EQ(rig.state.g_lJobAlive, 1) << "an AVI job's end leaves the flag";
    EXPECT_EQ(rig.state.g_nFinishedJobs, 1);
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
}

TEST(AviWorker, TellsOfAnEngineThatGaveUpAndGoesHome) {
    JobRig rig;
    rig.ChooseAvi();
    rig.engines.repair = [](JobContext) { return 0; };
    rig.face.WillAnswer("IDS_UNHEALTHY_1", MessageAnswer::Ok,
                        [&] { EXPECT_EQ(rig.RepairFlags(), "running 1, paused 0"); });
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.OfWorkers(), Join({{"make AVI engine", "repair " + rig.DamagedAvi()},
                                         kUnhealthy,
                                         {"hide Cancel", "stop timer 1", "close work files"},
                                         kHomeState}));
    EXPECT_EQ(rig.RepairFlags(), "running 0, paused 0");
    EXPECT_EQ(rig.state.g_bJobFailed, 0);
    EXPECT_EQ(rig.state.g_strPlayerArgs, "");
    EXPECT_EQ(rig.driver.End(), JobEnd::NothingRecovered);
}

TEST(AviWorker, MakesTheArgumentsOfThePlayer) {
    JobRig rig;
    rig.engines.repair = [](JobContext job) {
        job.state.g_ullAviRiffBody = 1572864;
        return 1;
    };
    rig.FinishAviJob();
    EXPECT_EQ(rig.state.g_strPlayerArgs, rig.RepairedAvi() + "$$damaged.avi$$1.50 MB$$$$0");
}

// g_bAviContinue is set at the choice of the file and not by Repair.
TEST(AviWorker, LeavesAtOnceOnASecondRunWithoutANewChoice) {
    JobRig rig;
    rig.ChooseAvi();
    rig.state.g_bAviContinue = 0;
    rig.engines.repair = [](JobContext job) {
        EXPECT_FALSE(job.control.KeepGoing(JobControl::Work::AviEngine));
        return 1;
    };
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.log.OfWorkers(), Join({{"make AVI engine", "repair " + rig.DamagedAvi(),
                                          "hide Cancel", "stop timer 1", "close work files"},
                                         kHomeState}));
    EXPECT_EQ(rig.driver.End(), JobEnd::Cancelled);
}

TEST(SizeText, IsInMebibytesBelowOneGibibyteAndInGibibytesFromThere) {
    EXPECT_EQ(SizeText(0), "0.00 MB");
    EXPECT_EQ(SizeText(5243), "0.01 MB");  // 0.005000...
    EXPECT_EQ(SizeText(1048576), "1.00 MB");
    EXPECT_EQ(SizeText(1073741823), "1024.00 MB");
    EXPECT_EQ(SizeText(1073741824), "1.00 GB");
    EXPECT_EQ(SizeText(4294963296), "4.00 GB");
}

}  // namespace
}  // namespace clipfix::test
