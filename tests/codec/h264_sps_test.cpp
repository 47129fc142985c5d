#include "codec/h264_sps.h"

#include <gtest/gtest.h>

#include "support/bit_writer.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::BitWriter;

// The head byte and the three bytes behind it.
BitWriter SpsHead(unsigned profileIdc) {
    BitWriter bits;
    bits.Bits(0x67, 8).Bits(profileIdc, 8).Bits(0xC0, 8).Bits(30, 8);
    return bits;
}

// What stands behind the bit depths and flags of a set: 176 x 144, four reference pictures.
void WritePlainTail(BitWriter& bits) {
    bits.Ue(0);                        // log2_max_frame_num_minus4
    bits.Ue(0).Ue(2);                  // pic_order_cnt_type, log2_max_pic_order_cnt_lsb_minus4
    bits.Ue(4).Bit(0);                 // max_num_ref_frames, gaps
    bits.Ue(10).Ue(8).Bit(1);          // width, height, frame_mbs_only_flag
    bits.Bit(1).Bit(0).Bit(0).Bit(1);  // direct, cropping, VUI, stop bit
}

TEST(CSPS, ReadsABaselineSet) {
    BitWriter bits = SpsHead(66);
    bits.Ue(3);
    WritePlainTail(bits);
    const CSPS sps(bits.View());
    EXPECT_EQ(sps.profile_idc, 66);
    EXPECT_EQ(sps.level_idc, 30);
    EXPECT_EQ(sps.seq_parameter_set_id, 3);
    EXPECT_EQ(sps.log2_max_frame_num_minus4, 0);
    EXPECT_EQ(sps.pic_order_cnt_type, 0);
    EXPECT_EQ(sps.log2_max_pic_order_cnt_lsb_minus4, 2);
    EXPECT_EQ(sps.max_num_ref_frames, 4);
    EXPECT_EQ(sps.gaps_in_frame_num_value_allowed_flag, 0);
    EXPECT_EQ(sps.pic_width_in_mbs_minus1, 10);
    EXPECT_EQ(sps.pic_height_in_map_units_minus1, 8);
    EXPECT_EQ(sps.frame_mbs_only_flag, 1);
    EXPECT_EQ(sps.direct_8x8_inference_flag, 1);
    EXPECT_EQ(sps.frame_cropping_flag, 0);
    EXPECT_EQ(sps.frame_crop_left_offset, -1);
    EXPECT_EQ(sps.vui_parameters_present_flag, 0);
}

TEST(CSPS, GoesStraightToTheFrameNumberWhereTheProfileIsNotInTheList) {
    for (const unsigned profile : {66U, 77U, 88U, 138U, 139U, 134U, 135U}) {
        BitWriter bits = SpsHead(profile);
        bits.Ue(0);
        WritePlainTail(bits);
        const CSPS sps(bits.View());
        EXPECT_EQ(sps.chroma_format_idc, 1) << profile;
        EXPECT_EQ(sps.qpprime_y_zero_transform_bypass_flag, -1) << profile;
        EXPECT_EQ(sps.log2_max_frame_num_minus4, 0) << profile;
        EXPECT_EQ(sps.pic_width_in_mbs_minus1, 10) << profile;
    }
}

TEST(CSPS, ReadsTheChromaFormatWhereTheProfileIsInTheList) {
    for (const unsigned profile : {100U, 110U, 122U, 244U, 44U, 83U, 86U, 118U, 128U}) {
        BitWriter bits = SpsHead(profile);
        bits.Ue(0).Ue(2).Ue(1).Ue(2);
        bits.Ue(7).Ue(9);  // the two flags, as the codes they are read as
        WritePlainTail(bits);
        const CSPS sps(bits.View());
        EXPECT_EQ(sps.chroma_format_idc, 2) << profile;
        EXPECT_EQ(sps.separate_colour_plane_flag, 0) << profile;
        EXPECT_EQ(sps.bit_depth_luma_minus8, 1) << profile;
        EXPECT_EQ(sps.bit_depth_chroma_minus8, 2) << profile;
        EXPECT_EQ(sps.qpprime_y_zero_transform_bypass_flag, 7) << profile;
        EXPECT_EQ(sps.seq_scaling_matrix_present_flag, 9) << profile;
        EXPECT_EQ(sps.pic_width_in_mbs_minus1, 10) << profile;
    }
}

TEST(CSPS, ReadsTwoFlagsOfTheHighProfileAsCodesSoThatTheBitsBehindShift) {
    // As an encoder writes it: two flags of one bit, both 0.
    BitWriter bits = SpsHead(100);
    bits.Ue(0).Ue(1).Ue(0).Ue(0).Bit(0).Bit(0);
    WritePlainTail(bits);
    // From the flags on the bits are 0 0 1 1 011 00101 0 0001011 0001001 1 1 0 0 1, which read as
    // 00110 | 1 | 1 | 00101 | 000010110 | 0 | 010 | 011 | 1 ...
    const CSPS sps(bits.View());
    EXPECT_EQ(sps.qpprime_y_zero_transform_bypass_flag, 5);
    EXPECT_EQ(sps.seq_scaling_matrix_present_flag, 0);
    EXPECT_EQ(sps.log2_max_frame_num_minus4, 0);
    EXPECT_EQ(sps.pic_order_cnt_type, 4);
    EXPECT_EQ(sps.log2_max_pic_order_cnt_lsb_minus4, -1);
    EXPECT_EQ(sps.max_num_ref_frames, 21);
    EXPECT_EQ(sps.gaps_in_frame_num_value_allowed_flag, 0);
    EXPECT_EQ(sps.pic_width_in_mbs_minus1, 1);
    EXPECT_EQ(sps.pic_height_in_map_units_minus1, 2);
}

TEST(CSPS, ReadsAFlagOfOneAsZero) {
    BitWriter bits = SpsHead(244);
    bits.Ue(0).Ue(3).Bit(1).Ue(0).Ue(0).Bit(1).Bit(1);
    WritePlainTail(bits);
    const CSPS sps(bits.View());
    EXPECT_EQ(sps.separate_colour_plane_flag, 0);
    EXPECT_EQ(sps.qpprime_y_zero_transform_bypass_flag, 0);
    EXPECT_EQ(sps.seq_scaling_matrix_present_flag, 0);
    EXPECT_EQ(sps.ChromaArrayType, 3);
    EXPECT_EQ(sps.log2_max_frame_num_minus4, 0);
    EXPECT_EQ(sps.max_num_ref_frames, 4);
}

TEST(CSPS, DerivesSizesOfABaselineSet) {
    BitWriter bits = SpsHead(66);
    bits.Ue(0);
    WritePlainTail(bits);
    const CSPS sps(bits.View());
    EXPECT_EQ(sps.separate_colour_plane_flag, 0);
    EXPECT_EQ(sps.ChromaArrayType, 1);
    EXPECT_EQ(sps.bit_depth_luma_minus8, 0);
    EXPECT_EQ(sps.BitDepthY, 8);
    EXPECT_EQ(sps.QpBdOffsetY, 0);
    EXPECT_EQ(sps.bit_depth_chroma_minus8, 0);
    EXPECT_EQ(sps.BitDepthC, 8);
    EXPECT_EQ(sps.QpBdOffsetC, 0);
    EXPECT_EQ(sps.SubWidthC, 2);
    EXPECT_EQ(sps.SubHeightC, 2);
    EXPECT_EQ(sps.MbWidthC, 8);
    EXPECT_EQ(sps.MbHeightC, 8);
    EXPECT_EQ(sps.RawMbBits, 8 * 256 + 2 * 8 * 8 * 8);
    EXPECT_EQ(sps.MaxFrameNum, 16);
    EXPECT_EQ(sps.MaxPicOrderCntLsb, 64);
    EXPECT_EQ(sps.PicWidthInMbs, 11);
    EXPECT_EQ(sps.PicWidthInSamplesL, 176);
    EXPECT_EQ(sps.PicWidthInSamplesC, 88);
    EXPECT_EQ(sps.PicHeightInMapUnits, 9);
    EXPECT_EQ(sps.PicSizeInMapUnits, 99);
    EXPECT_EQ(sps.FrameHeightInMbs, 9);
    EXPECT_EQ(sps.mb_adaptive_frame_field_flag, 0);
}

CSPS HighSet(std::uint32_t chromaFormat, std::uint32_t separatePlanes, std::uint32_t depth) {
    BitWriter bits = SpsHead(100);
    bits.Ue(0).Ue(chromaFormat);
    if (chromaFormat == 3) {
        bits.Ue(separatePlanes);
    }
    bits.Ue(depth).Ue(depth).Ue(0).Ue(0);
    WritePlainTail(bits);
    return CSPS(bits.View());
}

TEST(CSPS, DerivesTheSizesOfEachChromaFormat) {
    struct Row {
        std::uint32_t format, separate;
        std::int32_t arrayType, subWidth, subHeight, mbWidth, mbHeight;
    };
    for (const Row& row :
         {Row{0, 0, 0, -1, -1, 0, 0}, Row{1, 0, 1, 2, 2, 8, 8}, Row{2, 0, 2, 2, 1, 8, 16},
          Row{3, 0, 3, 1, 1, 16, 16}, Row{3, 1, 0, -1, -1, 0, 0}, Row{3, 2, -1, -1, -1, 0, 0}}) {
        const CSPS sps = HighSet(row.format, row.separate, 0);
        EXPECT_EQ(sps.ChromaArrayType, row.arrayType) << row.format << row.separate;
        EXPECT_EQ(sps.SubWidthC, row.subWidth) << row.format << row.separate;
        EXPECT_EQ(sps.SubHeightC, row.subHeight) << row.format << row.separate;
        EXPECT_EQ(sps.MbWidthC, row.mbWidth) << row.format << row.separate;
        EXPECT_EQ(sps.MbHeightC, row.mbHeight) << row.format << row.separate;
    }
}

TEST(CSPS, DerivesBitDepthsUpToFourteen) {
    const CSPS six = HighSet(1, 0, 6);
    EXPECT_EQ(six.BitDepthY, 14);
    EXPECT_EQ(six.QpBdOffsetY, 36);
    EXPECT_EQ(six.BitDepthC, 14);
    EXPECT_EQ(six.QpBdOffsetC, 36);
    EXPECT_EQ(six.RawMbBits, 14 * 256 + 2 * 8 * 8 * 14);
    const CSPS seven = HighSet(1, 0, 7);
    EXPECT_EQ(seven.BitDepthY, -1);
    EXPECT_EQ(seven.QpBdOffsetC, -1);
}

TEST(CSPS, HasNoChromaInProfile183) {
    BitWriter bits = SpsHead(183);
    bits.Ue(0);
    WritePlainTail(bits);
    const CSPS sps(bits.View());
    EXPECT_EQ(sps.chroma_format_idc, 0);
    EXPECT_EQ(sps.ChromaArrayType, 0);
    EXPECT_EQ(sps.MbHeightC, 0);
}

TEST(CSPS, DerivesNoMaximumFromAnExponentOutsideTheStandard) {
    for (const std::uint32_t exponent : {12U, 13U}) {
        BitWriter bits = SpsHead(66);
        bits.Ue(0).Ue(exponent).Ue(0).Ue(exponent).Ue(1).Bit(0).Ue(0).Ue(0).Bits(0b1101, 4);
        const CSPS sps(bits.View());
        EXPECT_EQ(sps.MaxFrameNum, exponent == 12 ? 65536 : -1);
        EXPECT_EQ(sps.MaxPicOrderCntLsb, exponent == 12 ? 65536 : -1);
    }
}

TEST(CSPS, ReadsAnInterlacedCroppedSet) {
    BitWriter bits = SpsHead(77);
    bits.Ue(0).Ue(5).Ue(2).Ue(1).Bit(1).Ue(119).Ue(33);
    bits.Bit(0).Bit(1).Bit(1);                   // frame_mbs_only, mb_adaptive, direct
    bits.Bit(1).Ue(1).Ue(2).Ue(3).Ue(4).Bit(1);  // cropping, VUI
    const CSPS sps(bits.View());
    EXPECT_EQ(sps.pic_order_cnt_type, 2);
    EXPECT_EQ(sps.log2_max_pic_order_cnt_lsb_minus4, -1);
    EXPECT_EQ(sps.MaxPicOrderCntLsb, -1);
    EXPECT_EQ(sps.gaps_in_frame_num_value_allowed_flag, 1);
    EXPECT_EQ(sps.mb_adaptive_frame_field_flag, 1);
    EXPECT_EQ(sps.frame_crop_left_offset, 1);
    EXPECT_EQ(sps.frame_crop_right_offset, 2);
    EXPECT_EQ(sps.frame_crop_top_offset, 3);
    EXPECT_EQ(sps.frame_crop_bottom_offset, 4);
    EXPECT_EQ(sps.vui_parameters_present_flag, 1);
    EXPECT_EQ(sps.FrameHeightInMbs, 68);
}

TEST(CSPS, DoesNotFollowThePictureOrderOfTypeOne) {
    // Behind the type the standard has delta_pic_order_always_zero_flag; here a count stands there.
    BitWriter bits = SpsHead(66);
    bits.Ue(0).Ue(0).Ue(1).Ue(6).Bit(0).Ue(10).Ue(8).Bits(0b1100, 4);
    const CSPS sps(bits.View());
    EXPECT_EQ(sps.pic_order_cnt_type, 1);
    EXPECT_EQ(sps.max_num_ref_frames, 6);
    EXPECT_EQ(sps.pic_width_in_mbs_minus1, 10);
}

TEST(CSPS, ReadsZerosBehindTheEnd) {
    const CSPS empty{ByteView{}};
    EXPECT_EQ(empty.profile_idc, 0);
    EXPECT_EQ(empty.seq_parameter_set_id, 0);
    EXPECT_EQ(empty.frame_mbs_only_flag, 0);
    EXPECT_EQ(empty.FrameHeightInMbs, 2);

    BitWriter bits = SpsHead(66);
    bits.Ue(0);
    WritePlainTail(bits);
    ByteVector cut = bits.View();
    cut.resize(5);
    const CSPS sps(cut);
    EXPECT_EQ(sps.seq_parameter_set_id, 0);
    EXPECT_EQ(sps.pic_width_in_mbs_minus1, 0);
}

TEST(CSPS, TakesBytesAsTheyStandWithEmulationPreventionInThem) {
    // 24 zero bits, as 00 00 03 00 in a stream: the 3 is read as data.
    ByteVector unit{0x67, 66, 0, 30, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x00, 0x00};
    // 22 zeros, a 1, and 22 bits of which the first is 1.
    EXPECT_EQ(CSPS(unit).seq_parameter_set_id, (1 << 22) - 1 + (1 << 21));
}

TEST(CSPS, WrapsValuesThatAreTooLarge) {
    BitWriter bits = SpsHead(66);
    bits.Ue(0xFFFFFFFE)
        .Ue(0)
        .Ue(0)
        .Ue(0)
        .Ue(0)
        .Bit(0)
        .Ue(0x7FFFFFFF)
        .Ue(0x7FFFFFFF)
        .Bits(0b1100, 4);
    const CSPS sps(bits.View());
    EXPECT_EQ(sps.seq_parameter_set_id, -2);
    EXPECT_EQ(sps.PicWidthInMbs, INT32_MIN);
    EXPECT_EQ(sps.PicWidthInSamplesL, 0);
}

TEST(CSPS, ReadsAnyBytes) {
    test::Random random(1);
    for (int i = 0; i < 5000; ++i) {
        const CSPS sps(random.Bytes(random.Below(64)));
        EXPECT_NE(sps.separate_colour_plane_flag, -1);
        EXPECT_NE(sps.mb_adaptive_frame_field_flag, -1);
    }
}

}  // namespace
}  // namespace clipfix
