#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <random>

#include "job_rig.h"

// What the threads of a job owe each other: how soon a command takes hold, what waiting costs, and
// what happens where two of them meet.
namespace clipfix::test {
namespace {

using Clock = std::chrono::steady_clock;
using Work = JobControl::Work;
using namespace std::chrono_literals;

// An engine that works in bites of a fifth of a millisecond and passes a checkpoint after each.
class BusyEngine {
  public:
    bool Run(JobContext job, Work work) {
        while (job.control.KeepGoing(work)) {
            lastBite_ = Clock::now().time_since_epoch().count();
            ++bites;
            const auto end = Clock::now() + 200us;
            while (Clock::now() < end && !finish) {
            }
            if (finish) {
                return true;
            }
        }
        left = Clock::now().time_since_epoch().count();
        return false;
    }
    void WaitForBites(int more) const {
        const int enough = bites + more;
        const auto end = Clock::now() + 30s;
        while (bites < enough && Clock::now() < end) {
            std::this_thread::sleep_for(100us);
        }
        ASSERT_GE(bites, enough);
    }
    [[nodiscard]] Clock::time_point LastBite() const {
        return Clock::time_point(Clock::duration(lastBite_));
    }
    [[nodiscard]] Clock::time_point Left() const {
        return Clock::time_point(Clock::duration(left));
    }

    std::atomic<int> bites{0};
    std::atomic<bool> finish{false};
    std::atomic<Clock::rep> left{0};

  private:
    std::atomic<Clock::rep> lastBite_{0};
};

// The machine that runs the tests has other things to do as well: of some tries the best counts.
Clock::duration BestOf(int tries, const std::function<Clock::duration()>& once) {
    Clock::duration best = 1h;
    for (int i = 0; i < tries; ++i) {
        best = std::min(best, once());
    }
    return best;
}

class BusyJob : public ::testing::Test {
  protected:
    ~BusyJob() override { engine.finish = true; }
    void StartMov() {
        rig.engines.find = [this](JobContext job) { engine.Run(job, Work::MovEngine); };
        rig.ChooseMov();
        rig.driver.OnRepair();
        engine.WaitForBites(3);
    }
    void StartAvi() {
        rig.engines.repair = [this](JobContext job) {
            engine.Run(job, Work::AviEngine);
            return 1;
        };
        rig.ChooseAvi();
        rig.driver.OnRepair();
        engine.WaitForBites(3);
    }
    // From the press of the button to the last bite that the engine took.
    Clock::duration PauseAndResume() {
        const auto pressed = Clock::now();
        rig.driver.OnPauseResume();
        std::this_thread::sleep_for(60ms);
        const int bites = engine.bites;
        const auto taken = engine.LastBite() - pressed;
        std::this_thread::sleep_for(5ms);
        EXPECT_EQ(engine.bites, bites) << "still biting 60 ms after the pause";
        rig.driver.OnPauseResume();
        engine.WaitForBites(1);
        return std::max(taken, Clock::duration::zero());
    }
    // From the press of the button to the next bite.
    Clock::duration WakeTime() {
        rig.driver.OnPauseResume();
        std::this_thread::sleep_for(5ms);
        const int bites = engine.bites;
        const auto pressed = Clock::now();
        rig.driver.OnPauseResume();
        while (engine.bites == bites) {
            std::this_thread::yield();
        }
        return Clock::now() - pressed;
    }

    BusyEngine engine;
    JobRig rig;
};

TEST_F(BusyJob, OfMovFilesPausesWithinFiftyMilliseconds) {
    StartMov();
    EXPECT_LT(BestOf(3, [this] { return PauseAndResume(); }), 50ms);
}

TEST_F(BusyJob, OfAviFilesPausesWithinFiftyMilliseconds) {
    StartAvi();
    EXPECT_LT(BestOf(3, [this] { return PauseAndResume(); }), 50ms);
}

TEST_F(BusyJob, WakesAtOnceWhenItIsResumed) {
    StartMov();
    EXPECT_LT(BestOf(10, [this] { return WakeTime(); }), 20ms);
}

TEST_F(BusyJob, OfAviFilesWakesAtOnceWhenItIsResumed) {
    StartAvi();
    EXPECT_LT(BestOf(10, [this] { return WakeTime(); }), 20ms);
}

TEST_F(BusyJob, WakesAtOnceWhenItIsCancelledOutOfAPause) {
    StartMov();
    rig.driver.OnPauseResume();
    std::this_thread::sleep_for(5ms);
    Clock::time_point closed;
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
    rig.face.WillAnswer("IDS_REPAIR_ABORTED", MessageAnswer::Ok, [&] { closed = Clock::now(); });
    rig.driver.OnCancelJob();
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::Cancelled);
    EXPECT_LT(engine.Left() - closed, 500ms) << "not after the rest of a second";
}

TEST(Waiting, CostsNoProcessorTime) {
    const auto processorTime = [] {
        std::timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    };
    JobState state;
    state.g_bRepairPaused = 1;
    JobControl control(state);
    control.Suspend(JobControl::Worker::Repair);
    auto used = std::async(std::launch::async, [&] {
        const auto before = processorTime();
        static_cast<void>(control.KeepGoing(Work::MovEngine));
        return processorTime() - before;
    });
    EXPECT_EQ(used.wait_for(100ms), std::future_status::timeout);
    control.Resume(JobControl::Worker::Repair);
    state.g_bRepairPaused = 0;
    control.Wake();
    EXPECT_LT(used.get(), 20ms);
}

// The worker of a cancelled AVI job waits for a dialog. None of these may wait for it in turn.
class WaitingWorker : public ::testing::Test {
  protected:
    void SetUp() override {
        rig.emplace();
        rig->engines.repair = [this](JobContext job) {
            if (!GoRound(job, Work::AviEngine, pace)) {
                std::filesystem::remove(job.state.g_strAviRepairedPath);
            }
            return 1;
        };
        rig->ChooseAvi();
        rig->driver.OnRepair();
        ASSERT_TRUE(pace.WaitForArrivals(1));
        rig->face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes,
                             [this] { pace.LetThrough(1); });
        rig->driver.OnCancelJob();
        rig->log.Clear();
    }
    Pace pace;
    std::optional<JobRig> rig;
};

TEST_F(WaitingWorker, LeavesWithoutAWordWhenTheDriverGoes) {
    rig->face.WillAnswer("IDS_CLOSE_DLG_MSG ", MessageAnswer::Yes);
    EXPECT_TRUE(rig->driver.OnCloseFrame());
    EXPECT_EQ(rig->log.OfWorkers(), Lines{});
    rig.reset();
}

TEST_F(WaitingWorker, LeavesWithoutAWordWhenANewJobBegins) {
    rig->driver.OnHomePage();
    rig->log.Clear();
    rig->engines.repair = [](JobContext) { return 1; };
    rig->ChooseAvi();
    rig->driver.OnRepair();
    rig->Wait();
    EXPECT_EQ(rig->log.OfWorkers(),
              Join({{"make AVI engine", "repair " + rig->DamagedAvi()}, kFinishedAviPage}));
    EXPECT_EQ(rig->driver.End(), JobEnd::Repaired);
}

// What was cancelled stays so, though the choice of the next file sets the flags of the job anew.
TEST(TwoJobs, DoNotLetTheFirstGoOnAfterItsCancel) {
    JobRig rig;
    Pace stuckRead;
    rig.engines.repair = [&](JobContext job) {
        static_cast<void>(stuckRead.NextRound());
        EXPECT_FALSE(job.control.KeepGoing(Work::AviEngine));
        return 1;
    };
    rig.ChooseAvi();
    rig.driver.OnRepair();
    ASSERT_TRUE(stuckRead.WaitForArrivals(1));
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
    rig.driver.OnCancelJob();
    rig.driver.OnHomePage();
    rig.log.Clear();
    rig.ChooseAvi();
    EXPECT_EQ(rig.state.g_bAviContinue, 1);
    stuckRead.Finish();
    rig.Wait();
    EXPECT_EQ(rig.log.OfWorkers(), Lines{}) << "somebody went home from it";

    rig.engines.repair = [&](JobContext job) {
        EXPECT_TRUE(job.control.KeepGoing(Work::AviEngine));
        return 1;
    };
    rig.driver.OnRepair();
    rig.Wait();
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
}

// A read of a dying medium can take half a minute. A job that was cancelled in it is still inside
// when the person has gone home and begun the next one.
TEST(TwoJobs, DoNotWorkAtTheSameTime) {
    JobRig rig;
    Pace stuckRead;
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    rig.engines.repair = [&](JobContext) {
        most = std::max(most.load(), ++inside);
        static_cast<void>(stuckRead.NextRound());
        --inside;
        return 1;
    };
    rig.ChooseAvi();
    rig.driver.OnRepair();
    ASSERT_TRUE(stuckRead.WaitForArrivals(1));
    rig.face.WillAnswer("IDS_CANCEL_DLG_MSG ", MessageAnswer::Yes);
    rig.driver.OnCancelJob();
    rig.log.Clear();
    rig.driver.OnHomePage();
    EXPECT_FALSE(rig.log.Has("close work files")) << "they are the engine's while it runs";
    rig.ChooseAvi();
    rig.driver.OnRepair();
    stuckRead.Finish();
    rig.Wait();
    EXPECT_EQ(most, 1);
    EXPECT_EQ(rig.driver.End(), JobEnd::Repaired);
}

TEST(Driver, LeavesARunningRepairWhenItGoes) {
    BusyEngine engine;
    JobRig rig;
    rig.engines.find = [&](JobContext job) { engine.Run(job, Work::MovEngine); };
    rig.ChooseMov();
    rig.driver.OnRepair();
    engine.WaitForBites(1);
    rig.driver.OnPauseResume();
}

TEST(Driver, LeavesARunningSaveWhenItGoesAndKeepsTheSource) {
    TempFolder folder;
    const auto source = folder / "$tp";
    {
        Pace pace;
        JobRig rig(source);
        rig.FinishMovJob();
        rig.move = [&](const std::string&, const std::string&,
                       const platform::TransferProgress& progress) -> Result<void> {
            while (progress(1, 2)) {
                static_cast<void>(pace.NextRound());
                pace.LetThrough(1);
            }
            return Error{ErrorKind::Cancelled, "cancelled", {}};
        };
        rig.face.WillChoose((folder / "s.mov").string());
        rig.driver.OnSave();
        ASSERT_TRUE(pace.WaitForArrivals(1));
        pace.LetThrough(1);
    }
    EXPECT_TRUE(std::filesystem::exists(source / kRepairedMovName));
}

// Commands from the interface thread, in any order, while jobs run and end: whatever comes, the
// driver stays able to start a job and to bring it to its end.
TEST(Driver, TakesCommandsInAnyOrder) {
    JobRig rig;
    rig.engines.find = [](JobContext job) {
        for (int i = 0; i < 200 && job.control.KeepGoing(Work::MovEngine); ++i) {
            job.state.g_nMovPercent = i / 2;
            std::this_thread::sleep_for(10us);
        }
    };
    rig.engines.write = [](JobContext job, const std::string& output) {
        if (job.control.KeepGoing(Work::MovEngine)) {
            WriteFile(output, ByteVector(1, 1));
        }
    };
    rig.engines.repair = [](JobContext job) {
        WriteFile(job.state.g_strAviRepairedPath, ByteVector(1, 1));
        for (int i = 0; i < 200; ++i) {
            if (!job.control.KeepGoing(Work::AviEngine)) {
                std::filesystem::remove(job.state.g_strAviRepairedPath);
                break;
            }
            job.state.g_nAviPercent = i / 2;
            job.frontEnd.SendAviProgress();
            std::this_thread::sleep_for(10us);
        }
        return 1;
    };
    std::mt19937 random(7);
    const auto pick = [&](unsigned count) { return static_cast<unsigned>(random() % count); };
    for (int job = 0; job < 60; ++job) {
        rig.face.AnswerAnything([answers = std::mt19937(random())](const std::string&) mutable {
            return answers() % 2 == 0 ? MessageAnswer::Yes : MessageAnswer::No;
        });
        if (pick(2) == 0) {
            rig.ChooseMov();
        } else {
            rig.ChooseAvi();
        }
        rig.driver.OnRepair();
        for (unsigned i = pick(12); i > 0; --i) {
            switch (pick(5)) {
                case 0:
                    rig.driver.OnPauseResume();
                    break;
                case 1:
                    rig.driver.OnCancelJob();
                    break;
                case 2:
                    rig.driver.OnTimer(kClockTimer);
                    break;
                case 3:
                    rig.driver.OnHomePage();
                    break;
                default:
                    std::this_thread::sleep_for(50us);
                    break;
            }
        }
        // The way out that is always there.
        rig.face.AnswerAnything([](const std::string&) { return MessageAnswer::Ok; });
        if (rig.state.g_bRepairPaused == 1) {
            rig.driver.OnPauseResume();
        }
        static_cast<void>(rig.driver.OnCloseFrame());
        rig.Wait();
        rig.driver.OnHomePage();
        EXPECT_EQ(rig.state.g_bRepairRunning, 0);
        EXPECT_FALSE(std::filesystem::exists(rig.RepairedMov()));
        EXPECT_FALSE(std::filesystem::exists(rig.RepairedAvi()));
        rig.log.Clear();
    }
}

TEST(WorkerThreads, KeepAnEarlierOneThatHasNotEnded) {
    WorkerThreads threads;
    Pace first;
    std::atomic<int> ended{0};
    ASSERT_TRUE(threads.Start([&] {
        static_cast<void>(first.NextRound());
        ++ended;
    }));
    ASSERT_TRUE(threads.Start([&] { ++ended; }));
    first.Finish();
    threads.WaitForAll();
    EXPECT_EQ(ended, 2);
}

}  // namespace
}  // namespace clipfix::test
