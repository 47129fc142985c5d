#include "codec/block_test.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "codec/reference_sets.h"
#include "support/bit_writer.h"
#include "support/byte_builder.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::BitWriter;
using test::ByteBuilder;
using test::Random;
using test::ReferenceSets;

constexpr std::uint32_t kLargestUnit = 2'199'999;

ByteVector SliceUnit264(std::uint32_t size) {
    return BitWriter().Bits(size - 4, 32).Bits(0x41, 8).Ue(3).Ue(5).Ue(0).Bits(9, 16).View();
}

ByteVector SliceUnit265(std::uint32_t size) {
    return BitWriter().Bits(size - 4, 32).Bits(0x0201, 16).Bit(1).Ue(3).Bits(0, 16).View();
}

TEST(BlockTest, FindsAUnitAtEveryPlaceOfABlock) {
    const ReferenceSets sets;
    const BlockTest test264(sets.H264(), 4, kLargestUnit);
    const BlockTest test265(sets.H265(), 4, kLargestUnit);
    for (std::size_t at = 0; at < 400; ++at) {
        ByteVector block(500, 0x80);
        const ByteVector unit = SliceUnit264(30000);
        std::copy(unit.begin(), unit.end(), block.begin() + static_cast<std::ptrdiff_t>(at));
        EXPECT_EQ(test264.FindNext(block, 0, block.size()), at);
        EXPECT_EQ(test264.FindNext(block, at, block.size()), at);
        EXPECT_EQ(test264.FindNext(block, at + 1, block.size()), BlockTest::kNone);
        EXPECT_EQ(test264.FindNext(block, 0, at), BlockTest::kNone);
        EXPECT_EQ(test264.FindNext(block, 0, at + 1), at);

        block.assign(500, 0x80);
        const ByteVector other = SliceUnit265(30000);
        std::copy(other.begin(), other.end(), block.begin() + static_cast<std::ptrdiff_t>(at));
        EXPECT_EQ(test265.FindAll(block, 0, block.size()), std::vector<std::size_t>{at});
    }
}

TEST(BlockTest, LimitsTheSizeOfAUnit) {
    const ReferenceSets sets;
    for (const std::uint32_t largest : {1000U, 65535U, 65540U, kLargestUnit, 0x00FFFFFFU,
                                        0x01000003U, 0x01000004U, 0x7FFFFFFFU}) {
        const BlockTest test(sets.H264(), 4, largest);
        for (const std::uint32_t size : {largest - 1, largest}) {
            EXPECT_EQ(test.FindNext(SliceUnit264(size), 0, 1), 0U) << largest;
        }
        EXPECT_EQ(test.FindNext(SliceUnit264(largest + 1), 0, 1), BlockTest::kNone) << largest;
        // The same by wide compares.
        ByteVector block = SliceUnit264(largest);
        block.resize(400, 0x80);
        EXPECT_EQ(test.FindNext(block, 0, block.size()), 0U) << largest;
        block = SliceUnit264(largest + 1);
        block.resize(400, 0x80);
        EXPECT_NE(test.FindNext(block, 0, block.size()), 0U) << largest;
    }
}

TEST(BlockTest, FindsLengthsThatWrapToASmallSize) {
    const ReferenceSets sets;
    const BlockTest test(sets.H264(), 4, kLargestUnit);
    for (const std::uint32_t size : {1U, 2U, 3U}) {
        ByteVector block = SliceUnit264(size);
        block.resize(400, 0x80);
        EXPECT_TRUE(CNALU::Parse(SubView(block, 0, 50), 4, sets.H264()));
        EXPECT_EQ(test.FindNext(block, 0, block.size()), 0U);
    }
    ByteVector zero = SliceUnit264(0);
    zero.resize(400, 0x80);
    EXPECT_EQ(test.FindNext(zero, 0, zero.size()), BlockTest::kNone);
}

TEST(BlockTest, FindsNothingInSilence) {
    const ReferenceSets sets;
    for (const bool isH265 : {false, true}) {
        const BlockTest test(isH265 ? sets.H265() : sets.H264(), 4, kLargestUnit);
        for (const std::uint8_t value : ByteVector{0x00, 0x55, 0x80, 0xFF}) {
            const ByteVector block(1000, value);
            EXPECT_EQ(test.FindNext(block, 0, block.size()), BlockTest::kNone) << int{value};
        }
        EXPECT_EQ(test.FindNext({}, 0, 100), BlockTest::kNone);
    }
}

TEST(BlockTest, FindsNothingWithoutTheSetsThatAUnitNeeds) {
    const ReferenceSets sets;
    const ByteVector slice = SliceUnit264(3000);
    const ByteVector sei{0, 0, 0, 10, 0x06};
    const ByteVector sps{0, 0, 0, 10, 0x67};
    EXPECT_EQ(BlockTest({}, 4).FindNext(slice, 0, 1), BlockTest::kNone);
    EXPECT_EQ(BlockTest({}, 4).FindNext(sps, 0, 1), BlockTest::kNone);
    EXPECT_EQ(BlockTest({}, 4).FindNext(sei, 0, 1), 0U);
    EXPECT_EQ(BlockTest(sets.H264(), 4).FindNext(slice, 0, 1), 0U);
    EXPECT_EQ(BlockTest(sets.H264(), 4).FindNext(sps, 0, 1), 0U);
    ReferenceParameterSets reference = sets.H265();
    EXPECT_EQ(BlockTest(reference, 4).FindNext(SliceUnit265(3000), 0, 1), 0U);
    reference.pps265 = nullptr;
    EXPECT_EQ(BlockTest(reference, 4).FindNext(SliceUnit265(3000), 0, 1), BlockTest::kNone);
}

TEST(BlockTest, KeepsAPositionWhoseSliceTheEndOfTheBlockCuts) {
    const ReferenceSets sets;
    const BlockTest test(sets.H264(), 4);
    // A first code that takes all bytes there are; the parser lets it stand.
    ByteVector block(90, 0x80);
    const ByteVector unit{0, 0, 1, 0, 0x41, 0x00, 0x01};
    block.insert(block.end(), unit.begin(), unit.end());
    EXPECT_TRUE(CNALU::Parse(SubView(block, 90), 4, sets.H264()));
    EXPECT_EQ(test.FindNext(block, 90, block.size()), 90U);
}

TEST(BlockTest, PrunesNoiseToAFewPositionsInAMillion) {
    const ReferenceSets sets;
    Random random(13);
    const ByteVector noise = random.Bytes(1'000'000);
    EXPECT_LT(BlockTest(sets.H264(), 4, kLargestUnit).FindAll(noise, 0, noise.size()).size(), 60U);
    EXPECT_LT(BlockTest(sets.H265(), 4, kLargestUnit).FindAll(noise, 0, noise.size()).size(), 30U);
}

// ---- Never drops a position that the parser accepts

// A block of one of several kinds: noise; small values, as in tables and silence; ones; zeros; and
// units and near-units laid into any of them.
ByteVector MakeBlock(Random& random, std::uint32_t lengthSize, bool isH265) {
    ByteVector block(random.Below(500));
    const std::uint32_t kind = random.Below(5);
    for (auto& byte : block) {
        switch (kind) {
            case 0:
                byte = random.Byte();
                break;
            case 1:
                byte = random.OneIn(3) ? static_cast<std::uint8_t>(random.Below(12)) : 0;
                break;
            case 2:
                byte = random.OneIn(3) ? random.Byte() : 0xFF;
                break;
            case 3:
                byte = random.OneIn(2) ? static_cast<std::uint8_t>(random.Below(0x43)) : 0;
                break;
            default:
                break;
        }
    }
    const std::uint32_t units = random.Below(8);
    for (std::uint32_t i = 0; i < units && !block.empty(); ++i) {
        const std::uint32_t edges[] = {0,          6,         7,        8,          800,
                                       801,        1000,      1001,     0x00FFFFFF, 0x01000003,
                                       0x21918F,   0x2191BF,  0x2191C0, 0x7FFFFFFF, 0xFFFFFFFF,
                                       0xFFFFFFFD, 0xFFFFFFFC};
        const std::uint32_t size =
            random.OneIn(2) ? edges[random.Below(std::size(edges))] : random.Below(3'000'000);
        ByteVector unit;
        AppendBig32(unit, size - lengthSize + (random.OneIn(4) ? random.Below(3) : 0));
        unit.resize(lengthSize);
        if (isH265) {
            unit.push_back(static_cast<std::uint8_t>(random.Below(128)));
            unit.push_back(random.OneIn(4) ? random.Byte() : std::uint8_t{1});
        } else {
            unit.push_back(static_cast<std::uint8_t>((random.Below(4) << 5U) | random.Below(10)));
        }
        const std::size_t zeros = random.OneIn(4) ? random.Below(30) : 0;
        AppendZeros(unit, zeros);
        for (int more = 0; more < 6; ++more) {
            unit.push_back(random.Byte());
        }
        std::size_t at = random.Below(static_cast<std::uint32_t>(block.size()));
        for (std::size_t j = 0; j < unit.size() && at < block.size(); ++j, ++at) {
            block[at] = unit[j];
        }
    }
    return block;
}

class BlockTestAgainstParse : public testing::TestWithParam<bool> {};

TEST_P(BlockTestAgainstParse, NeverDropsAPositionThatParseAccepts) {
    const bool isH265 = GetParam();
    Random random(isH265 ? 15 : 14);
    ReferenceSets sets;
    std::size_t accepted = 0;
    std::size_t kept = 0;
    for (int round = 0; round < 6000; ++round) {
        if (isH265) {
            sets.sps265.nuh_layer_id =
                random.OneIn(4) ? static_cast<std::int32_t>(random.Below(64)) : 0;
            sets.pps265.entropy_coding_sync_enabled_flag =
                static_cast<std::int32_t>(random.Below(2));
        }
        const ReferenceParameterSets reference = isH265 ? sets.H265() : sets.H264();
        const std::uint32_t lengthSize = random.OneIn(3) ? random.Below(10) : 4;
        const std::uint32_t largest =
            random.OneIn(2) ? kLargestUnit
                            : (random.OneIn(2) ? UINT32_MAX : random.Below(0x02000000));
        const ByteVector block = MakeBlock(random, lengthSize, isH265);
        const std::size_t from = random.OneIn(2) ? 0 : random.Below(300);
        const std::size_t to = random.OneIn(2) ? block.size() : random.Below(600);
        const BlockTest test(reference, lengthSize, largest);
        const std::vector<std::size_t> found = test.FindAll(block, from, to);
        std::vector<std::size_t> oneByOne;
        for (std::size_t at = from; at < std::min(to, block.size()); ++at) {
            if (test.CouldStandAt(block, at)) {
                oneByOne.push_back(at);
            }
            const auto unit =
                CNALU::Parse(SubView(block, at, CNALU::kProbeLength), lengthSize, reference);
            if (unit && unit->size <= largest) {
                ++accepted;
                ASSERT_TRUE(std::binary_search(found.begin(), found.end(), at))
                    << "round " << round << " position " << at;
            }
        }
        kept += found.size();
        ASSERT_EQ(found, oneByOne) << "round " << round;
    }
    EXPECT_GT(accepted, 3000U);
    EXPECT_LT(kept, 4 * accepted);
}

INSTANTIATE_TEST_SUITE_P(Codecs, BlockTestAgainstParse, testing::Bool());

}  // namespace
}  // namespace clipfix
