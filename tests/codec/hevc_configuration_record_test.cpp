#include "codec/hevc_configuration_record.h"

#include <chrono>
#include <gtest/gtest.h>

#include "base/fourcc.h"
#include "support/bit_writer.h"
#include "support/byte_builder.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::BitWriter;
using test::ByteBuilder;

constexpr std::int32_t kWidth = 64;
constexpr std::int32_t kHeight = 48;

// Short units of each kind. No byte behind their heads could be a head as well.
ByteVector VpsUnit(unsigned id) {
    return ByteBuilder()
        .Bytes(BitWriter().Bits(0x4001, 16).Bits(id, 4).Bits(0, 4).View())
        .Zeros(5)
        .Take();
}
ByteVector SpsUnit(std::uint32_t id) {
    return BitWriter().Bits(0x420101, 24).Ue(id).Ue(1).Ue(64).Ue(48).Bits(0, 7).View();
}
ByteVector PpsUnit(std::uint32_t id) {
    return BitWriter().Bits(0x4401, 16).Ue(id).Ue(0).Bits(0, 6).View();
}
// Tiles of uneven size: 1 column more, 0 rows more.
ByteVector UnevenPpsUnit() {
    BitWriter bits;
    bits.Bits(0x4401, 16).Ue(0).Ue(0).Bits(0, 2).Bits(0, 3).Bits(0, 2).Ue(0).Ue(0).Se(0);
    bits.Bits(0, 3).Se(0).Se(0).Bits(0, 4).Bit(1).Bit(0).Ue(1).Ue(0).Bit(0).Ue(1);
    return bits.Bits(0, 12).View();
}

// The box up to the count of arrays. The published layout has 22 bytes of body in front of it.
ByteBuilder Head(std::uint8_t arrays) {
    ByteBuilder box;
    box.Big32(0x5678).Text("hvcC").Zeros(22).U8(arrays);
    return box;
}

// An array of one kind: its head byte, a count of two bytes, and length and bytes of each unit.
ByteBuilder& Array(ByteBuilder& box, std::uint8_t type, std::initializer_list<ByteVector> units) {
    box.U8(static_cast<std::uint8_t>(0x80 | type)).Big16(static_cast<std::uint16_t>(units.size()));
    for (const ByteVector& unit : units) {
        box.Big16(static_cast<std::uint16_t>(unit.size())).Bytes(unit);
    }
    return box;
}

ByteBuilder WholeBox() {
    ByteBuilder box = Head(3);
    Array(box, 32, {VpsUnit(2)});
    Array(box, 33, {SpsUnit(1)});
    Array(box, 34, {PpsUnit(3)});
    return box;
}

HVCDecoderConfigurationRecord Parsed(ByteView box) {
    HVCDecoderConfigurationRecord record;
    record.Parse(box, kWidth, kHeight);
    return record;
}

TEST(HVCDecoderConfigurationRecord, FindsTheThreeSets) {
    const ByteBuilder box = WholeBox();
    const HVCDecoderConfigurationRecord record = Parsed(box.View());
    EXPECT_EQ(record.size, 0x5678U);
    EXPECT_EQ(record.type, FourCC("hvcC"));
    EXPECT_EQ(record.numVps, 1);
    EXPECT_EQ(record.numSps, 1);
    EXPECT_EQ(record.numPps, 1);
    EXPECT_EQ(record.vpsLength, VpsUnit(2).size());
    EXPECT_EQ(record.spsLength, SpsUnit(1).size());
    EXPECT_EQ(record.ppsLength, PpsUnit(3).size());
    ASSERT_TRUE(record.vps);
    EXPECT_EQ(record.vps->vps_video_parameter_set_id, 2);
    ASSERT_TRUE(record.sps);
    EXPECT_EQ(record.sps->sps_seq_parameter_set_id, 1);
    EXPECT_EQ(record.sps->pic_width_in_luma_samples, 64);
    ASSERT_TRUE(record.pps);
    EXPECT_EQ(record.pps->pps_pic_parameter_set_id, 3);
}

TEST(HVCDecoderConfigurationRecord, FindsTheSetsInAnyOrder) {
    ByteBuilder box = Head(3);
    Array(box, 34, {PpsUnit(3)});
    Array(box, 33, {SpsUnit(1)});
    Array(box, 32, {VpsUnit(2)});
    const HVCDecoderConfigurationRecord record = Parsed(box.View());
    EXPECT_TRUE(record.vps);
    EXPECT_TRUE(record.sps);
    EXPECT_TRUE(record.pps);
}

TEST(HVCDecoderConfigurationRecord, IsNotReadWithTwoArrays) {
    ByteBuilder box = Head(2);
    Array(box, 33, {SpsUnit(1)});
    Array(box, 34, {PpsUnit(3)});
    const HVCDecoderConfigurationRecord record = Parsed(box.View());
    EXPECT_EQ(record.size, 0x5678U);
    EXPECT_FALSE(record.vps);
    EXPECT_FALSE(record.sps);
    EXPECT_FALSE(record.pps);
    // The count decides, not the arrays that are there.
    ByteBuilder three = Head(3);
    Array(three, 33, {SpsUnit(1)});
    Array(three, 34, {PpsUnit(3)});
    EXPECT_TRUE(Parsed(three.View()).sps);
}

TEST(HVCDecoderConfigurationRecord, IsNotReadBelowThirtyBytes) {
    const ByteVector box = WholeBox().View();
    EXPECT_EQ(Parsed(SubView(box, 0, 29)).size, 0U);
    const HVCDecoderConfigurationRecord thirty = Parsed(SubView(box, 0, 30));
    EXPECT_EQ(thirty.size, 0x5678U);
    EXPECT_FALSE(thirty.sps);
}

TEST(HVCDecoderConfigurationRecord, TakesALengthWithTheValueOfAHeadForAHead) {
    // A picture set of 0x41 bytes: the low byte of its length stands for the head of a video set.
    // Its count is then the high byte of the array's count, here 0, and replaces the one that was
    // read from the array of video sets. The true head follows and is found.
    ByteVector pps = PpsUnit(3);
    pps.resize(0x41);
    ByteBuilder box = Head(3);
    Array(box, 32, {VpsUnit(2)});
    Array(box, 34, {pps});
    box.Zeros(4);
    const HVCDecoderConfigurationRecord record = Parsed(box.View());
    EXPECT_EQ(record.numVps, 0);
    EXPECT_TRUE(record.vps);
    EXPECT_TRUE(record.pps);
    // With another length nothing replaces it.
    pps.resize(0x3F);
    ByteBuilder other = Head(3);
    Array(other, 32, {VpsUnit(2)});
    Array(other, 34, {pps});
    other.Zeros(4);
    EXPECT_EQ(Parsed(other.View()).numVps, 1);
}

TEST(HVCDecoderConfigurationRecord, TakesAUnitFromAFalseHead) {
    // The same with a count of 0x0101: there is one repetition, its length is 0x0100, read from the
    // low byte of the count and the high byte of the true length, and 256 bytes are taken, with
    // the true head in them.
    ByteVector pps = PpsUnit(3);
    pps.resize(0x41);
    ByteBuilder box = Head(3);
    Array(box, 34, {pps});
    ByteVector bytes = box.Zeros(400).Take();
    bytes[32] = 1;
    const HVCDecoderConfigurationRecord record = Parsed(bytes);
    EXPECT_EQ(record.numVps, 1);
    EXPECT_EQ(record.vpsLength, 0x0100);
    ASSERT_TRUE(record.vps);
    EXPECT_EQ(record.vps->nal_unit_type, 32);
    EXPECT_EQ(record.vps->nuh_layer_id, 0b101000);  // from 0x41 0x44
    EXPECT_FALSE(record.pps);
}

TEST(HVCDecoderConfigurationRecord, TakesTheSecondLengthFromTheEndOfTheFirstUnit) {
    // The first unit ends with 0x00 0x07, and seven bytes follow: the second's length word and
    // what stands behind it, which is no head of a set.
    ByteVector first = VpsUnit(2);
    first.push_back(0x00);
    first.push_back(0x07);
    ByteBuilder box = Head(3);
    Array(box, 32, {first, VpsUnit(5)});
    box.Zeros(8);
    const HVCDecoderConfigurationRecord record = Parsed(box.View());
    EXPECT_EQ(record.numVps, 2);
    EXPECT_EQ(record.vpsLength, 7);
    ASSERT_TRUE(record.vps);
    // 00 08 40 01 50 00 00: a unit whose head is 00 08.
    EXPECT_EQ(record.vps->nal_unit_type, 0);
}

TEST(HVCDecoderConfigurationRecord, LeavesAnEarlierSetWhereARepetitionDoesNotFit) {
    // The first unit ends with 0x7F 0xFF, the length that is read for the second.
    ByteVector first = VpsUnit(2);
    first.push_back(0x7F);
    first.push_back(0xFF);
    ByteBuilder box = Head(3);
    Array(box, 32, {first});
    // The count says two, and no second unit is there.
    ByteVector bytes = box.Zeros(8).Take();
    bytes[33] = 2;
    const HVCDecoderConfigurationRecord record = Parsed(bytes);
    EXPECT_EQ(record.numVps, 2);
    EXPECT_EQ(record.vpsLength, 0x7FFF);
    ASSERT_TRUE(record.vps);
    EXPECT_EQ(record.vps->vps_video_parameter_set_id, 2);
}

TEST(HVCDecoderConfigurationRecord, HasNoSetThatRefuses) {
    ByteBuilder box = Head(3);
    Array(box, 33, {SpsUnit(1)});
    box.Zeros(4);
    EXPECT_TRUE(Parsed(box.View()).sps);
    HVCDecoderConfigurationRecord other;
    other.Parse(box.View(), 4 * kWidth, kHeight);
    EXPECT_FALSE(other.sps);
    HVCDecoderConfigurationRecord zero;
    zero.Parse(box.View(), 0, 0);
    EXPECT_FALSE(zero.sps);
}

TEST(HVCDecoderConfigurationRecord, LosesAnEarlierSetToALaterOneThatRefuses) {
    ByteBuilder box = Head(4);
    Array(box, 33, {SpsUnit(1)});
    Array(box, 33, {ByteVector{0x42, 0x01, 0x01, 0x00}});
    box.Zeros(4);
    const HVCDecoderConfigurationRecord record = Parsed(box.View());
    EXPECT_EQ(record.spsLength, 4);
    EXPECT_FALSE(record.sps);
}

TEST(HVCDecoderConfigurationRecord, RefusesUnevenTilesAheadOfTheSequenceSet) {
    ByteBuilder behind = Head(3);
    Array(behind, 33, {SpsUnit(1)});
    Array(behind, 34, {UnevenPpsUnit()});
    behind.Zeros(4);
    EXPECT_TRUE(Parsed(behind.View()).pps);
    ByteBuilder ahead = Head(3);
    Array(ahead, 34, {UnevenPpsUnit()});
    Array(ahead, 33, {SpsUnit(1)});
    ahead.Zeros(4);
    const HVCDecoderConfigurationRecord record = Parsed(ahead.View());
    EXPECT_TRUE(record.sps);
    EXPECT_FALSE(record.pps);
}

TEST(HVCDecoderConfigurationRecord, StandsStillAtAUnitOfNoBytesWithoutRepeatingItsWork) {
    // Many heads with a count of 255 and a length of 0.
    ByteBuilder box = Head(3);
    for (int i = 0; i < 100000; ++i) {
        box.Bytes({0xFF, 0x00, 0x00, 0x40});
    }
    const auto start = std::chrono::steady_clock::now();
    const HVCDecoderConfigurationRecord record = Parsed(box.View());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(record.numVps, 0xFF);
    EXPECT_EQ(record.vpsLength, 0);
    ASSERT_TRUE(record.vps);
    EXPECT_EQ(record.vps->nal_unit_type, 0);
}

TEST(HVCDecoderConfigurationRecord, ReadsAnyBytes) {
    test::Random random(11);
    for (int i = 0; i < 5000; ++i) {
        ByteVector bytes = random.Bytes(random.Below(200));
        for (std::size_t at = 30; at < bytes.size(); ++at) {
            if (random.OneIn(4)) {
                bytes[at] = static_cast<std::uint8_t>(0x40 + random.Below(6));
            } else if (random.OneIn(2)) {
                bytes[at] &= 3;
            }
        }
        const HVCDecoderConfigurationRecord record = Parsed(bytes);
        EXPECT_TRUE(bytes.size() >= 30 || !record.vps);
    }
}

}  // namespace
}  // namespace clipfix
