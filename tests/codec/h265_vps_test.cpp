#include "codec/h265_vps.h"

#include <gtest/gtest.h>

#include "support/bit_writer.h"
#include "support/byte_builder.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::BitWriter;
using test::ByteBuilder;

struct VpsHead {
    unsigned internal = 1;
    unsigned maxSubLayers = 0;
};

// The two bytes of the head and the 32 bits in front of `profile_tier_level`.
BitWriter HeadOf(const VpsHead& head) {
    BitWriter bits;
    bits.Bits(0x4001, 16).Bits(5, 4).Bit(head.internal).Bit(1).Bits(0, 6);
    bits.Bits(head.maxSubLayers, 3).Bit(1).Bits(0xFFFF, 16);
    return bits;
}

TEST(CVPS, ReadsTheHeadOfItsUnit) {
    CVPS vps;
    const ByteVector bytes{0x41, 0x0F};
    static_cast<void>(vps.Parse(bytes));
    EXPECT_EQ(vps.forbidden_zero_bit, 0);
    EXPECT_EQ(vps.nal_unit_type, 32);
    EXPECT_EQ(vps.nuh_layer_id, 33);
    EXPECT_EQ(vps.nuh_temporal_id_plus1, 7);
}

TEST(CVPS, ReadsOnBehindTheLastPattern) {
    const ByteVector unit =
        ByteBuilder()
            .Bytes(HeadOf({}).View())
            .Bytes({0x01, 0x60, 0x00, 0x00, 0x03, 0x00, 0x90, 0x00, 0x00, 0x03, 0x00, 0x00})
            // Three places behind the 3 of the second pattern.
            .Bytes(BitWriter().Bit(1).Ue(4).Ue(2).Ue(5).Bits(3, 6).Ue(1023).View())
            .Take();
    CVPS vps;
    ASSERT_TRUE(vps.Parse(unit));
    EXPECT_EQ(vps.vps_video_parameter_set_id, 5);
    EXPECT_EQ(vps.vps_base_layer_internal_flag, 1);
    EXPECT_EQ(vps.vps_base_layer_available_flag, 1);
    EXPECT_EQ(vps.vps_max_layers_minus1, 0);
    EXPECT_EQ(vps.vps_max_sub_layers_minus1, 0);
    EXPECT_EQ(vps.vps_temporal_id_nesting_flag, 1);
    EXPECT_EQ(vps.vps_reserved_0xffff_16bits, 0xFFFF);
    EXPECT_EQ(vps.vps_sub_layer_ordering_info_present_flag, 1);
    EXPECT_EQ(vps.vps_max_dec_pic_buffering_minus1, ByteVector{4});
    EXPECT_EQ(vps.vps_max_num_reorder_pics, ByteVector{2});
    EXPECT_EQ(vps.vps_max_latency_increase_plus1, ByteVector{5});
    EXPECT_EQ(vps.vps_max_layer_id, 3);
    EXPECT_EQ(vps.vps_num_layer_sets_minus1, 1023);
    EXPECT_EQ(vps.vps_timing_info_present_flag, -1);
    EXPECT_EQ(vps.vps_time_scale, -1);
}

ByteVector WithLayerSets(std::uint32_t count) {
    return ByteBuilder()
        .Bytes(HeadOf({.internal = 0}).Bits(0x000300, 24).Bits(0, 8).View())
        .Bytes(BitWriter().Bits(0, 6).Ue(count).View())
        .Take();
}

TEST(CVPS, RefusesMoreThanOneThousandAndTwentyFourLayerSets) {
    CVPS vps;
    EXPECT_TRUE(vps.Parse(WithLayerSets(1023)));
    EXPECT_EQ(vps.vps_num_layer_sets_minus1, 1023);
    EXPECT_FALSE(vps.Parse(WithLayerSets(1024)));
    EXPECT_EQ(vps.vps_num_layer_sets_minus1, 1024);
    // Too large for a signed number, and so below 0.
    EXPECT_TRUE(vps.Parse(WithLayerSets(0xFFFFFFFE)));
    EXPECT_EQ(vps.vps_num_layer_sets_minus1, -2);
}

TEST(CVPS, ReadsOnFromItsHeadWithoutThePattern) {
    const ByteVector unit = HeadOf({}).View();
    CVPS vps;
    ASSERT_TRUE(vps.Parse(unit));
    // 0x40 0x01 0x5C 0x01: 0 | 1 | 000000000000 1 0101110000000 ...
    EXPECT_EQ(vps.vps_sub_layer_ordering_info_present_flag, 0);
    EXPECT_EQ(vps.vps_max_dec_pic_buffering_minus1, ByteVector{0});
    // Thirteen zeros, a 1, and 0101110000000: 8191 + 2944, of which the low byte is kept.
    EXPECT_EQ(vps.vps_max_num_reorder_pics, ByteVector{static_cast<std::uint8_t>(8191 + 2944)});
}

TEST(CVPS, FindsThePatternWhoseFirstZeroStandsAheadOfThePlace) {
    // The sixteen reserved bits end with a byte 0, and the 3 is the first byte that is searched.
    BitWriter bits;
    bits.Bits(0x4001, 16).Bits(0, 4).Bit(0).Bit(1).Bits(0, 6).Bits(0, 3).Bit(1).Bits(0xFF00, 16);
    const ByteVector unit =
        ByteBuilder().Bytes(bits.View()).Bytes({0x03, 0x00, 0x55}).Bytes({0b10101010, 0x80}).Take();
    CVPS vps;
    ASSERT_TRUE(vps.Parse(unit));
    EXPECT_EQ(vps.vps_max_layer_id, 0b101010);
    EXPECT_EQ(vps.vps_num_layer_sets_minus1, 0);
}

TEST(CVPS, FindsNoPatternWhoseLastZeroIsBehindTheEnd) {
    const ByteVector unit =
        ByteBuilder().Bytes(HeadOf({.internal = 0}).View()).Bytes({0, 3}).Take();
    CVPS vps;
    ASSERT_TRUE(vps.Parse(unit));
    EXPECT_EQ(vps.vps_max_layer_id, 0x40 >> 2);  // read from the head of the unit
    // With the zero it is found, and what is read lies behind the end.
    const ByteVector longer = ByteBuilder().Bytes(unit).U8(0).Take();
    ASSERT_TRUE(vps.Parse(longer));
    EXPECT_EQ(vps.vps_max_layer_id, 0);
}

ByteVector WithSubLayers(unsigned maxSubLayers, const BitWriter& tail) {
    return ByteBuilder()
        .Bytes(HeadOf({.maxSubLayers = maxSubLayers}).Bits(0x000300, 24).Bits(0, 8).View())
        .Bytes(tail.View())
        .Take();
}

TEST(CVPS, ReadsAllSubLayersWithTheFlagAndTheLastOneWithout) {
    CVPS vps;
    BitWriter all;
    all.Bit(1).Ue(1).Ue(2).Ue(3).Ue(4).Ue(5).Ue(6).Ue(7).Ue(8).Ue(9).Bits(1, 6).Ue(0);
    ASSERT_TRUE(vps.Parse(WithSubLayers(2, all)));
    EXPECT_EQ(vps.vps_max_dec_pic_buffering_minus1, (ByteVector{1, 4, 7}));
    EXPECT_EQ(vps.vps_max_num_reorder_pics, (ByteVector{2, 5, 8}));
    EXPECT_EQ(vps.vps_max_latency_increase_plus1, (ByteVector{3, 6, 9}));
    EXPECT_EQ(vps.vps_max_layer_id, 1);

    BitWriter last;
    last.Bit(0).Ue(1).Ue(2).Ue(300).Bits(1, 6).Ue(0);
    ASSERT_TRUE(vps.Parse(WithSubLayers(2, last)));
    EXPECT_EQ(vps.vps_max_dec_pic_buffering_minus1, (ByteVector{0, 0, 1}));
    EXPECT_EQ(vps.vps_max_num_reorder_pics, (ByteVector{0, 0, 2}));
    EXPECT_EQ(vps.vps_max_latency_increase_plus1, (ByteVector{0, 0, 300 - 256}));
    EXPECT_EQ(vps.vps_max_layer_id, 1);
}

TEST(CVPS, ReadsNoSubLayersWithoutTheInternalFlag) {
    CVPS vps;
    ASSERT_TRUE(vps.Parse(WithLayerSets(0)));
    EXPECT_EQ(vps.vps_sub_layer_ordering_info_present_flag, -1);
    EXPECT_TRUE(vps.vps_max_dec_pic_buffering_minus1.empty());
}

TEST(CVPS, StartsAfreshWithEachParse) {
    CVPS vps;
    ASSERT_TRUE(vps.Parse(WithSubLayers(2, BitWriter().Bit(1))));
    ASSERT_TRUE(vps.Parse(WithLayerSets(0)));
    EXPECT_TRUE(vps.vps_max_num_reorder_pics.empty());
    EXPECT_EQ(vps.vps_max_sub_layers_minus1, 0);
}

TEST(CVPS, ReadsAnyBytes) {
    test::Random random(4);
    for (int i = 0; i < 5000; ++i) {
        CVPS vps;
        const bool stands = vps.Parse(random.Bytes(random.Below(80)));
        EXPECT_EQ(stands, vps.vps_num_layer_sets_minus1 <= 1023);
    }
}

}  // namespace
}  // namespace clipfix
