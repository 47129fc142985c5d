#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "job/state/job_paths.h"
#include "literal/literal_avi.h"
#include "literal/random_avi.h"
#include "literal/random_source.h"
#include "repairavi/repair_avi.h"
#include "support/silent_front_end.h"
#include "support/temp_folder.h"

namespace clipfix::test {
namespace {

// What the engine makes of a file, in the shape of the model's result.
class EngineRun {
  public:
    EngineRun(const TempFolder& folder, ByteView damaged, const std::string& name) {
        const auto path = folder / name;
        WriteFile(path, damaged);
        ChooseCorruptFile(state_, path.string());
        CRepairAVI engine({state_, control_, frontEnd_}, folder / "$tp");
        engine.OnPercentSent([this](int percent) { made.percents.push_back(percent); });
        engine.OnStandstill([this] {
            made.standsStill = true;
            state_.g_bAviContinue = 0;
            control_.Wake();
        });
        made.result = engine.Repair();
        made.videoChunks = state_.g_nAviVideoChunks;
        made.audioChunks = state_.g_nAviAudioChunks;
        made.microSecPerFrame = state_.g_dwAviMicroSecPerFrame;
        made.codec = state_.g_szAviCodec;
        made.riffBody = state_.g_ullAviRiffBody;
        made.percent = state_.g_nAviPercent;
        const auto output = folder / "$tp/Repaired.avi";
        const auto thumbnail = folder / "$tp/$tmp$.bmp";
        hasOutput = std::filesystem::exists(output);
        if (hasOutput) {
            made.output = ReadFile(output);
        }
        if (std::filesystem::exists(thumbnail)) {
            made.thumbnail = ReadFile(thumbnail);
        }
        hasIndex = std::filesystem::exists(folder / "$tp/index");
    }

    LiteralAviResult made;
    bool hasOutput = false;
    bool hasIndex = false;

  private:
    JobState state_;
    JobControl control_{state_};
    SilentFrontEnd frontEnd_;
};

void ExpectSame(const LiteralAviResult& model, const EngineRun& run) {
    ASSERT_EQ(run.made.standsStill, model.standsStill);
    EXPECT_FALSE(run.hasIndex);
    if (model.standsStill) {
        EXPECT_FALSE(run.hasOutput);
        return;
    }
    EXPECT_EQ(run.made.result, model.result);
    EXPECT_EQ(run.hasOutput, model.result == 1);
    EXPECT_TRUE(run.made.output == model.output)
        << "sizes " << run.made.output.size() << " and " << model.output.size();
    EXPECT_EQ(run.made.percents, model.percents);
    EXPECT_EQ(run.made.percent, model.percent);
    EXPECT_EQ(run.made.videoChunks, model.videoChunks);
    EXPECT_EQ(run.made.audioChunks, model.audioChunks);
    EXPECT_EQ(run.made.microSecPerFrame, model.microSecPerFrame);
    EXPECT_EQ(run.made.codec.substr(0, 4), model.codec.substr(0, 4));
    if (model.result == 1) {
        EXPECT_EQ(run.made.riffBody, model.riffBody);
        EXPECT_TRUE(run.made.thumbnail == model.thumbnail);
    }
}

// CLIPFIX_SEEDS and CLIPFIX_FIRST_SEED make this a soak run of any length.
TEST(AviEngine, DoesWhatTheLiteralModelDoesOnRandomDamage) {
    const std::uint64_t first = NumberFromEnvironment("CLIPFIX_FIRST_SEED", 1);
    const std::uint64_t count = NumberFromEnvironment("CLIPFIX_SEEDS", 20);
    std::uint64_t succeeded = 0;
    for (std::uint64_t seed = first; seed < first + count; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const TempFolder folder;
        const ByteVector damaged = RandomDamagedAvi(seed);
        const bool takesThumbnail = seed % 2 == 0;
        const auto model = LiteralAviRepair(damaged, takesThumbnail);
        const EngineRun run(folder, damaged, takesThumbnail ? "d.AVI" : "d.divx");
        ExpectSame(model, run);
        succeeded += model.videoChunks + model.audioChunks > 0 && model.result == 1 ? 1 : 0;
        if (HasFailure()) {
            return;
        }
    }
    // The inputs must not be so damaged that nothing of the chunk routes is compared.
    EXPECT_GT(succeeded * 3, count);
}

}  // namespace
}  // namespace clipfix::test
