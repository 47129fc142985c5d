#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

#include "job_rig.h"
#include "platform/folders.h"
#include "support/small_file_system.h"

// The save of a repaired file: the command, the worker, its cancel, and what it leaves behind.
namespace clipfix::test {
namespace {

using std::filesystem::exists;

const std::string kAskMov =
    "ask save path: KelvoClipfix_ 15-11-2026-5-3-9.mov | *.mov | Movie File(*.mov)|*.mov|| | 2054";
const std::string kAskAvi =
    "ask save path: KelvoClipfix_ 15-11-2026-5-3-9.avi | *.avi | AVI File(*.avi)|*.avi|| | 2054";
const std::string kCompleted = "dialog 3: IDS_SAVE_COMPLETED | IDS_INFORMATION |  | Ok";
const std::string kSaveAborted = "dialog 3: IDS_SAVE_ABORTED | IDS_INFORMATION |  | Ok";

// What the save worker shows up to its move.
Lines Destination(const std::string& shown) {
    return {"PathLabel = IDS_DESTINATION: " + shown, "show PathLabel", "animate save"};
}

ByteVector SomeBytes(std::uint64_t count) {
    ByteVector bytes(static_cast<std::size_t>(count));
    std::uint32_t state = 1;
    for (auto& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(state >> 24U);
    }
    return bytes;
}

class Save : public ::testing::Test {
  protected:
    // A finished job with that result. Files of its own are made by short names, so that the
    // display form of their paths is the path.
    void FinishMov(const ByteVector& result = ByteVector(10, 7)) {
        rig.engines.write = [result](JobContext job, const std::string& output) {
            WriteFile(output, result);
            job.state.g_liOutputSize = static_cast<std::int64_t>(result.size());
        };
        rig.FinishMovJob();
        ASSERT_EQ(rig.driver.End(), JobEnd::Repaired);
        rig.log.Clear();
    }
    void FinishAvi(const ByteVector& result = ByteVector(10, 7)) {
        rig.engines.repair = [result](JobContext job) {
            WriteFile(job.state.g_strAviRepairedPath, result);
            return 1;
        };
        rig.FinishAviJob();
        rig.log.Clear();
    }
    void SaveTo(const std::string& path) {
        rig.face.WillChoose(path);
        rig.driver.OnSave();
    }
    void SaveToTheEnd(const std::string& path) {
        rig.face.WillAnswer("IDS_SAVE_COMPLETED", MessageAnswer::Ok);
        SaveTo(path);
        rig.Wait();
    }
    [[nodiscard]] std::string Here(const std::string& name) const {
        return (folder / name).string();
    }

    TempFolder folder;
    JobRig rig;
};

TEST_F(Save, MovesAMovieAndLeadsHomeByTimer) {
    FinishMov();
    const std::string target = Here("s.mov");
    rig.state.g_tsPaused = 4;
    rig.state.g_tsPausedTotal = 5;
    rig.face.WillAnswer("IDS_SAVE_COMPLETED", MessageAnswer::Ok, [&] {
        EXPECT_EQ(rig.SaveFlags(), "saving 0, running 0");
        EXPECT_EQ(rig.state.g_nSavePercent, 100);
    });
    rig.face.Before("animate save", [&] { EXPECT_EQ(rig.SaveFlags(), "saving 1, running 0"); });
    SaveTo(target);
    rig.Wait();
    EXPECT_EQ(rig.log.OfInterface(), Join({{kAskMov}, kSavingView, {"timer 503: 500 ms"}}));
    EXPECT_EQ(rig.log.OfWorkers(),
              Join({Destination(target),
                    {kCompleted, "answered Ok", "enable Save",
                     "open folder " + folder.Path().string() + "/", "timer 1111: 1000 ms"}}));
    EXPECT_EQ(rig.state.g_strSavePath, target);
    EXPECT_EQ(rig.state.g_tsPaused, 0);
    EXPECT_EQ(rig.state.g_tsPausedTotal, 0);
    EXPECT_EQ(rig.state.g_tStart, kTestNow);
    EXPECT_EQ(rig.state.g_lSaveContinue, 1);
    EXPECT_EQ(ReadFile(target), ByteVector(10, 7));
    EXPECT_FALSE(exists(rig.RepairedMov()));

    rig.log.Clear();
    rig.driver.OnTimer(kHomeTimer);
    EXPECT_EQ(rig.log.All(), Join({{"stop timer 1", "rebuild sections"}, kHomeState}));
    EXPECT_TRUE(exists(target));
}

// The worker of an AVI job's save shows the saving view a second time.
TEST_F(Save, MovesAnAvi) {
    FinishAvi();
    const std::string target = Here("s.avi");
    SaveToTheEnd(target);
    EXPECT_EQ(rig.log.OfInterface(), Join({{kAskAvi}, kSavingView, {"timer 503: 500 ms"}}));
    EXPECT_EQ(rig.log.OfWorkers(),
              Join({kSavingView,
                    Destination(target),
                    {kCompleted, "answered Ok", "enable Save",
                     "open folder " + folder.Path().string() + "/", "timer 1111: 1000 ms"}}));
    EXPECT_EQ(ReadFile(target), ByteVector(10, 7));
    EXPECT_FALSE(exists(rig.RepairedAvi()));
}

TEST_F(Save, StaysOnTheDetailsPageWhenItsDialogIsCancelled) {
    FinishMov();
    rig.face.WillChoose(std::nullopt);
    rig.driver.OnSave();
    EXPECT_EQ(rig.log.All(), (Lines{kAskMov, "enable Save"}));
    EXPECT_EQ(rig.SaveFlags(), "saving 0, running 0");
    EXPECT_TRUE(exists(rig.RepairedMov()));
}

TEST_F(Save, ClosesAnOpenPlayerBeforeItsDialogOpens) {
    FinishMov();
    rig.state.g_bPlayerOpen = 1;
    rig.face.WillChoose(std::nullopt);
    rig.driver.OnSave();
    EXPECT_EQ(rig.log.All(), (Lines{"close player", kAskMov, "enable Save"}));
}

TEST_F(Save, ShowsALongDestinationInItsDisplayForm) {
    FinishMov();
    const std::string name(60, 'n');
    SaveToTheEnd(Here(name));
    const std::string shown = Here(name).substr(0, 30) + "..." + std::string(25, 'n');
    EXPECT_EQ(rig.log.OfWorkers().front(), "PathLabel = IDS_DESTINATION: " + shown);
    EXPECT_TRUE(exists(Here(name)));
}

TEST_F(Save, TakesTheDefaultNameWithItsBlanksUnchanged) {
    FinishMov();
    const std::string target = Here(DefaultSaveName(rig.clock.ToLocalTime(kTestNow), true));
    SaveToTheEnd(target);
    EXPECT_TRUE(exists(target));
}

TEST(DefaultSaveName, IsNotPaddedAndItsDateBeginsWithABlank) {
    const LocalTime time{.day = 15, .month = 11, .year = 2026, .hour = 5, .minute = 3, .second = 9};
    EXPECT_EQ(DefaultSaveName(time, true), "KelvoClipfix_ 15-11-2026-5-3-9.mov");
    EXPECT_EQ(DefaultSaveName(time, false), "KelvoClipfix_ 15-11-2026-5-3-9.avi");
}

// A move that fails is passed over: the note tells of success, and the file stays behind until
// the home step.
TEST_F(Save, TellsOfSuccessWhenTheDestinationExists) {
    FinishMov();
    const std::string target = Here("s.mov");
    WriteFile(target, ByteVector(3, 1));
    SaveToTheEnd(target);
    EXPECT_TRUE(rig.log.Has(kCompleted));
    EXPECT_TRUE(rig.log.Has("open folder " + folder.Path().string() + "/"));
    EXPECT_EQ(ReadFile(target), ByteVector(3, 1));
    EXPECT_EQ(ReadFile(rig.RepairedMov()), ByteVector(10, 7));
    rig.driver.OnTimer(kHomeTimer);
    EXPECT_FALSE(exists(rig.RepairedMov()));
}

TEST_F(Save, TellsOfSuccessWhenTheDestinationFolderIsGone) {
    FinishMov();
    SaveToTheEnd(Here("gone/s.mov"));
    EXPECT_TRUE(rig.log.Has("open folder " + Here("gone/")));
    EXPECT_FALSE(exists(Here("gone")));
    EXPECT_EQ(ReadFile(rig.RepairedMov()), ByteVector(10, 7));
}

TEST_F(Save, CanBeDoneAgainAfterAMoveThatFailed) {
    FinishMov();
    SaveToTheEnd(Here("gone/s.mov"));
    SaveToTheEnd(Here("s.mov"));
    EXPECT_EQ(ReadFile(Here("s.mov")), ByteVector(10, 7));
}

// The answer of the last dialog is all that a save knows of its own cancel. A Yes that was taken
// as No, at 99 percent, is still the last answer when the save comes to its end.
TEST_F(Save, TakesALateYesOfTheRepairForItsOwn) {
    FinishMov();
    rig.state.g_bMessageYes = 1;
    rig.face.WillAnswer("IDS_SAVE_ABORTED", MessageAnswer::Ok);
    SaveTo(Here("s.mov"));
    rig.Wait();
    EXPECT_TRUE(rig.log.Has(kSaveAborted));
    EXPECT_TRUE(exists(Here("s.mov"))) << "moved all the same";
    EXPECT_EQ(rig.SaveFlags(), "saving 1, running 0");
}

class SaveToASmallDisk : public Save {
  protected:
    void SetUp() override {
        if (!disk.IsMounted()) {
            GTEST_SKIP() << "only root can mount the small file system of this test";
        }
    }
    [[nodiscard]] std::string OnDisk(const std::string& name) const {
        return (disk / name).string();
    }

    SmallFileSystem disk{16 * kMiB};
};

TEST_F(SaveToASmallDisk, CopiesAndThenDeletesTheSource) {
    const ByteVector result = SomeBytes(5 * kMiB + 12345);
    FinishMov(result);
    SaveToTheEnd(OnDisk("s.mov"));
    EXPECT_EQ(ReadFile(OnDisk("s.mov")), result);
    EXPECT_FALSE(exists(rig.RepairedMov()));
}

TEST_F(SaveToASmallDisk, CopiesAnEmptyFile) {
    FinishMov({});
    SaveToTheEnd(OnDisk("s.mov"));
    EXPECT_EQ(ReadFile(OnDisk("s.mov")), ByteVector{});
    EXPECT_FALSE(exists(rig.RepairedMov()));
}

TEST_F(SaveToASmallDisk, TestsTheRoomForAMovieBeforehand) {
    FinishMov();
    rig.state.g_liOutputSize =
        static_cast<std::int64_t>(platform::FreeBytes(disk.Path()).value()) + 1;
    rig.face.WillAnswer("IDS_ERROR9", MessageAnswer::Ok,
                        [&] { EXPECT_EQ(rig.SaveFlags(), "saving 0, running 0"); });
    SaveTo(OnDisk("s.mov"));
    EXPECT_EQ(rig.log.All(),
              (Lines{kAskMov, "enable Save", "dialog 5: IDS_ERROR9 | IDS_INFORMATION |  | Ok",
                     "answered Ok", "redraw Frame"}));
    EXPECT_FALSE(exists(OnDisk("s.mov")));
    EXPECT_TRUE(exists(rig.RepairedMov()));
}

TEST_F(SaveToASmallDisk, LetsAMovieThroughThatJustFits) {
    FinishMov();
    rig.state.g_liOutputSize = static_cast<std::int64_t>(platform::FreeBytes(disk.Path()).value());
    SaveToTheEnd(OnDisk("s.mov"));
    EXPECT_TRUE(exists(OnDisk("s.mov")));
}

// The test of an AVI job compares with 0, so a full disk shows only in the middle of the copy, and
// there it is passed over.
TEST_F(SaveToASmallDisk, LeavesNothingOfAnAviThatFillsTheDisk) {
    const ByteVector result = SomeBytes(20 * kMiB);
    FinishAvi(result);
    SaveToTheEnd(OnDisk("s.avi"));
    EXPECT_TRUE(rig.log.Has(kCompleted));
    EXPECT_FALSE(exists(OnDisk("s.avi")));
    EXPECT_EQ(ReadFile(rig.RepairedAvi()), result);
}

// A save whose copy to another disk stands at some percent: its worker is inside the move, where
// the next thing it meets is the progress routine.
class StandingSave : public SaveToASmallDisk {
  protected:
    ~StandingSave() override { pace.Finish(); }

    void StopAt(std::uint64_t percent) {
        rig.move = [this, percent](const std::string& source, const std::string& destination,
                                   const platform::TransferProgress& progress) {
            bool stopped = false;
            return platform::MoveFileWithProgress(
                source, destination, [&](std::uint64_t transferred, std::uint64_t total) {
                    if (!stopped && transferred * 100 >= total * percent) {
                        stopped = true;
                        static_cast<void>(pace.NextRound());
                    }
                    return progress(transferred, total);
                });
        };
    }
    // A result of one hundred pieces that takes no room before it is copied.
    void FinishLongMov() {
        FinishMov({});
        std::filesystem::resize_file(rig.RepairedMov(), 100 * kMiB);
    }
    void FinishLongAvi() {
        FinishAvi({});
        std::filesystem::resize_file(rig.RepairedAvi(), 100 * kMiB);
    }
    void StartSave(const std::string& path) {
        SaveTo(path);
        ASSERT_TRUE(pace.WaitForArrivals(1));
        rig.log.Clear();
    }
    // Yes, with the worker let go as soon as it is resumed; its note comes before the other one.
    void CancelWithYes(const std::string& workersNote) {
        rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes, [this] {
            EXPECT_EQ(rig.SaveFlags(), "saving 1, running 1");
            EXPECT_EQ(rig.state.g_bRepairPaused, 1);
            pace.LetThrough(1);
        });
        rig.face.Before("stop animation", [this, workersNote] {
            EXPECT_TRUE(rig.log.WaitFor(workersNote));
            // The two notes share one kind, which the closing of the worker's sets back.
            while (rig.state.g_nMessageKind != 0) {
                std::this_thread::yield();
            }
            EXPECT_EQ(rig.state.g_bSaving, 0);
            EXPECT_EQ(rig.state.g_lSaveContinue, 0);
            EXPECT_EQ(rig.state.g_bRepairPaused, 0);
        });
        rig.driver.OnCancelJob();
        rig.Wait();
    }

    SmallFileSystem roomyDisk{128 * kMiB};
    std::string target = (roomyDisk / "s.mov").string();
    Pace pace;
};

class CancelledSave : public StandingSave, public ::testing::WithParamInterface<int> {};

TEST_P(CancelledSave, LeavesNothing) {
    FinishLongMov();
    StopAt(static_cast<std::uint64_t>(GetParam()));
    StartSave(target);
    EXPECT_TRUE(exists(target));
    rig.face.WillAnswer("IDS_SAVE_ABORTED", MessageAnswer::Ok);
    rig.face.WillAnswer("IDS_SAVE_ABORTED", MessageAnswer::Ok);
    CancelWithYes(kSaveAborted);
    EXPECT_EQ(rig.log.OfInterface(),
              Join({{kQuestion, "answered Yes", "redraw Frame", "sleep 50 ms", "stop animation",
                     kSaveAborted, "answered Ok", "rebuild sections"},
                    kHomeState,
                    {"redraw Frame"}}));
    EXPECT_EQ(rig.log.OfWorkers(), (Lines{kSaveAborted, "answered Ok"}));
    EXPECT_EQ(rig.SaveFlags(), "saving 0, running 0");
    EXPECT_EQ(rig.state.g_nSavePercent, 100);
    EXPECT_FALSE(exists(target));
    EXPECT_FALSE(exists(rig.RepairedMov())) << "the home step deletes it";
}

INSTANTIATE_TEST_SUITE_P(AtPercent, CancelledSave, ::testing::Values(0, 50, 99));

TEST_F(StandingSave, KeepsItsSourceWhenItsCopyIsCancelled) {
    FinishLongMov();
    StopAt(50);
    StartSave(target);
    rig.face.WillAnswer("IDS_SAVE_ABORTED", MessageAnswer::Ok);
    rig.face.WillAnswer("IDS_SAVE_ABORTED", MessageAnswer::Ok);
    bool stood = false;
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes, [this] { pace.LetThrough(1); });
    rig.face.Before("stop animation", [&] {
        EXPECT_TRUE(rig.log.WaitFor(kSaveAborted));
        stood = exists(rig.RepairedMov());
    });
    rig.driver.OnCancelJob();
    rig.Wait();
    EXPECT_TRUE(stood);
}

TEST_F(StandingSave, GoesOnAfterNo) {
    FinishLongMov();
    StopAt(50);
    StartSave(target);
    rig.clock.Advance(9);
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::No, [this] {
        EXPECT_EQ(rig.state.g_bRepairPaused, 1);
        EXPECT_EQ(rig.state.g_nPauseAccounted, 0);
        EXPECT_EQ(rig.state.g_tPause, kTestNow + 9);
        pace.LetThrough(1);
        EXPECT_FALSE(pace.ArrivesInAMoment(2));
        EXPECT_EQ(rig.SaveFlags(), "saving 1, running 1") << "stands at its checkpoint";
    });
    rig.face.WillAnswer("IDS_SAVE_COMPLETED", MessageAnswer::Ok);
    rig.driver.OnCancelJob();
    rig.Wait();
    EXPECT_EQ(rig.log.OfInterface(), (Lines{kQuestion, "answered No", "redraw Frame"}));
    EXPECT_EQ(rig.state.g_bRepairPaused, 0);
    EXPECT_EQ(std::filesystem::file_size(target), 100 * kMiB);
    EXPECT_FALSE(exists(rig.RepairedMov()));
}

// The answer Yes is gone with the OK of the note: a worker that comes later takes its save for
// completed.
TEST_F(StandingSave, TellsOfSuccessWhenItsWorkerLeavesAfterTheNoteOfTheCancel) {
    FinishLongMov();
    StopAt(50);
    StartSave(target);
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
    rig.face.WillAnswer("IDS_SAVE_ABORTED", MessageAnswer::Ok);
    rig.driver.OnCancelJob();
    EXPECT_FALSE(exists(target));
    rig.log.Clear();
    rig.face.WillAnswer("IDS_SAVE_COMPLETED", MessageAnswer::Ok);
    pace.LetThrough(1);
    rig.Wait();
    EXPECT_EQ(rig.log.All(),
              (Lines{kCompleted, "answered Ok", "enable Save",
                     "open folder " + roomyDisk.Path().string() + "/", "timer 1111: 1000 ms"}));
    EXPECT_FALSE(exists(target));
}

// The first cancelled save of an AVI in the life of the process deletes the destination by itself;
// later ones leave that to the interface. The key of the note ends with two blanks.
TEST_F(StandingSave, OfAnAviDeletesItsDestinationOnTheFirstCancelOnly) {
    const std::string avi = (roomyDisk / "s.avi").string();
    const auto cancelOne = [&] {
        Pace start;
        Pace end;
        rig.move = [&](const std::string& source, const std::string& destination,
                       const platform::TransferProgress& progress) {
            static_cast<void>(start.NextRound());
            auto moved = platform::MoveFileWithProgress(source, destination, progress);
            static_cast<void>(end.NextRound());
            return moved;
        };
        FinishLongAvi();
        SaveTo(avi);
        EXPECT_TRUE(start.WaitForArrivals(1));
        rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes, [&] { start.Finish(); });
        rig.face.WillAnswer("IDS_SAVE_ABORTED", MessageAnswer::Ok);
        rig.face.WillAnswer("IDS_SAVE_ABORTED  ", MessageAnswer::Ok);
        // The interface has deleted the destination by now; what the worker deletes is this one.
        bool deleted = false;
        rig.face.Before("stop animation", [&] {
            EXPECT_TRUE(end.WaitForArrivals(1));
            EXPECT_FALSE(exists(avi));
            WriteFile(avi, ByteVector(1, 1));
            end.Finish();
            EXPECT_TRUE(rig.log.WaitFor("dialog 3: IDS_SAVE_ABORTED   | IDS_INFORMATION |  | Ok"));
            deleted = !exists(avi);
        });
        rig.driver.OnCancelJob();
        rig.Wait();
        return deleted;
    };
    EXPECT_TRUE(cancelOne());
    EXPECT_FALSE(cancelOne());
}

TEST_F(StandingSave, IsPausedByTheCloseCommandAroundItsNote) {
    FinishLongMov();
    StopAt(50);
    StartSave(target);
    rig.face.WillAnswer("IDS_SAVE_PROCESSING", MessageAnswer::Ok, [this] {
        EXPECT_EQ(rig.state.g_bRepairPaused, 1);
        EXPECT_EQ(rig.state.g_tPause, kTestNow);
        pace.LetThrough(1);
        EXPECT_FALSE(pace.ArrivesInAMoment(2));
        EXPECT_EQ(rig.SaveFlags(), "saving 1, running 1");
    });
    rig.face.WillAnswer("IDS_SAVE_COMPLETED", MessageAnswer::Ok);
    EXPECT_FALSE(rig.driver.OnCloseFrame());
    rig.Wait();
    EXPECT_EQ(rig.log.OfInterface(),
              (Lines{"dialog 4: IDS_SAVE_PROCESSING | IDS_INFORMATION |  | Ok", "answered Ok"}));
    EXPECT_EQ(rig.state.g_bRepairPaused, 0);
    EXPECT_TRUE(exists(target));
}

TEST_F(StandingSave, RefusesTheHomeStepWithoutAWord) {
    FinishLongMov();
    StopAt(0);
    StartSave(target);
    rig.driver.OnHomePage();
    EXPECT_EQ(rig.log.All(), Lines{});
    rig.face.WillAnswer("IDS_SAVE_COMPLETED", MessageAnswer::Ok);
    pace.Finish();
    rig.Wait();
}

// The percent that timer 503 draws.
class SavePercent : public StandingSave {
  protected:
    Lines Tick() {
        rig.log.Clear();
        rig.driver.OnSaveTimer();
        return rig.log.All();
    }
    void Finish() {
        rig.face.WillAnswer("IDS_SAVE_COMPLETED", MessageAnswer::Ok);
        pace.Finish();
        rig.Wait();
    }
    // Steps the worker so that it stands before the routine is told of `pieces` hundredths.
    void StepEach() {
        rig.move = [this](const std::string&, const std::string&,
                          const platform::TransferProgress& progress) -> Result<void> {
            for (std::uint64_t told : tell) {
                if (pace.NextRound()) {
                    static_cast<void>(progress(told, 1000));
                }
            }
            static_cast<void>(pace.NextRound());
            return {};
        };
        FinishMov();
        StartSave(target);
    }
    void Told(int times) {
        pace.LetThrough(1);
        ASSERT_TRUE(pace.WaitForArrivals(times + 1));
    }
    std::vector<std::uint64_t> tell;
};

TEST_F(SavePercent, IsDrawnWhenItRisesByExactlyOne) {
    tell = {10, 29, 30};
    StepEach();
    Told(1);
    EXPECT_EQ(Tick(), (Lines{"bar 1", "PercentText = 1%"}));
    EXPECT_EQ(Tick(), Lines{}) << "once";
    Told(2);
    EXPECT_EQ(rig.state.g_nSavePercent, 2) << "cut, not rounded";
    EXPECT_EQ(Tick(), (Lines{"bar 2", "PercentText = 2%"}));
    Told(3);
    EXPECT_EQ(Tick(), (Lines{"bar 3", "PercentText = 3%"}));
    Finish();
}

// A jump of two points or more is marked as shown by the routine itself. That is meant.
TEST_F(SavePercent, IsNotDrawnWhenItJumpsByTwo) {
    tell = {20, 30, 500};
    StepEach();
    Told(1);
    EXPECT_EQ(rig.state.g_nSavePercentShown, 2);
    EXPECT_EQ(Tick(), Lines{});
    Told(2);
    EXPECT_EQ(Tick(), (Lines{"bar 3", "PercentText = 3%"}));
    Told(3);
    EXPECT_EQ(Tick(), Lines{});
    Finish();
}

TEST_F(SavePercent, GoesStraightToOneHundredOnOneFileSystem) {
    FinishMov();
    SaveToTheEnd(Here("s.mov"));
    EXPECT_EQ(rig.state.g_nSavePercent, 100);
    EXPECT_EQ(rig.state.g_nSavePercentShown, 100);
    EXPECT_EQ(Tick(), Lines{});
}

TEST(SaveTimer, DrawsNothingWithoutASave) {
    JobRig rig;
    rig.state.g_nSavePercent = 50;
    rig.driver.OnSaveTimer();
    EXPECT_EQ(rig.log.All(), Lines{});
}

}  // namespace
}  // namespace clipfix::test
