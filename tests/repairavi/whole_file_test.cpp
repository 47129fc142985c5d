#include <gtest/gtest.h>

#include "repairavi/avi_job.h"
#include "support/avi_builder.h"
#include "support/byte_builder.h"

namespace clipfix {
namespace {

using namespace test;

TEST(AnIntactFile, ComesOutWithEveryChunkAndAFreshIndex) {
    const AviFile file = SoundFile(AviChunks(6));
    AviJob job(file.Bytes());
    ASSERT_EQ(job.Run(), 1);
    EXPECT_EQ(job.state.g_nAviVideoChunks, 6U);
    EXPECT_EQ(job.state.g_nAviAudioChunks, 3U);
    EXPECT_EQ(job.state.g_dwAviMicroSecPerFrame, 40000U);
    EXPECT_EQ(job.state.g_szAviCodec, "XVID");
    EXPECT_EQ(job.Output(), WithFreshCounts(file));
    EXPECT_EQ(job.state.g_ullAviRiffBody, job.Output().size() - 8);
    EXPECT_EQ(job.state.writeFailed, 0);
    EXPECT_EQ(job.state.bytesUnreadable, 0U);
    EXPECT_EQ(job.engine.BytesScanned(), file.Bytes().size());
}

TEST(AnIntactFile, LeavesTheThumbnailAndTheResultAndNoIndex) {
    AviJob job(SoundFile(AviChunks(6)).Bytes());
    ASSERT_EQ(job.Run(), 1);
    EXPECT_TRUE(job.Exists("Repaired.avi"));
    EXPECT_TRUE(job.Exists("$tmp$.bmp"));
    EXPECT_FALSE(job.Exists("index"));
    job.engine.CloseWorkFiles();
    EXPECT_FALSE(job.Exists("$tmp$.bmp"));
    EXPECT_TRUE(job.Exists("Repaired.avi"));
}

TEST(AnIntactFile, IsNeverWrittenTo) {
    const ByteVector bytes = SoundFile(AviChunks(6)).Bytes();
    AviJob job(bytes);
    const auto before = std::filesystem::last_write_time(job.folder / "damaged.avi");
    ASSERT_EQ(job.Run(), 1);
    EXPECT_EQ(ReadFile(job.folder / "damaged.avi"), bytes);
    EXPECT_EQ(std::filesystem::last_write_time(job.folder / "damaged.avi"), before);
}

// The file less the chunks that are lost for that reason; the first is found by the word "movi".
AviFile LessThoseAcrossRefills(AviFile file) {
    std::size_t start = FindText(file.Bytes(), "movi") + 4;
    std::vector<AviDataChunk> kept;
    for (const auto& chunk : file.chunks) {
        if (kept.empty() || !HeadLiesAcrossARefill(start)) {
            kept.push_back(chunk);
        }
        start += 8 + chunk.data.size() + chunk.data.size() % 2;
    }
    file.chunks = kept;
    return file;
}

TEST(AnIntactFile, LosesOnlyChunksWhoseHeadLiesAcrossARefill) {
    Random dice(11);
    for (int round = 0; round < 12; ++round) {
        std::vector<AviDataChunk> chunks;
        const std::size_t largest = round % 3 == 0 ? 3000 : round % 3 == 1 ? 70'000 : 800'000;
        for (std::size_t total = 0; total < 3'000'000;) {
            const std::size_t size = dice.Below(static_cast<std::uint32_t>(largest));
            chunks.push_back(dice.Below(3) == 0 ? AviSound(size / 4, dice.Below(UINT32_MAX))
                                                : AviPicture(size, dice.Below(UINT32_MAX)));
            total += size + 8;
        }
        const AviFile file = SoundFile(chunks);
        ASSERT_EQ(Repaired(file.Bytes()), WithFreshCounts(LessThoseAcrossRefills(file)));
    }
}

// The second chunk's head at every distance from the refill point at 333334. The first chunk goes
// by the first-chunk route and leaves the buffer of the stream lists.
TEST(AnIntactFile, LosesTheChunkWhoseHeadLiesAcrossTheFirstRefillPoint) {
    for (std::size_t distance = 0; distance <= 32; ++distance) {
        const std::size_t start = 333334 - 16 + distance;
        AviFile file = SoundFile({AviPicture(0), AviPicture(500, 2), AviPicture(600, 3)});
        const std::size_t movie = FindText(file.Bytes(), "movi");
        // A chunk takes an even number of bytes; a stray byte ahead of the data moves all by one.
        const std::size_t stray = (start - movie) % 2;
        file.beforeMovie = {ByteVector(stray)};
        file.chunks[0] = AviPicture(start - movie - stray - 12, 1);
        ASSERT_EQ(FindText(file.Bytes(), "00dc", movie + 20), start);

        AviJob job(file.Bytes());
        ASSERT_EQ(job.Run(), 1);
        const bool lost = start == 333332 || start == 333333;
        EXPECT_EQ(job.state.g_nAviVideoChunks, lost ? 2U : 3U) << start;
    }
}

// After a chunk of the tag route the buffer begins with the next chunk. The one behind that at
// every distance from the buffer's end: the look-ahead and the copy change between their forms.
TEST(AnIntactFile, KeepsChunksWhoseFollowerLiesAtTheBuffersEnd) {
    for (std::size_t distance = 0; distance <= 32; ++distance) {
        const std::size_t size = 333333 - 16 + distance - 8;  // the follower at buffer index size+8
        const AviFile file = SoundFile({AviPicture(40, 1), AviPicture(41, 2), AviPicture(size, 3),
                                        AviSound(50, 4), AviPicture(60, 5)});
        ASSERT_EQ(Repaired(file.Bytes()), WithFreshCounts(LessThoseAcrossRefills(file))) << size;
    }
}

// The same for the first chunk: its buffer begins eight bytes ahead of the end of the last stream
// list, which puts the word "movi" at index 16 and the next chunk at index 28 + its rounded size.
//
// One size of them is special: the next chunk's first digit is the last byte of the buffer. The
// copy has jumped over the refill point, so the scan sees the buffer round again with its old
// contents, and all that follows up to the next refill point is lost. That is meant.
TEST(AnIntactFile, LosesWhatFollowsAFirstChunkThatEndsOneByteAheadOfTheBuffersEnd) {
    for (std::size_t distance = 0; distance <= 32; ++distance) {
        const std::size_t size = 333333 - 16 + distance - 16 - 12;
        AviFile file =
            SoundFile({AviPicture(size, 3), AviSound(50, 4), AviPicture(60, 5), AviPicture(7, 6)});
        const ByteVector bytes = file.Bytes();
        if (size == 333303 || size == 333304) {
            file.chunks.resize(1);
        }
        ASSERT_EQ(Repaired(bytes), WithFreshCounts(LessThoseAcrossRefills(file))) << size;
    }
}

TEST(AnIntactFile, KeepsChunksThatEndWithARead) {
    // By tags: the tag at index 2, six bytes to the data.
    for (const std::size_t size :
         {333333U * 2 - 8, 333333U * 4 - 8, 333333U - 8, 333333U - 9, 333333U * 3 - 9}) {
        const AviFile file = SoundFile({AviPicture(40, 1), AviPicture(41, 2), AviPicture(size, 3),
                                        AviSound(50, 4), AviPicture(60, 5)});
        ASSERT_EQ(Repaired(file.Bytes()), WithFreshCounts(LessThoseAcrossRefills(file))) << size;
    }
    // Behind the word "movi", which stands at index 16.
    for (const std::size_t size :
         {333333U * 2 - 28, 333333U * 4 - 28, 333333U - 27, 333333U * 3 - 27}) {
        const AviFile file = SoundFile({AviPicture(size, 3), AviSound(50, 4), AviPicture(60, 5)});
        ASSERT_EQ(Repaired(file.Bytes()), WithFreshCounts(LessThoseAcrossRefills(file))) << size;
    }
}

TEST(AnIntactFile, KeepsChunksLargerThanThreeBuffers) {
    for (const std::size_t size : {1'000'000U, 1'333'333U, 2'000'001U}) {
        const AviFile file = SoundFile({AviPicture(size, 1), AviSound(10, 2), AviPicture(size, 3),
                                        AviSound(size, 4), AviPicture(1, 5)});
        ASSERT_EQ(Repaired(file.Bytes()), WithFreshCounts(LessThoseAcrossRefills(file))) << size;
    }
}

}  // namespace
}  // namespace clipfix
