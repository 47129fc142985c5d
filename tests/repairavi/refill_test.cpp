// What the scan sees where it jumps over a refill point, and other ends of the buffer.

#include <gtest/gtest.h>

#include "repairavi/avi_job.h"
#include "support/byte_builder.h"

namespace clipfix {
namespace {

using namespace test;
using test::AviChunk;  // the builder, and not the record of the same name

// Everything of a file up to and with the word "movi".
ByteVector HeadOf(const AviFile& file) {
    ByteVector bytes = file.Bytes();
    bytes.resize(FindText(bytes, "movi") + 4);
    return bytes;
}

ByteVector ResizedTo(ByteVector bytes, std::size_t size) {
    bytes.resize(size, 0x80);
    return bytes;
}

constexpr std::size_t kHead = 312 + 12;  // of two usual streams, "LIST", size and "movi" with it

enum class Seen { TheList, TheWordOnly, Nothing };

// What is seen of a `LIST movi` at `at`, in a file of a main header and nothing else before. Where
// only the word "movi" of its type is met, it has no stream list to stand behind, and the job
// gives up.
Seen SeenOfTheListAt(std::size_t at, bool beginsWithRiff) {
    ByteVector bytes = AviFile{}.Bytes();
    bytes.resize(88);
    if (!beginsWithRiff) {
        Insert(bytes, 0, ByteVector{0x80});
    }
    bytes = ResizedTo(bytes, at);
    AppendText(bytes, "LIST1234movi");
    bytes = ResizedTo(bytes, 400'000);
    const auto output = Repaired(bytes);
    if (!output) {
        return Seen::TheWordOnly;
    }
    return FindText(*output, "movi") < output->size() ? Seen::TheList : Seen::Nothing;
}

// The buffer of offset 1 ends at 333334, and a list whose type lies behind that end is none.
TEST(TheRefill, ComesByItselfAtOffset333334) {
    for (std::size_t at = 333'334 - 16; at <= 333'334 + 16; ++at) {
        const Seen expected = at <= 333'322 || at >= 333'334 ? Seen::TheList
                              : at + 8 >= 333'334            ? Seen::TheWordOnly
                                                             : Seen::Nothing;
        EXPECT_EQ(SeenOfTheListAt(at, false), expected) << at;
    }
}

// A file that begins with "RIFF" steps over offset 1 and keeps the buffer of offset 0, which is one
// byte short of the refill point: at 333333 it shows the file's first byte again.
TEST(TheRefill, ShowsTheFirstByteAgainAtOffset333333OfAFileThatBeginsWithRiff) {
    for (std::size_t at = 333'334 - 16; at <= 333'334 + 16; ++at) {
        const Seen expected = at <= 333'321 || at >= 333'334 ? Seen::TheList
                              : at + 8 >= 333'334            ? Seen::TheWordOnly
                                                             : Seen::Nothing;
        EXPECT_EQ(SeenOfTheListAt(at, true), expected) << at;
    }
}

// A `JUNK` chunk that ends behind the refill point: the scan then sees the old buffer round again,
// from its start, until the next refill point. Chunks in the true bytes are not seen.
TEST(AJumpOverARefillPoint, ShowsTheOldContentsUntilTheNextOne) {
    AviFile file = SoundFile({AviPicture(20, 1), AviPicture(22, 2)});
    file.withIndex = false;
    ByteVector bytes = file.Bytes();
    // Two chunks are taken: the first by the word "movi" with the second behind it, and the second
    // with the `JUNK` behind it. The buffer then begins at the `JUNK`.
    const std::size_t junkAt = bytes.size();
    const std::size_t junkSize = 340'000;
    AppendText(bytes, "JUNK");
    AppendLittle32(bytes, junkSize);
    bytes = ResizedTo(bytes, junkAt + 8 + junkSize);
    const std::size_t hidden = bytes.size();
    AppendBytes(bytes, AviChunk("00dc", AviFrame(30, 3)));
    AppendBytes(bytes, AviChunk("00dc", AviFrame(32, 4)));
    AppendBytes(bytes, AviChunk("00dc", AviFrame(34, 5)));
    // Behind the next refill point all is seen as it is.
    ASSERT_LT(hidden, 666'667U);
    bytes = ResizedTo(bytes, 666'700);
    AppendBytes(bytes, AviChunk("00dc", AviFrame(36, 6)));
    AppendBytes(bytes, AviChunk("00dc", AviFrame(38, 7)));
    AppendBytes(bytes, AviChunk("idx1", ByteVector(16)));

    file.chunks = {AviPicture(20, 1), AviPicture(22, 2), AviPicture(36, 6), AviPicture(38, 7)};
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(file));
}

// The same, but the old contents hold a chunk: it is taken once more, as the old contents show it.
TEST(AJumpOverARefillPoint, TakesAChunkOfTheOldContentsAgain) {
    AviFile file = SoundFile({AviPicture(20, 1), AviPicture(22, 2)});
    file.withIndex = false;
    ByteVector bytes = file.Bytes();
    // The `JUNK` hides chunks in its body, and the jump leads to them in the second round.
    const std::size_t start = bytes.size();
    AppendText(bytes, "JUNK");
    AppendLittle32(bytes, 333'333 + 2);  // the jump ends at buffer index 10 of the second round
    AppendText(bytes, "..");
    AppendBytes(bytes, AviChunk("00dc", AviFrame(30, 3)));
    AppendBytes(bytes, AviChunk("00dc", AviFrame(32, 4)));
    AppendBytes(bytes, AviChunk("00dc", AviFrame(34, 5)));
    // Index 10 is file offset `start` + 10 as shown, and `start` + 333343 as counted.
    bytes = ResizedTo(bytes, start + 333'343 + 38);
    // The chunk at index 10 is copied out of the buffer, 38 bytes; then the buffer is filled from
    // the true place.
    AppendBytes(bytes, AviChunk("00dc", AviFrame(40, 8)));
    AppendBytes(bytes, AviChunk("00dc", AviFrame(42, 9)));
    AppendBytes(bytes, AviChunk("idx1", ByteVector(16)));

    file.chunks = {AviPicture(20, 1), AviPicture(22, 2), AviPicture(30, 3), AviPicture(40, 8),
                   AviPicture(42, 9)};
    ASSERT_GT(start + 10, 1U);
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(file));
}

// Copying a large chunk of the old contents goes on where the damaged file's pointer stands, which
// is behind the old contents and not behind the counted place.
TEST(AJumpOverARefillPoint, CopiesALargeChunkOfTheOldContentsFromWhereTheyWereRead) {
    AviFile file = SoundFile({AviPicture(20, 1), AviPicture(22, 2)});
    file.withIndex = false;
    ByteVector bytes = file.Bytes();
    const std::size_t start = bytes.size();
    AppendText(bytes, "JUNK");
    AppendLittle32(bytes, 333'333 + 2);
    AppendText(bytes, "..");
    const std::size_t chunkSize = 500'000;
    AppendBytes(bytes, AviChunk("00dc", AviFrame(chunkSize, 3)));
    // Counted from the second round the chunk ends 333333 bytes later than it does in fact.
    const std::size_t countedEnd = start + 333'343 + 8 + chunkSize;
    bytes = ResizedTo(bytes, countedEnd);
    AppendBytes(bytes, AviChunk("00dc", AviFrame(40, 8)));
    AppendBytes(bytes, AviChunk("00dc", AviFrame(42, 9)));
    AppendBytes(bytes, AviChunk("idx1", ByteVector(16)));

    file.chunks = {AviPicture(20, 1), AviPicture(22, 2)};
    // The look-ahead leads to the counted place: index 10 + 8 + size behind the buffer's start as
    // it is counted from ullBufferBase, which is still `start`. There is no head there.
    EXPECT_EQ(Repaired(bytes), WithFreshCounts([&] {
                  AviFile expected = file;
                  expected.chunks.push_back(AviPicture(40, 8));
                  expected.chunks.push_back(AviPicture(42, 9));
                  return expected;
              }()));

    // With a head at start + 18 + size it passes, and what is copied is the chunk's true bytes.
    OverwriteText(bytes, start + 18 + chunkSize, "01wb");
    file.chunks = {AviPicture(20, 1), AviPicture(22, 2), AviPicture(chunkSize, 3),
                   AviPicture(40, 8), AviPicture(42, 9)};
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(file));
}

// Repairs in the buffer are made in its memory, and are seen again with the old contents.
TEST(AJumpOverARefillPoint, ShowsTheRepairsOfTheMainHeaderAgain) {
    // "idx1" hides a `LIST INFO` head behind it in the first round; its size covers the main
    // header, and `JUNK` follows, as it must. The jump leads to it in the second round.
    AviFile file = SoundFile({});
    file.mainHeader.dwWidth = 0;
    const ByteVector head = HeadOf(file);
    ByteVector bytes = ByteBuilder().Text("RIFF1234AVI idx1LIST").Little32(80).Text("INFO").Take();
    AppendBytes(bytes, SubView(head, 12, 76));
    AppendText(bytes, "JUNK");
    AppendLittle32(bytes, 333'333 + 16 - 104 - 8);
    bytes = ResizedTo(bytes, 500'000);

    const auto output = Repaired(bytes);
    ASSERT_TRUE(output);
    EXPECT_EQ(ReadLittle32(*output, 12 + 52), 320U);
    const ByteVector list = ByteBuilder().Text("LIST").Little32(80).Text("INFO").Take();
    EXPECT_TRUE(std::equal(list.begin(), list.end(), output->begin() + 88));
    // The copy holds the repaired width, and not the 0 of the file.
    EXPECT_EQ(ReadLittle32(*output, 100 + 52), 320U);
    EXPECT_EQ(output->size(), 88U + 88 + 8);
}

// An index that lies across a refill point is crossed in steps of sixteen bytes like any other.
TEST(AnOldIndex, IsCrossedAcrossARefillPoint) {
    std::vector<AviDataChunk> chunks;
    for (std::uint32_t i = 0; i < 60'000; ++i) {
        chunks.push_back(AviPicture(i % 3, i));
    }
    const AviFile file = SoundFile(chunks);
    AviJob job(file.Bytes());
    ASSERT_EQ(job.Run(), 1);
    // 60000 chunks of 8 to 10 bytes: a head that lies across a refill point is lost.
    std::size_t start = kHead;
    std::uint32_t kept = 0;
    for (const auto& chunk : chunks) {
        const bool lost = start % 333333 == 0 || start % 333333 == 333332;
        kept += kept == 0 || !lost ? 1U : 0U;
        start += 8 + chunk.data.size() + chunk.data.size() % 2;
    }
    EXPECT_EQ(job.state.g_nAviVideoChunks, kept);
}

}  // namespace
}  // namespace clipfix
