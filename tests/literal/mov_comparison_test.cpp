#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "job/state/job_control.h"
#include "job/state/job_paths.h"
#include "literal/literal_mov.h"
#include "literal/random_source.h"
#include "moviefile/movie_file.h"
#include "repairmov/repair_mov.h"
#include "support/media_tools.h"
#include "support/silent_front_end.h"
#include "support/temp_folder.h"

namespace clipfix::test {
namespace {

// Notes what the engine shows.
class PercentNotingFrontEnd final : public SilentFrontEnd {
  public:
    void SetBar(int percent) override { percents.push_back(percent); }
    void RunMessageDialog(const std::string& text, const std::string&, const std::string&,
                          const std::string&) override {
        message = text;
    }
    std::vector<int> percents;
    std::string message;
};

struct EngineResult {
    bool hasMovie = false;
    bool nothingFound = false;
    ByteVector output;
    std::vector<int> percents;
};

EngineResult RunEngine(const TempFolder& folder, unsigned threads) {
    JobState state;
    JobControl control(state);
    PercentNotingFrontEnd frontEnd;
    const JobContext job{state, control, frontEnd};
    ChooseCorruptFile(state, (folder / "damaged.mp4").string());
    ChooseReferenceFile(state, (folder / "reference.mp4").string());
    GFile movie(job);
    CRepairMOV engine(job, movie, {.probeThreads = threads});
    movie.ReadStructure("");
    EngineResult made;
    made.hasMovie = movie.pMoov != nullptr;
    if (!made.hasMovie) {
        return made;
    }
    engine.FindSamples();
    const auto output = folder / "out.mov";
    engine.WriteRepairedFile(output.string(), state.g_strCorruptPath);
    made.nothingFound = state.g_bJobFailed == 1;
    EXPECT_EQ(made.nothingFound, frontEnd.message == "IDS_UNHEALTHY_1");
    made.output = ReadFile(output);
    made.percents = frontEnd.percents;
    return made;
}

// Movies as cameras make them, in small: the shapes of video and sound that the engine knows.
const std::vector<ByteVector>& Movies() {
    static const std::vector<ByteVector> kMovies = [] {
        const TempFolder folder;
        const std::string source =
            "-f lavfi -i testsrc2=size=128x96:rate=25:duration=3 "
            "-f lavfi -i sine=frequency=440:duration=3 -bitexact ";
        const std::vector<std::string> shapes{
            source + "-c:v libx264 -bf 0 -g 12 -c:a aac -b:a 48k -chunk_duration 400000",
            source + "-c:v libx264 -bf 2 -g 25 -c:a aac -b:a 96k -ac 2 -chunk_duration 500000",
            source +
                "-c:v libx264 -x264-params aud=1:slices=3 -c:a pcm_s16le -f mov "
                "-chunk_duration 500000",
            source + "-c:v libx264 -g 10 -c:a pcm_s16be -f mov -chunk_duration 300000",
            source +
                "-c:v libx265 -x265-params log-level=none:keyint=10 -tag:v hvc1 -c:a aac "
                "-chunk_duration 500000",
            source +
                "-c:v libx265 -x265-params log-level=none:repeat-headers=1:aud=1 -tag:v hvc1 "
                "-an -chunk_duration 500000",
            source + "-c:v libx264 -c:a ac3 -f mov -chunk_duration 500000",
            source + "-c:v libx264 -c:a aac"};
        std::vector<ByteVector> movies;
        for (const auto& shape : shapes) {
            MakeMedia(folder / "m.mov", shape);
            movies.push_back(ReadFile(folder / "m.mov"));
        }
        return movies;
    }();
    return kMovies;
}

void Wound(ByteVector& bytes, RandomSource& random) {
    if (bytes.empty()) {
        return;
    }
    const auto size = static_cast<std::uint32_t>(bytes.size());
    const std::uint32_t at = random.Below(size);
    const std::uint32_t length =
        std::min(size - at, random.OneIn(3) ? random.Below(6000) : random.Below(24));
    const auto from = bytes.begin() + at;
    const ByteVector noise = random.Bytes(length);
    switch (random.Below(5)) {
        case 0:
            std::fill_n(from, length, std::uint8_t{0});
            break;
        case 1:
            std::copy(noise.begin(), noise.end(), from);
            break;
        case 2:
            bytes.erase(from, from + length);
            break;
        case 3:
            bytes.insert(from, noise.begin(), noise.end());
            break;
        default:
            if (random.OneIn(5)) {
                bytes.resize(at);
            }
            break;
    }
}

TEST(MovEngine, DoesWhatTheLiteralModelDoesOnRandomDamage) {
    const std::uint64_t first = NumberFromEnvironment("CLIPFIX_FIRST_SEED", 1);
    const std::uint64_t count = NumberFromEnvironment("CLIPFIX_SEEDS", 40);
    std::uint64_t succeeded = 0;
    for (std::uint64_t seed = first; seed < first + count; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomSource random(seed);
        const auto shape = random.Below(8);
        ByteVector damaged = Movies()[shape];
        // Now and then another shape's file, or a wounded one, is the reference.
        ByteVector reference = Movies()[random.OneIn(8) ? random.Below(8) : shape];
        for (std::uint32_t i = random.Below(5); i > 0; --i) {
            Wound(damaged, random);
        }
        if (random.OneIn(6)) {
            Wound(reference, random);
        }
        const TempFolder folder;
        WriteFile(folder / "damaged.mp4", damaged);
        WriteFile(folder / "reference.mp4", reference);

        LiteralCheck check = LiteralReadStructure(reference);
        const EngineResult run = RunEngine(folder, 1 + random.Below(3));
        ASSERT_EQ(run.hasMovie, check.moov != nullptr);
        if (check.moov == nullptr) {
            continue;
        }
        const LiteralMovResult model = LiteralMovRepair(damaged, check);
        ASSERT_EQ(run.nothingFound, model.nothingFound);
        ASSERT_EQ(run.percents, model.percents);
        ASSERT_TRUE(run.output == model.output)
            << "sizes " << run.output.size() << " and " << model.output.size();
        succeeded += model.nothingFound ? 0 : 1;
    }
    EXPECT_GT(succeeded * 3, count);
}

}  // namespace
}  // namespace clipfix::test
