#include <gtest/gtest.h>

#include "repairavi/avi_job.h"
#include "support/avi_builder.h"
#include "support/byte_builder.h"

namespace clipfix {
namespace {

using namespace test;

AviFile SmallFile() {
    AviFile file;
    file.mainHeader.dwFlags = 0x10;
    file.chunks = AviChunks(6);
    return file;
}

TEST(AnIntactFile, ComesOutWithEveryChunkAndAFreshIndex) {
    const AviFile file = SmallFile();
    AviJob job(file.Bytes());
    ASSERT_EQ(job.Run(), 1);
    EXPECT_EQ(job.state.g_nAviVideoChunks, 6U);
    EXPECT_EQ(job.state.g_nAviAudioChunks, 3U);

    // Only counts change: the frames of the main header and of the two streams.
    AviFile expected = file;
    expected.mainHeader.dwTotalFrames = 6;
    ByteVector bytes = expected.Bytes();
    OverwriteLittle32(bytes, 140, 6);
    OverwriteLittle32(bytes, FindText(bytes, "auds") + 32, 3);
    EXPECT_EQ(job.Output(), bytes);
    EXPECT_EQ(job.state.g_ullAviRiffBody, bytes.size() - 8);
}

}  // namespace
}  // namespace clipfix
