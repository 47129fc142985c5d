#include "platform/window_reader.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>

#include "support/byte_builder.h"
#include "support/memory_file.h"

namespace clipfix::platform {
namespace {

using test::MemoryFile;

ByteVector BytesWithoutZero(std::size_t size) {
    ByteVector bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<std::uint8_t>((i * 31 + i / 251) % 255 + 1);  // never 0
    }
    return bytes;
}

TEST(WindowReader, GivesTheBytesAtAnyPosition) {
    const ByteVector bytes = BytesWithoutZero(3'000'000);
    const MemoryFile file(bytes);
    WindowReader reader(file);
    for (const std::uint64_t offset : {0U, 1U, 16384U, 2'999'990U, 5U, 1'500'000U, 1'516'380U}) {
        const ByteView view = reader.View(offset, 10);
        ASSERT_EQ(view.size(), 10U) << offset;
        EXPECT_TRUE(std::equal(view.begin(), view.end(),
                               bytes.begin() + static_cast<std::ptrdiff_t>(offset)))
            << offset;
    }
}

TEST(WindowReader, CutsAViewAtTheFilesEnd) {
    const MemoryFile file(BytesWithoutZero(100));
    WindowReader reader(file);
    EXPECT_EQ(reader.View(95, 10).size(), 5U);
    EXPECT_TRUE(reader.View(100, 10).empty());
    EXPECT_TRUE(reader.View(UINT64_MAX, 10).empty());
    EXPECT_EQ(reader.ViewOnward(99).size(), 1U);
    EXPECT_TRUE(reader.ViewOnward(100).empty());
}

TEST(WindowReader, FillsWhatLiesBehindTheEndWithZeros) {
    const MemoryFile file(ByteVector{7, 8, 9});
    WindowReader reader(file);
    ByteVector out(5, 0xFF);
    EXPECT_EQ(reader.Read(1, out), 2U);
    EXPECT_EQ(out, (ByteVector{8, 9, 0, 0, 0}));
    EXPECT_EQ(reader.Read(99, out), 0U);
    EXPECT_EQ(out, ByteVector(5, 0));
}

TEST(WindowReader, LosesOnlyTheSectorThatCannotBeRead) {
    const ByteVector bytes = BytesWithoutZero(200'000);
    MemoryFile file(bytes);
    file.BreakRange(100'000, 1);  // in the sector that begins at 99840
    WindowReader reader(file);
    ByteVector out(bytes.size());
    EXPECT_EQ(reader.Read(0, out), bytes.size());

    ByteVector expected = bytes;
    std::fill_n(expected.begin() + 99'840, 512, std::uint8_t{0});
    EXPECT_EQ(out, expected);
    EXPECT_EQ(reader.Unreadable().List(), (std::vector<UnreadableRanges::Range>{{99'840, 512}}));
}

TEST(WindowReader, CountsAnUnreadableSectorOnceHoweverOftenItIsTried) {
    MemoryFile file(BytesWithoutZero(10'000));
    file.BreakRange(2048, 512);
    WindowReader reader(file);
    ByteVector out(10'000);
    reader.Read(0, out);
    reader.Read(1000, ByteSpan(out).first(5000));
    EXPECT_EQ(reader.View(2100, 4)[0], 0);
    EXPECT_EQ(reader.Unreadable().TotalBytes(), 512U);
}

TEST(WindowReader, ReadsAScanInFewLargePieces) {
    const MemoryFile file(BytesWithoutZero(8U << 20U));
    WindowReader reader(file);
    for (std::uint64_t at = 0; at < file.Size();) {
        at += reader.ViewOnward(at).size();
    }
    // 2, 4, … 512 KiB make 1022 KiB in 9 reads, and the rest goes by 1 MiB each.
    EXPECT_EQ(file.Reads(), 9 + 8);
}

// In the piece that was read ahead, too, one bad sector costs one sector.
TEST(WindowReader, LosesOnlyTheBadSectorOfWhatItReadAhead) {
    const ByteVector bytes = BytesWithoutZero(8U << 20U);
    MemoryFile file(bytes);
    constexpr std::size_t kBad = 5U << 20U;
    file.BreakRange(kBad + 100, 1);
    WindowReader reader(file);
    ByteVector seen;
    while (seen.size() < bytes.size()) {
        AppendBytes(seen, reader.ViewOnward(seen.size()));
    }
    ByteVector expected = bytes;
    std::fill_n(expected.begin() + kBad, WindowReader::kSector, std::uint8_t{0});
    EXPECT_TRUE(seen == expected);
    EXPECT_EQ(reader.Unreadable().TotalBytes(), WindowReader::kSector);
}

TEST(WindowReader, ReadsLittleForALookHereAndThere) {
    ByteVector bytes = BytesWithoutZero(8U << 20U);
    const MemoryFile file(bytes);
    WindowReader reader(file);
    for (std::uint64_t at = 0; at < file.Size(); at += 1'000'000) {
        EXPECT_EQ(reader.View(at, 8).size(), 8U);
        EXPECT_LE(reader.ViewOnward(at).size(), WindowReader::kSmallestWindow);
    }
}

TEST(WindowReader, KeepsTheEarlierWindowForWhoLooksAheadAndComesBack) {
    const MemoryFile file(BytesWithoutZero(8U << 20U));
    WindowReader reader(file);
    for (std::uint64_t head = 0; head < 5'000'000; head += 50'000) {
        EXPECT_EQ(reader.View(head, 8).size(), 8U);
        EXPECT_EQ(reader.View(head + 50'000, 8).size(), 8U);
        EXPECT_EQ(reader.View(head, 16).size(), 16U);
    }
    EXPECT_EQ(file.Reads(), 101);
}

TEST(UnreadableRanges, JoinsWhatTouchesOrOverlaps) {
    UnreadableRanges ranges;
    ranges.Add(100, 10);
    ranges.Add(200, 10);
    ranges.Add(110, 5);
    ranges.Add(195, 50);
    ranges.Add(50, 0);
    EXPECT_EQ(ranges.List(), (std::vector<UnreadableRanges::Range>{{100, 15}, {195, 50}}));
    ranges.Add(0, 1000);
    EXPECT_EQ(ranges.List(), (std::vector<UnreadableRanges::Range>{{0, 1000}}));
    EXPECT_EQ(ranges.TotalBytes(), 1000U);
}

}  // namespace
}  // namespace clipfix::platform
