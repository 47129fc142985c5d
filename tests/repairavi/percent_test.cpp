#include <gtest/gtest.h>
#include <numeric>

#include "repairavi/avi_job.h"
#include "repairavi/percent_meter.h"
#include "support/byte_builder.h"

namespace clipfix {
namespace {

using namespace test;

// Every new value of these, a value of 0 at the start left out.
std::vector<int> Changes(const std::vector<int>& values) {
    std::vector<int> changes;
    int last = 0;
    for (const int value : values) {
        if (value != last) {
            changes.push_back(value);
            last = value;
        }
    }
    return changes;
}

std::vector<int> From1To(int last) {
    std::vector<int> values(static_cast<std::size_t>(last));
    std::iota(values.begin(), values.end(), 1);
    return values;
}

std::vector<int> PercentsOf(ByteView damaged) {
    AviJob job(damaged);
    EXPECT_EQ(job.Run(), 1);
    EXPECT_EQ(job.state.g_nAviPercent,
              job.frontEnd.percents.empty() ? 0 : job.frontEnd.percents.back());
    return job.frontEnd.percents;
}

TEST(ThePercent, OfUnknownBytesGoesThroughEachValueUpToItsLast) {
    // The divisor is a hundredth of the size and 2048, rounded down.
    EXPECT_EQ(PercentsOf(ByteVector(101, 0x80)), From1To(4));       // 101 / 21
    EXPECT_EQ(PercentsOf(ByteVector(152, 0x80)), From1To(6));       // 152 / 22
    EXPECT_EQ(PercentsOf(ByteVector(5'000, 0x80)), From1To(71));    // 5000 / 70
    EXPECT_EQ(PercentsOf(ByteVector(400'000, 0x80)), From1To(99));  // 400000 / 4020
    EXPECT_EQ(PercentsOf(ByteVector(1'000'000, 0)), From1To(99));   // 1000000 / 10020
    EXPECT_EQ(PercentsOf(ByteVector(100'000, 'L')), From1To(98));   // 100000 / 1020
}

TEST(ThePercent, IsToldToWhoeverListens) {
    AviJob job(ByteVector(152, 0x80));
    std::vector<int> heard;
    job.engine.OnPercentSent([&](int percent) { heard.push_back(percent); });
    ASSERT_EQ(job.Run(), 1);
    EXPECT_EQ(heard, From1To(6));
}

// Markers that are stepped over make no percent step; the value comes with the next byte that is
// none, and values that nobody saw in between are left out.
TEST(ThePercent, DoesNotMoveOverMarkersThatAreSteppedOver) {
    ByteVector bytes(152, 0x80);  // the divisor is 22
    std::fill(bytes.begin() + 20, bytes.begin() + 70, std::uint8_t{'x'});
    // "xx" stands from 20 to 68; the last "x", at 69, is no tag and steps to 70.
    EXPECT_EQ(PercentsOf(bytes), (std::vector<int>{3, 4, 5, 6}));

    std::fill(bytes.begin() + 20, bytes.end(), std::uint8_t{'x'});
    // The file's last byte alone steps: 152 / 22.
    EXPECT_EQ(PercentsOf(bytes), (std::vector<int>{6}));

    ByteVector words(152, 0x80);
    for (std::size_t at = 20; at + 4 <= 132; at += 4) {
        OverwriteText(words, at, "vids");
    }
    // Three of each four bytes step.
    EXPECT_EQ(PercentsOf(words), From1To(6));
}

TEST(ThePercent, ComesLateWhereTheByteThatWouldBringItIsATag) {
    // The byte at 21 would bring 22, the first value of 1. A tag that begins there does not step,
    // and its second letter brings 23.
    ByteVector bytes(152, 0x80);
    OverwriteText(bytes, 21, "dc");
    AviJob job(bytes);
    std::vector<std::uint64_t> places;
    job.engine.OnPercentSent([&](int /*percent*/) { places.push_back(job.engine.BytesScanned()); });
    ASSERT_EQ(job.Run(), 1);
    EXPECT_EQ(places, (std::vector<std::uint64_t>{23, 44, 66, 88, 110, 132}));
}

// In an intact file: the unknown bytes of the head, each chunk, and each chunk's two digits.
TEST(ThePercent, FollowsTheChunksOfAnIntactFile) {
    const AviFile file = SoundFile(AviChunks(300, 1000));
    const ByteVector bytes = file.Bytes();
    const std::uint64_t divisor = (bytes.size() + 2048) / 100;
    std::vector<int> values;
    const auto step = [&](std::size_t place) {
        values.push_back(static_cast<int>(place / divisor));
    };
    std::size_t at = 324;
    for (const auto& chunk : file.chunks) {
        step(at + 1);
        step(at + 2);
        at += 8 + chunk.data.size() + chunk.data.size() % 2;
        step(at);
    }
    // The old index: nothing but the bytes between its records, all in the last percents.
    const std::vector<int> expected = Changes(values);
    const std::vector<int> seen = PercentsOf(bytes);
    ASSERT_GE(seen.size(), expected.size());
    EXPECT_EQ(
        std::vector<int>(seen.begin(), seen.begin() + static_cast<std::ptrdiff_t>(expected.size())),
        expected);
    EXPECT_EQ(seen.back(), 99);
}

// A chunk that reaches beyond the buffer steps once for each further read, and once at its end.
TEST(ThePercent, StepsWithEachReadOfALargeChunk) {
    const AviFile file = SoundFile({AviPicture(5'000'000, 1)});
    const ByteVector bytes = file.Bytes();
    const std::uint64_t divisor = (bytes.size() + 2048) / 100;
    std::vector<int> values;
    // The buffer began at 304, eight bytes ahead of the last stream list's end.
    const std::size_t end = 324 + 8 + 5'000'000;
    for (std::size_t place = 304 + 2 * 333'333; place < end; place += 333'333) {
        values.push_back(static_cast<int>(place / divisor));
    }
    values.push_back(static_cast<int>(end / divisor));
    EXPECT_EQ(PercentsOf(bytes), Changes(values));
}

TEST(ThePercent, DoesNotMoveOverAJunkChunk) {
    ByteVector bytes(10'000, 0x80);
    OverwriteText(bytes, 0, "JUNK");
    OverwriteLittle32(bytes, 4, 8'000);
    std::vector<int> expected;
    for (int value = 8'009 / 120; value <= 10'000 / 120; ++value) {
        expected.push_back(value);
    }
    EXPECT_EQ(PercentsOf(bytes), expected);
}

TEST(PercentMeter, TellsTheNextPlaceThatMatters) {
    JobState state;
    JobControl control(state);
    ProgressFrontEnd frontEnd(state);
    for (const std::uint64_t fileSize : {101U, 152U, 5'000U, 12'345U}) {
        std::atomic<std::uint64_t> place{0};
        PercentMeter stepwise({state, control, frontEnd}, fileSize, place, {});
        PercentMeter striding({state, control, frontEnd}, fileSize, place, {});
        frontEnd.percents.clear();
        for (std::uint64_t at = 1; at <= fileSize; ++at) {
            stepwise.Step(at);
        }
        const std::vector<int> expected = frontEnd.percents;
        frontEnd.percents.clear();
        for (std::uint64_t at = 0; at < fileSize;) {
            at = std::min(striding.NextChange(at), fileSize);
            striding.Step(at);
        }
        EXPECT_EQ(frontEnd.percents, expected) << fileSize;
    }
}

}  // namespace
}  // namespace clipfix
