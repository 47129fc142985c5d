#include <gtest/gtest.h>

#include "engine_run.h"
#include "support/media_tools.h"

namespace clipfix::test {
namespace {

TEST(RealMedia, AMovieInChunksComesBackWhole) {
    const TempFolder folder;
    MakeMedia(folder / "a.mp4",
              "-f lavfi -i testsrc2=s=320x240:r=30:d=6 -f lavfi -i sine=r=48000:d=6 -ac 2 "
              "-c:v libx264 -g 30 -bf 2 -c:a aac -chunk_duration 500000");
    const EngineRun run(folder / "a.mp4", folder / "a.mp4");
    EXPECT_EQ(run.world.state.g_bJobFailed, 0);
    EXPECT_EQ(run.results.videoSamples, 180U);
    EXPECT_EQ(run.results.audioSamples, 283U);
    EXPECT_EQ(run.results.videoChunks, 12U);
    EXPECT_EQ(run.results.audioChunks, 12U);
}

}  // namespace
}  // namespace clipfix::test
