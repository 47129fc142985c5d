#include "codec/h264_slice_header.h"

#include <gtest/gtest.h>

#include "codec/reference_sets.h"
#include "support/bit_writer.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::BitWriter;
using test::ReferenceSets;
using test::UnitOfType;

// Bytes behind the header, so that the reader does not come to the end.
constexpr unsigned kSpare = 64;

ByteVector Padded(BitWriter bits) {
    return bits.Bits(0, kSpare).View();
}

TEST(CSliceHeader, ReadsAPictureOfFrames) {
    const ReferenceSets sets;
    const ByteVector bytes = Padded(BitWriter().Ue(396).Ue(5).Ue(0).Bits(9, 4).Bits(33, 6).Se(-4));
    CSliceHeader slice;
    ASSERT_TRUE(slice.Parse(bytes, UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.first_mb_in_slice, 396);
    EXPECT_EQ(slice.slice_type, 5);
    EXPECT_EQ(slice.pic_parameter_set_id, 0);
    EXPECT_EQ(slice.frame_num, 9);
    EXPECT_EQ(slice.field_pic_flag, 0);
    EXPECT_EQ(slice.bottom_field_flag, 0);
    EXPECT_EQ(slice.colour_plane_id, -1);
    EXPECT_EQ(slice.idr_pic_id, -1);
    EXPECT_EQ(slice.pic_order_cnt_lsb, 33);
    EXPECT_EQ(slice.delta_pic_order_cnt_bottom, -1);
    EXPECT_EQ(slice.slice_qp_delta, -4);
    EXPECT_EQ(slice.no_output_of_prior_pics_flag, -1);
    EXPECT_EQ(slice.long_term_reference_flag, -1);
}

TEST(CSliceHeader, ReadsAnIdrPictureWithItsTwoFlagsBeforeTheLastValue) {
    const ReferenceSets sets;
    const ByteVector bytes =
        Padded(BitWriter().Ue(0).Ue(7).Ue(0).Bits(0, 4).Ue(3).Bits(0, 6).Bit(1).Bit(0).Se(2));
    CSliceHeader slice;
    ASSERT_TRUE(slice.Parse(bytes, UnitOfType(5), sets.sps, sets.pps));
    EXPECT_EQ(slice.idr_pic_id, 3);
    EXPECT_EQ(slice.no_output_of_prior_pics_flag, 1);
    EXPECT_EQ(slice.long_term_reference_flag, 0);
    EXPECT_EQ(slice.slice_qp_delta, 2);
}

TEST(CSliceHeader, ReadsTheTwoFlagsOnlyOfAnIdrPictureThatIsAReference) {
    const ReferenceSets sets;
    const ByteVector bytes =
        Padded(BitWriter().Ue(0).Ue(7).Ue(0).Bits(0, 4).Ue(3).Bits(0, 6).Se(2));
    CSliceHeader slice;
    ASSERT_TRUE(slice.Parse(bytes, UnitOfType(5, 0), sets.sps, sets.pps));
    EXPECT_EQ(slice.no_output_of_prior_pics_flag, -1);
    EXPECT_EQ(slice.slice_qp_delta, 2);
}

TEST(CSliceHeader, RefusesOtherUnitsThanSlices) {
    const ReferenceSets sets;
    const ByteVector bytes = Padded(BitWriter().Ue(0).Ue(2).Ue(0));
    CSliceHeader slice;
    for (const std::int32_t type : {0, 2, 3, 4, 6, 7, 19, 20}) {
        EXPECT_FALSE(slice.Parse(bytes, UnitOfType(type), sets.sps, sets.pps)) << type;
    }
    EXPECT_TRUE(slice.Parse(bytes, UnitOfType(1), sets.sps, sets.pps));
    EXPECT_TRUE(slice.Parse(bytes, UnitOfType(5), sets.sps, sets.pps));
}

TEST(CSliceHeader, TakesSliceTypesZeroToNine) {
    const ReferenceSets sets;
    CSliceHeader slice;
    for (std::uint32_t type = 0; type < 10; ++type) {
        EXPECT_TRUE(
            slice.Parse(Padded(BitWriter().Ue(0).Ue(type)), UnitOfType(1), sets.sps, sets.pps));
    }
    EXPECT_FALSE(slice.Parse(Padded(BitWriter().Ue(0).Ue(10)), UnitOfType(1), sets.sps, sets.pps));
    // Above the largest signed number, and so below 0.
    EXPECT_FALSE(
        slice.Parse(Padded(BitWriter().Ue(0).Ue(0x80000001)), UnitOfType(1), sets.sps, sets.pps));
}

TEST(CSliceHeader, TakesOnlyIntraSlicesInAnIdrPicture) {
    const ReferenceSets sets;
    CSliceHeader slice;
    for (std::uint32_t type = 0; type < 10; ++type) {
        const bool isIntra = type == 2 || type == 4 || type == 7 || type == 9;
        EXPECT_EQ(
            slice.Parse(Padded(BitWriter().Ue(0).Ue(type)), UnitOfType(5), sets.sps, sets.pps),
            isIntra)
            << type;
    }
}

TEST(CSliceHeader, DoesNotCompareTheIdOfItsPictureParameterSet) {
    ReferenceSets sets;
    sets.pps.pic_parameter_set_id = 0;
    CSliceHeader slice;
    ASSERT_TRUE(slice.Parse(Padded(BitWriter().Ue(0).Ue(0).Ue(77).Bits(5, 4)), UnitOfType(1),
                            sets.sps, sets.pps));
    EXPECT_EQ(slice.pic_parameter_set_id, 77);
    EXPECT_EQ(slice.frame_num, 5);
}

TEST(CSliceHeader, ReadsSixteenBitsOfFrameNumberAtTheLargestExponent) {
    ReferenceSets sets;
    sets.sps.log2_max_frame_num_minus4 = 12;
    CSliceHeader slice;
    ASSERT_TRUE(slice.Parse(Padded(BitWriter().Ue(0).Ue(0).Ue(0).Bits(0xABCD, 16)), UnitOfType(1),
                            sets.sps, sets.pps));
    EXPECT_EQ(slice.frame_num, 0xABCD);
}

TEST(CSliceHeader, ReadsNoFrameNumberWhereItsLengthWrapsBelowZero) {
    ReferenceSets sets;
    sets.sps.log2_max_frame_num_minus4 = INT32_MAX;
    CSliceHeader slice;
    ASSERT_TRUE(slice.Parse(Padded(BitWriter().Ue(0).Ue(0).Ue(0).Bits(0xFF, 8)), UnitOfType(1),
                            sets.sps, sets.pps));
    EXPECT_EQ(slice.frame_num, 0);
    EXPECT_EQ(slice.pic_order_cnt_lsb, 0b111111);
}

TEST(CSliceHeader, ReadsTheColourPlaneBeforeTheFrameNumber) {
    ReferenceSets sets;
    const ByteVector bytes = Padded(BitWriter().Ue(0).Ue(0).Ue(0).Bits(2, 2).Bits(5, 4));
    CSliceHeader slice;
    sets.sps.separate_colour_plane_flag = 7;  // a flag that was read as a code
    ASSERT_TRUE(slice.Parse(bytes, UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.colour_plane_id, 2);
    EXPECT_EQ(slice.frame_num, 5);
    for (const std::int32_t flag : {0, -1}) {
        sets.sps.separate_colour_plane_flag = flag;
        ASSERT_TRUE(slice.Parse(bytes, UnitOfType(1), sets.sps, sets.pps));
        EXPECT_EQ(slice.colour_plane_id, -1);
        EXPECT_EQ(slice.frame_num, 0b1001);
    }
}

TEST(CSliceHeader, ReadsFieldsOfAnInterlacedStream) {
    ReferenceSets sets;
    sets.sps.frame_mbs_only_flag = 0;
    sets.pps.bottom_field_pic_order_in_frame_present_flag = 1;
    CSliceHeader field;
    ASSERT_TRUE(
        field.Parse(Padded(BitWriter().Ue(0).Ue(0).Ue(0).Bits(3, 4).Bit(1).Bit(1).Bits(9, 6).Se(4)),
                    UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(field.field_pic_flag, 1);
    EXPECT_EQ(field.bottom_field_flag, 1);
    EXPECT_EQ(field.pic_order_cnt_lsb, 9);
    EXPECT_EQ(field.delta_pic_order_cnt_bottom, -1);
    EXPECT_EQ(field.slice_qp_delta, 4);
    EXPECT_EQ(field.PicHeightInMbs, 34);
    EXPECT_EQ(field.MaxPicNum, 32);
    EXPECT_EQ(field.CurrPicNum, 7);

    CSliceHeader frame;
    ASSERT_TRUE(
        frame.Parse(Padded(BitWriter().Ue(0).Ue(0).Ue(0).Bits(3, 4).Bit(0).Bits(9, 6).Se(-1).Se(4)),
                    UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(frame.field_pic_flag, 0);
    EXPECT_EQ(frame.bottom_field_flag, 0);
    EXPECT_EQ(frame.delta_pic_order_cnt_bottom, -1);
    EXPECT_EQ(frame.slice_qp_delta, 4);
    EXPECT_EQ(frame.MaxPicNum, 16);
    EXPECT_EQ(frame.CurrPicNum, 3);
}

TEST(CSliceHeader, ReadsNoDeltaOfTheBottomFieldInAStreamOfFramesOnly) {
    // The flag was not read and holds -1, not 0, when it is tested.
    ReferenceSets sets;
    sets.pps.bottom_field_pic_order_in_frame_present_flag = 1;
    CSliceHeader slice;
    ASSERT_TRUE(slice.Parse(Padded(BitWriter().Ue(0).Ue(0).Ue(0).Bits(3, 4).Bits(9, 6).Se(4)),
                            UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.delta_pic_order_cnt_bottom, -1);
    EXPECT_EQ(slice.slice_qp_delta, 4);
    EXPECT_EQ(slice.field_pic_flag, 0);
}

TEST(CSliceHeader, ReadsNoPictureOrderOfAnotherType) {
    ReferenceSets sets;
    sets.sps.pic_order_cnt_type = 2;
    CSliceHeader slice;
    ASSERT_TRUE(slice.Parse(Padded(BitWriter().Ue(0).Ue(0).Ue(0).Bits(3, 4).Se(-7)), UnitOfType(1),
                            sets.sps, sets.pps));
    EXPECT_EQ(slice.pic_order_cnt_lsb, -1);
    EXPECT_EQ(slice.slice_qp_delta, -7);
}

TEST(CSliceHeader, DerivesSizesFromTheReference) {
    ReferenceSets sets;
    CSliceHeader slice;
    const ByteVector bytes = Padded(BitWriter().Ue(0).Ue(0).Ue(0).Bits(3, 4).Bits(9, 6).Se(0));
    ASSERT_TRUE(slice.Parse(bytes, UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.MbaffFrameFlag, 0);
    EXPECT_EQ(slice.PicHeightInMbs, 68);
    EXPECT_EQ(slice.PicHeightInSamplesL, 1088);
    EXPECT_EQ(slice.PicHeightInSamplesC, 544);
    EXPECT_EQ(slice.PicSizeInMbs, 8160);
    EXPECT_EQ(slice.MaxPicNum, 16);
    EXPECT_EQ(slice.CurrPicNum, 3);
}

TEST(CSliceHeader, DerivesAdaptiveFramesFromTheFlagOfSeparatePlanes) {
    ReferenceSets sets;
    sets.sps.separate_colour_plane_flag = 1;
    sets.sps.mb_adaptive_frame_field_flag = 0;
    CSliceHeader slice;
    const ByteVector bytes = Padded(BitWriter().Ue(0).Ue(0).Ue(0).Bits(0, 2).Bits(3, 4));
    ASSERT_TRUE(slice.Parse(bytes, UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.MbaffFrameFlag, 1);
}

TEST(CSliceHeader, StopsAndStandsWhereTheBytesEndWithTheFrameNumber) {
    const ReferenceSets sets;
    CSliceHeader slice;
    // 1 00110 1 and nine bits: 16 bits, so that the reader stands at the end.
    ReferenceSets wide;
    wide.sps.log2_max_frame_num_minus4 = 5;
    const ByteVector bytes = BitWriter().Ue(0).Ue(5).Ue(0).Bits(0x155, 9).View();
    ASSERT_EQ(bytes.size(), 2U);
    ASSERT_TRUE(slice.Parse(bytes, UnitOfType(1), wide.sps, wide.pps));
    EXPECT_EQ(slice.frame_num, 0x155);
    EXPECT_EQ(slice.field_pic_flag, -1);
    EXPECT_EQ(slice.slice_qp_delta, -1);
    EXPECT_EQ(slice.PicHeightInMbs, -1);

    // One byte more, and the rest is read.
    ByteVector more = bytes;
    more.push_back(0);
    ASSERT_TRUE(slice.Parse(more, UnitOfType(1), wide.sps, wide.pps));
    EXPECT_EQ(slice.field_pic_flag, 0);
    EXPECT_EQ(slice.PicHeightInMbs, 68);
}

TEST(CSliceHeader, ReadsAFrameNumberThatReachesPastTheEndWithZeros) {
    ReferenceSets sets;
    sets.sps.log2_max_frame_num_minus4 = 12;
    const ByteVector bytes = BitWriter().Ue(0).Ue(5).Ue(0).Bit(1).View();
    ASSERT_EQ(bytes.size(), 1U);
    CSliceHeader slice;
    ASSERT_TRUE(slice.Parse(bytes, UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.frame_num, 0x8000);
    EXPECT_EQ(slice.field_pic_flag, -1);
}

TEST(CSliceHeader, KeepsTheValueSoFarWhereACodeEndsWithTheBytes) {
    const ReferenceSets sets;
    CSliceHeader slice;
    // 010 for first_mb_in_slice, 0001 and one of the three bits of slice_type: 0.
    const ByteVector bytes{0b01000010};
    ASSERT_TRUE(slice.Parse(bytes, UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.first_mb_in_slice, 1);
    EXPECT_EQ(slice.slice_type, 7);
    // The same with a 1, which counts four: 7 + 4 is no type.
    const ByteVector four{0b01000011};
    EXPECT_FALSE(slice.Parse(four, UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.slice_type, 11);
    // Cut inside the code: 0000001 and none of its six bits.
    const ByteVector cut{0b10000001};
    EXPECT_FALSE(slice.Parse(cut, UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.slice_type, 63);
    // first_mb_in_slice takes all: 2 to the power of 15 less 1, and the type is 0.
    const ByteVector long1{0x00, 0x01};
    ASSERT_TRUE(slice.Parse(long1, UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.first_mb_in_slice, 32767);
    EXPECT_EQ(slice.slice_type, 0);
    EXPECT_EQ(slice.frame_num, 0);
}

TEST(CSliceHeader, ReadsNoBytesAsASliceOfTypeZero) {
    const ReferenceSets sets;
    CSliceHeader slice;
    EXPECT_TRUE(slice.Parse({}, UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.first_mb_in_slice, 0);
    EXPECT_EQ(slice.slice_type, 0);
    EXPECT_FALSE(slice.Parse({}, UnitOfType(5), sets.sps, sets.pps));
}

TEST(CSliceHeader, StartsAfreshWithEachParse) {
    const ReferenceSets sets;
    CSliceHeader slice;
    ASSERT_TRUE(
        slice.Parse(Padded(BitWriter().Ue(1).Ue(2).Ue(0)), UnitOfType(5), sets.sps, sets.pps));
    EXPECT_NE(slice.idr_pic_id, -1);
    EXPECT_FALSE(slice.Parse(Padded(BitWriter().Ue(1).Ue(10)), UnitOfType(1), sets.sps, sets.pps));
    EXPECT_EQ(slice.idr_pic_id, -1);
    EXPECT_EQ(slice.frame_num, -1);
}

TEST(CSliceHeader, ReadsAnyBytesUnderAnySets) {
    test::Random random(2);
    for (int i = 0; i < 3000; ++i) {
        const CSPS sps(random.Bytes(random.Below(40)));
        const CPPS pps(random.Bytes(random.Below(20)));
        CSliceHeader slice;
        const ByteVector bytes = random.Bytes(random.Below(50));
        const std::int32_t type = random.OneIn(2) ? 1 : 5;
        const bool stands = slice.Parse(bytes, UnitOfType(type), sps, pps);
        EXPECT_EQ(stands, slice.slice_type >= 0 && slice.slice_type <= 9 &&
                              (type == 1 || slice.slice_type == 2 || slice.slice_type == 4 ||
                               slice.slice_type == 7 || slice.slice_type == 9));
    }
}

}  // namespace
}  // namespace clipfix
