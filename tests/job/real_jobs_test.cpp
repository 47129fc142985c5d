#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <thread>

#include "job/driver/real_engines.h"
#include "job_rig.h"
#include "support/media_tools.h"

// The engines of the program under the driver, on recordings that ffmpeg makes: paused, resumed and
// cancelled at places spread at random over the whole job.
namespace clipfix::test {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// What a kind of job works on, made once.
struct Recording {
    TempFolder folder;
    std::string damaged;
    std::string healthy;  // empty in an AVI job
    ByteVector repaired;  // what a job gives that nobody touches
    Clock::duration taken{};
};

// One job of the real engines.
class RealJob {
  public:
    explicit RealJob(const Recording& recording)
        : face(state, log),
          clock(log),
          engines(folder / "$tp"),
          driver({state, control, face}, engines, clock, {.workFolder = folder / "$tp"}) {
        face.onAviProgress = [this] { driver.OnAviProgress(); };
        face.AnswerAnything([](const std::string& text) {
            return text == "IDS_CANCEL_DLG_MSG " ? MessageAnswer::Yes : MessageAnswer::Ok;
        });
        ChooseCorruptFile(state, recording.damaged);
        if (!recording.healthy.empty()) {
            ChooseReferenceFile(state, recording.healthy);
        }
    }

    [[nodiscard]] ByteVector Output() const {
        return ReadFile(folder / "$tp" / (state.g_bMovJob == 1 ? "Repaired.mov" : "Repaired.avi"));
    }
    [[nodiscard]] bool LeavesNothing() const {
        return !std::filesystem::exists(folder / "$tp") ||
               std::filesystem::is_empty(folder / "$tp");
    }
    // The page of a cancelled AVI job is left by whatever dialog comes next.
    void LeaveAfterCancel() {
        static_cast<void>(driver.OnCloseFrame());
        driver.WaitForWorkers();
    }

    TempFolder folder;
    JobState state;
    JobControl control{state};
    JobLog log;
    ScriptedFrontEnd face;
    ManualClock clock;
    RealEngines engines;
    JobDriver driver;
};

// Noise over some places, at random but the same each time.
void Damage(const std::filesystem::path& path, std::uint32_t seed, std::size_t holes) {
    ByteVector bytes = ReadFile(path);
    std::mt19937 random(seed);
    for (std::size_t i = 0; i < holes; ++i) {
        const std::size_t at = random() % bytes.size();
        const std::size_t length = std::min<std::size_t>(random() % 2000, bytes.size() - at);
        for (std::size_t k = 0; k < length; ++k) {
            bytes[at + k] = static_cast<std::uint8_t>(random());
        }
    }
    WriteFile(path, bytes);
}

void RunUntouched(Recording& recording) {
    recording.taken = 1h;
    for (int i = 0; i < 3; ++i) {
        RealJob job(recording);
        const auto start = Clock::now();
        job.driver.OnRepair();
        job.driver.WaitForWorkers();
        recording.taken = std::min(recording.taken, Clock::now() - start);
        ASSERT_EQ(job.driver.End(), JobEnd::Repaired);
        ASSERT_GT(job.engines.Counts().videoChunks, 10U);
        ASSERT_GT(job.engines.Counts().audioChunks, 10U);
        recording.repaired = job.Output();
    }
}

const Recording& AviRecording() {
    static const auto recording = [] {
        auto made = std::make_unique<Recording>();
        const auto path = made->folder / "damaged.avi";
        MakeMedia(path,
                  "-f lavfi -i testsrc2=s=320x240:r=25:d=12 -f lavfi -i sine=r=44100:d=12 -ac 2 "
                  "-c:v mpeg4 -b:v 2000k -c:a pcm_s16le");
        Damage(path, 3, 12);
        made->damaged = path.string();
        RunUntouched(*made);
        return made;
    }();
    return *recording;
}

const Recording& MovRecording() {
    static const auto recording = [] {
        auto made = std::make_unique<Recording>();
        const std::string settings =
            " -f lavfi -i sine=r=48000:d=6 -ac 2 -c:v libx264 -preset ultrafast -b:v 3000k -g 25 "
            "-bf 0 -c:a aac -chunk_duration 300000";
        const auto damaged = made->folder / "damaged.mp4";
        MakeMedia(damaged, "-f lavfi -i testsrc2=s=320x240:r=25:d=6" + settings);
        const ByteVector whole = ReadFile(damaged);
        WriteFile(damaged, SubView(whole, 0, whole.size() - TopLevelAtom(whole, "moov").size()));
        Damage(damaged, 4, 6);
        const auto healthy = made->folder / "healthy.mp4";
        MakeMedia(healthy, "-f lavfi -i testsrc=s=320x240:r=25:d=6" + settings);
        made->damaged = damaged.string();
        made->healthy = healthy.string();
        RunUntouched(*made);
        return made;
    }();
    return *recording;
}

double ProcessorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

class RealJobs : public ::testing::TestWithParam<bool> {
  protected:
    [[nodiscard]] static const Recording& Chosen() {
        return GetParam() ? MovRecording() : AviRecording();
    }
    [[nodiscard]] Clock::duration Somewhere(double share = 1.0) {
        const auto most = std::chrono::duration_cast<std::chrono::microseconds>(Chosen().taken);
        return std::chrono::microseconds(std::uniform_int_distribution<std::int64_t>(
            0, static_cast<std::int64_t>(static_cast<double>(most.count()) * share))(random_));
    }

  private:
    std::mt19937 random_{static_cast<std::uint32_t>(GetParam() ? 11 : 12)};
};

TEST_P(RealJobs, GiveTheSameBytesAfterPausesAtAHundredPlaces) {
    constexpr int kPauses = 100;
    int pauses = 0;
    for (int run = 0; pauses < kPauses && run < 10 * kPauses; ++run) {
        RealJob job(Chosen());
        job.driver.OnRepair();
        while (job.state.g_bRepairRunning == 1) {
            std::this_thread::sleep_for(Somewhere(0.1));
            if (job.state.g_bRepairRunning != 1) {
                break;
            }
            job.driver.OnPauseResume();
            std::this_thread::sleep_for(1ms);
            if (job.state.g_bRepairRunning == 1) {
                ++pauses;
            }
            job.driver.OnPauseResume();
        }
        job.driver.WaitForWorkers();
        ASSERT_EQ(job.driver.End(), JobEnd::Repaired);
        ASSERT_TRUE(job.Output() == Chosen().repaired) << "in run " << run;
    }
    EXPECT_GE(pauses, kPauses);
}

TEST_P(RealJobs, LeaveNothingAfterACancelAtAHundredPlaces) {
    constexpr int kCancels = 100;
    int cancels = 0;
    for (int run = 0; cancels < kCancels && run < 5 * kCancels; ++run) {
        RealJob job(Chosen());
        job.driver.OnRepair();
        std::this_thread::sleep_for(Somewhere());
        job.driver.OnCancelJob();
        if (job.state.g_bRepairCancelled == 1) {
            ++cancels;
            job.LeaveAfterCancel();
            ASSERT_EQ(job.driver.End(), JobEnd::Cancelled);
            job.driver.OnHomePage();
            ASSERT_TRUE(job.LeavesNothing()) << "in run " << run;
        } else {
            job.driver.WaitForWorkers();
            ASSERT_TRUE(job.Output() == Chosen().repaired) << "in run " << run;
        }
    }
    EXPECT_GE(cancels, kCancels);
}

// Processor time and not time of day, so that what else runs on the machine does not count. Without
// the optimiser everything takes several times as long.
#ifdef __OPTIMIZE__
constexpr double kLongestToStand = 0.05;
#else
constexpr double kLongestToStand = 0.25;
#endif

TEST_P(RealJobs, StandWithinFiftyMillisecondsOfWorkAfterAPauseAndThenUseNoProcessor) {
    RealJob job(Chosen());
    job.driver.OnRepair();
    for (int i = 0; i < 8 && job.state.g_bRepairRunning == 1; ++i) {
        std::this_thread::sleep_for(Somewhere(0.1));
        const double pressed = ProcessorSeconds();
        job.driver.OnPauseResume();
        double before = pressed;
        double after = pressed;
        do {
            before = after;
            std::this_thread::sleep_for(20ms);
            after = ProcessorSeconds();
        } while (after - before > 0.002);
        EXPECT_LT(after - pressed, kLongestToStand);
        const auto lines = job.log.All().size();
        std::this_thread::sleep_for(20ms);
        EXPECT_EQ(job.log.All().size(), lines);
        job.driver.OnPauseResume();
    }
    job.driver.WaitForWorkers();
    EXPECT_TRUE(job.Output() == Chosen().repaired);
}

INSTANTIATE_TEST_SUITE_P(Of, RealJobs, ::testing::Values(false, true),
                         [](const auto& movJob) { return movJob.param ? "Mov" : "Avi"; });

}  // namespace
}  // namespace clipfix::test
