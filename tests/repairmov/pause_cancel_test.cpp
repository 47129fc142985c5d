#include <chrono>
#include <ctime>
#include <functional>
#include <gtest/gtest.h>
#include <thread>

#include "small_movies.h"
#include "support/random.h"

namespace clipfix::test {
namespace {

using namespace std::chrono_literals;

// How soon a pause must hold, and how soon a cancel must end the work.
constexpr auto kAtOnce = 50ms;

// A job on a thread of its own that is paused and cancelled from outside.
class RunningJob {
  public:
    RunningJob(const ByteVector& damaged, const ByteVector& reference, unsigned threads) {
        WriteFile(folder_ / "damaged.mov", damaged);
        WriteFile(folder_ / "reference.mov", reference);
        world.SetFiles(folder_ / "damaged.mov", folder_ / "reference.mov");
        thread_ = std::thread([this, threads] {
            GFile movie(world.Context());
            CRepairMOV engine(world.Context(), movie, {.probeThreads = threads});
            movie.ReadStructure("");
            engine.FindSamples();
            isFound = true;
            engine.WriteRepairedFile((folder_ / "out.mov").string(), world.state.g_strCorruptPath);
            isDone = true;
        });
    }
    RunningJob(const RunningJob&) = delete;
    RunningJob& operator=(const RunningJob&) = delete;
    ~RunningJob() { Join(); }

    void Join() {
        if (thread_.joinable()) {
            thread_.join();
        }
    }
    void Pause() {
        world.state.g_bRepairPaused = 1;
        world.control.Suspend(JobControl::Worker::Repair);
    }
    void Resume() {
        world.state.g_bRepairPaused = 0;
        world.control.Resume(JobControl::Worker::Repair);
    }
    // As the cancel command does it: the worker is resumed, and still waits for the flag.
    void Cancel() {
        world.control.Resume(JobControl::Worker::Repair);
        world.state.g_bRepairCancelled = 1;
        world.state.g_bRepairPaused = 0;
        world.control.Wake();
    }
    [[nodiscard]] ByteVector Output() { return ReadFile(folder_ / "out.mov"); }

    MovJobWorld world;
    std::atomic<bool> isFound{false};
    std::atomic<bool> isDone{false};

  private:
    TempFolder folder_;
    std::thread thread_;
};

double ProcessorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// Three pictures, a gap that takes seconds to probe, three pictures.
ByteVector NoisyGap() {
    Random random(5);
    return ByteBuilder().Bytes(Run264()).Bytes(random.Bytes(3000000)).Bytes(Run264(3)).Take();
}

void ExpectToStandStill(RunningJob& job) {
    job.Pause();
    std::this_thread::sleep_for(kAtOnce);
    const double before = ProcessorSeconds();
    std::this_thread::sleep_for(200ms);
    EXPECT_LT(ProcessorSeconds() - before, 0.02);
    EXPECT_FALSE(job.isDone);
}

TEST(PauseAndCancel, AProbeOfALongGapPausesAndIsCancelled) {
    for (const unsigned threads : {1U, 4U}) {
        RunningJob job(NoisyGap(), WithAac264(), threads);
        std::this_thread::sleep_for(300ms);
        ASSERT_FALSE(job.isFound);
        ExpectToStandStill(job);
        // The worker may run again and still waits for the flag.
        job.world.control.Resume(JobControl::Worker::Repair);
        std::this_thread::sleep_for(kAtOnce);
        EXPECT_FALSE(job.isDone);
        const auto start = std::chrono::steady_clock::now();
        job.Cancel();
        job.Join();
        EXPECT_LT(std::chrono::steady_clock::now() - start, 4 * kAtOnce);
        EXPECT_TRUE(job.Output().empty());
        EXPECT_EQ(job.world.state.g_bJobFailed, 0);
        EXPECT_TRUE(job.world.frontEnd.messages.empty());
    }
}

TEST(PauseAndCancel, APausedJobGoesOnToTheSameResult) {
    ByteBuilder damaged;
    Random random(6);
    for (std::uint32_t i = 0; i < 40; ++i) {
        damaged.Bytes(Run264(3 * i)).Bytes(SilentFrames(30)).Bytes(random.Bytes(8000));
    }
    damaged.Bytes(Run264());
    const EngineRun plain = RepairBytes(damaged.View(), WithAac264(), 1);
    RunningJob job(damaged.View(), WithAac264(), 3);
    for (int i = 0; i < 5 && !job.isFound; ++i) {
        std::this_thread::sleep_for(20ms);
        job.Pause();
        std::this_thread::sleep_for(20ms);
        job.Resume();
    }
    job.Join();
    EXPECT_EQ(job.Output(), plain.output);
}

TEST(PauseAndCancel, AScanThatFindsNothingPausesAndIsCancelled) {
    RunningJob job(ByteVector(300000000, 0xFF), VideoOnly264(), 1);
    while (job.world.state.g_nMovPercent < 5 && !job.isFound) {
        std::this_thread::yield();
    }
    job.Pause();
    std::this_thread::sleep_for(kAtOnce);
    const int percent = job.world.state.g_nMovPercent;
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(job.world.state.g_nMovPercent, percent);
    EXPECT_LT(percent, 99);
    job.Cancel();
    job.Join();
    EXPECT_EQ(job.world.state.g_nMovPercent, percent);
    EXPECT_TRUE(job.Output().empty());
}

TEST(PauseAndCancel, ACancelBetweenScanAndWritingLeavesAnEmptyFile) {
    const TempFolder folder;
    WriteFile(folder / "damaged.mov", Run264());
    WriteFile(folder / "reference.mov", VideoOnly264());
    MovJobWorld world;
    world.SetFiles(folder / "damaged.mov", folder / "reference.mov");
    GFile movie(world.Context());
    CRepairMOV engine(world.Context(), movie);
    movie.ReadStructure("");
    engine.FindSamples();
    world.state.g_bRepairCancelled = 1;
    engine.WriteRepairedFile((folder / "out.mov").string(), world.state.g_strCorruptPath);
    EXPECT_TRUE(ReadFile(folder / "out.mov").empty());
    EXPECT_TRUE(world.frontEnd.messages.empty());
    EXPECT_EQ(world.state.g_bJobFailed, 0);
}

TEST(PauseAndCancel, ACancelBeforeTheScanFindsNothingAndSaysNothing) {
    const TempFolder folder;
    WriteFile(folder / "damaged.mov", Run264());
    WriteFile(folder / "reference.mov", VideoOnly264());
    MovJobWorld world;
    world.SetFiles(folder / "damaged.mov", folder / "reference.mov");
    GFile movie(world.Context());
    CRepairMOV engine(world.Context(), movie);
    movie.ReadStructure("");
    world.state.g_bRepairCancelled = 1;
    engine.FindSamples();
    EXPECT_TRUE(engine.ListChunks().empty());
    EXPECT_TRUE(world.frontEnd.shown.empty());
}

// A front end that cancels when a percent of the writing is shown.
class CancelAtPercent final : public MovRecorder {
  public:
    explicit CancelAtPercent(JobState& state) : state_(state) {}
    void SetText(JobControlId control, const std::string& text, const TextStyle& style) override {
        MovRecorder::SetText(control, text, style);
        isWriting_ = isWriting_ || text.starts_with("Writing");
        if (isWriting_ && text == "50%") {
            state_.g_bRepairCancelled = 1;
        }
    }

  private:
    JobState& state_;
    bool isWriting_ = false;
};

TEST(PauseAndCancel, ACancelInTheWritingLeavesTheOutputAsItStands) {
    const TempFolder folder;
    ByteBuilder damaged;
    for (std::uint32_t i = 0; i < 10; ++i) {
        damaged.Bytes(Run264(3 * i)).Bytes(Noise(5));
    }
    WriteFile(folder / "damaged.mov", damaged.View());
    WriteFile(folder / "reference.mov", VideoOnly264());
    MovJobWorld world;
    CancelAtPercent frontEnd(world.state);
    const JobContext job{world.state, world.control, frontEnd};
    world.SetFiles(folder / "damaged.mov", folder / "reference.mov");
    GFile movie(job);
    CRepairMOV engine(job, movie);
    movie.ReadStructure("");
    engine.FindSamples();
    engine.WriteRepairedFile((folder / "out.mov").string(), world.state.g_strCorruptPath);
    const ByteVector output = ReadFile(folder / "out.mov");
    EXPECT_GE(output.size(), 16U);
    EXPECT_LE(output.size(), 16U + 6 * kRunBytes);
    EXPECT_EQ(ReadBig64(output, 8), 0U) << "the head was never written";
    EXPECT_EQ(frontEnd.bars.back(), 50);
}

}  // namespace
}  // namespace clipfix::test
