#include "repairmov/chunk_order.h"

#include <gtest/gtest.h>

#include "chunk_offsets.h"

namespace clipfix::test {
namespace {

Chunk RunOf(std::uint64_t offset, std::uint64_t bytes) {
    Chunk chunk;
    chunk.samples.push_back({offset, bytes, SampleName::Avc1, true});
    chunk.recordCount = 1;
    return chunk;
}
std::vector<CSample> FramesAt(std::uint64_t offset, std::size_t count) {
    return std::vector<CSample>(count, CSample{offset, 6, SampleName::Aac, true});
}
std::vector<std::vector<std::uint32_t>> Numbers(const ChunkOrder::Runs& runs) {
    std::vector<std::vector<std::uint32_t>> numbers;
    for (const CSampleToChunkEntery& run : *runs) {
        numbers.push_back({run.firstChunk, run.samplesPerChunk, run.sampleDescID});
    }
    return numbers;
}
using Rows = std::vector<std::vector<std::uint32_t>>;

TEST(ChunkOrder, NotesAnEntryOnlyWhereTheCountChanges) {
    ChunkOrder order;
    for (const std::uint32_t count : {3U, 3U, 4U, 4U, 3U, 0U, 0U, 3U}) {
        order.AddVideo(RunOf(0, 10), count);
    }
    EXPECT_EQ(Numbers(order.VideoRuns()),
              (Rows{{1, 3, 1}, {3, 4, 1}, {5, 3, 1}, {6, 0, 1}, {8, 3, 1}}));
    EXPECT_TRUE(order.AudioRuns()->empty());
}

TEST(ChunkOrder, AFirstCountOfZeroIsNoted) {
    ChunkOrder order;
    order.AddVideo(RunOf(0, 10), 0);
    EXPECT_EQ(Numbers(order.VideoRuns()), (Rows{{1, 0, 1}}));
}

TEST(ChunkOrder, ASowtGapOfNoBytesIsAChunkAndAnAacGapOfNoFramesIsNone) {
    ChunkOrder order;
    order.AddVideo(RunOf(0, 10), 3);
    order.AddSowt(10, 0);
    order.AddVideo(RunOf(10, 10), 3);
    order.AddTwos(20, 0);
    order.AddAac({});
    order.AddAacHead({});
    const ChunkList chunks = order.TakeChunks();
    ASSERT_EQ(chunks.size(), 4U);
    EXPECT_EQ(chunks[1].samples.size(), 1U);
    EXPECT_EQ(chunks[1].samples[0].size, 0U);
    EXPECT_EQ(Numbers(order.AudioRuns()), (Rows{{1, 0, 1}}));
}

// Whole division, low 32 bits of the quotient.
TEST(ChunkOrder, FourBytesOfSowtAreASample) {
    ChunkOrder order;
    order.AddSowt(0, 7);
    order.AddSowt(0, 8);
    order.AddSowt(0, (std::uint64_t{1} << 34U) + 12);
    EXPECT_EQ(Numbers(order.AudioRuns()), (Rows{{1, 1, 1}, {2, 2, 1}, {3, 3, 1}}));
}

TEST(ChunkOrder, TwosMakesNoEntryAndTakesNoNumber) {
    ChunkOrder order;
    order.AddTwos(0, 40);
    order.AddAac(FramesAt(50, 2));
    EXPECT_EQ(Numbers(order.AudioRuns()), (Rows{{1, 2, 1}}));
    EXPECT_EQ(order.TakeChunks()[0].samples[0].name, SampleName::Sowt);
}

// Sound ahead of the first run, however late it is found, goes to the front of the output and
// takes the next number.
TEST(ChunkOrder, AHeadThatIsFoundLateGoesToTheFront) {
    ChunkOrder order;
    order.AddVideo(RunOf(100, 10), 3);
    order.AddAac(FramesAt(110, 5));
    order.AddVideo(RunOf(200, 10), 3);
    order.AddAacHead(FramesAt(0, 2));
    order.AddAac(FramesAt(210, 2));
    EXPECT_EQ(Numbers(order.AudioRuns()), (Rows{{1, 5, 1}, {2, 2, 1}}));
    EXPECT_EQ(OffsetsOf(order.TakeChunks()), (Offsets{0, 100, 110, 200, 210}));
}

}  // namespace
}  // namespace clipfix::test
