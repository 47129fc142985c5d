#include "codec/h265_slice_header.h"

#include <chrono>
#include <gtest/gtest.h>

#include "codec/reference_sets.h"
#include "support/bit_writer.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::BitWriter;
using test::ReferenceSets;
using test::UnitOfType;

constexpr std::int32_t kTrail = 1;
constexpr std::int32_t kIdr = 19;

class SliceHeader265 : public testing::Test {
  protected:
    bool Parse(BitWriter bits, std::int32_t type = kTrail) {
        return slice_.Parse(bits.Bits(0, 64).View(), UnitOfType(type), sets_.sps265, sets_.pps265);
    }

    ReferenceSets sets_;
    SliceHeader_265 slice_;
};

TEST_F(SliceHeader265, ReadsTheFirstSegmentOfAPicture) {
    ASSERT_TRUE(Parse(BitWriter().Bit(1).Ue(3)));
    EXPECT_EQ(slice_.first_slice_segment_in_pic_flag, 1);
    EXPECT_EQ(slice_.no_output_of_prior_pics_flag, -1);
    EXPECT_EQ(slice_.slice_pic_parameter_set_id, 3);
    EXPECT_EQ(slice_.dependent_slice_segment_flag, -1);
    EXPECT_EQ(slice_.slice_segment_address, -1);
    EXPECT_EQ(slice_.num_entry_point_offsets, -1);
    EXPECT_EQ(slice_.slice_segment_header_extension_length, -1);
}

TEST_F(SliceHeader265, ReadsTheOutputFlagOfTypesSixteenToTwentyThree) {
    for (std::int32_t type = 0; type < 32; ++type) {
        ASSERT_TRUE(Parse(BitWriter().Bit(1).Bit(1).Ue(3), type));
        const bool hasFlag = type >= 16 && type <= 23;
        EXPECT_EQ(slice_.no_output_of_prior_pics_flag, hasFlag ? 1 : -1) << type;
        EXPECT_EQ(slice_.slice_pic_parameter_set_id, hasFlag ? 3 : 0) << type;
    }
}

TEST_F(SliceHeader265, TakesIdsOfPictureSetsUpToSixtyThree) {
    EXPECT_TRUE(Parse(BitWriter().Bit(1).Ue(63)));
    EXPECT_FALSE(Parse(BitWriter().Bit(1).Ue(64)));
    EXPECT_FALSE(Parse(BitWriter().Bit(1).Ue(0x80000000)));  // below 0 as a signed number
}

TEST_F(SliceHeader265, PassesOverTheWholeBlockInTheFirstSegment) {
    sets_.pps265.dependent_slice_segments_enabled_flag = 1;
    ASSERT_TRUE(Parse(BitWriter().Bit(1).Ue(0).Ue(2)));
    EXPECT_EQ(slice_.dependent_slice_segment_flag, -1);
    EXPECT_EQ(slice_.slice_type, -1);
}

TEST_F(SliceHeader265, PassesOverTheWholeBlockInAStreamWithoutDependentSegments) {
    ASSERT_TRUE(Parse(BitWriter().Bit(0).Ue(0).Bits(77, 11).Ue(2)));
    EXPECT_EQ(slice_.slice_segment_address, 77);
    EXPECT_EQ(slice_.dependent_slice_segment_flag, -1);
    EXPECT_EQ(slice_.slice_type, -1);
}

TEST_F(SliceHeader265, ReadsTheAddressByTheNaturalLogarithm) {
    struct Row {
        std::int32_t blocks;
        unsigned bits;
    };
    // ln 32400 is 10.4: eleven bits, where the logarithm to base 2 asks for fifteen.
    for (const Row& row : {Row{32400, 11}, Row{2, 1}, Row{3, 2}, Row{7, 2}, Row{8, 3}, Row{20, 3},
                           Row{21, 4}, Row{8100, 9}, Row{8104, 10}, Row{INT32_MAX, 22}}) {
        sets_.sps265.picSizeInMinCbs = row.blocks;
        ASSERT_TRUE(Parse(BitWriter().Bit(0).Ue(0).Bits(0xFFFFFFFF, 32)));
        EXPECT_EQ(slice_.slice_segment_address, (1 << row.bits) - 1) << row.blocks;
    }
}

TEST_F(SliceHeader265, ComputesTheLogarithmInSinglePrecision) {
    // The natural logarithm of 8886111 is a little above 16, and rounds to 16 in single precision.
    sets_.sps265.picSizeInMinCbs = 8886111;
    ASSERT_TRUE(Parse(BitWriter().Bit(0).Ue(0).Bits(0xFFFFFFFF, 32)));
    EXPECT_EQ(slice_.slice_segment_address, 0xFFFF);
}

TEST_F(SliceHeader265, ReadsNoAddressWhereThereIsOneBlockOrNone) {
    for (const std::int32_t blocks : {1, 0, -1, INT32_MIN}) {
        sets_.sps265.picSizeInMinCbs = blocks;
        ASSERT_TRUE(Parse(BitWriter().Bit(0).Ue(0).Bits(0xFF, 8)));
        EXPECT_EQ(slice_.slice_segment_address, 0) << blocks;
    }
}

TEST_F(SliceHeader265, ComesToTheEntryPointsAtOnceInADependentSegment) {
    sets_.pps265.dependent_slice_segments_enabled_flag = 1;
    sets_.pps265.entropy_coding_sync_enabled_flag = 1;
    ASSERT_TRUE(Parse(BitWriter().Bit(0).Ue(0).Bit(1).Bits(5, 11).Ue(9).Ue(15)));
    EXPECT_EQ(slice_.dependent_slice_segment_flag, 1);
    EXPECT_EQ(slice_.slice_segment_address, 5);
    EXPECT_EQ(slice_.slice_type, -1);
    EXPECT_EQ(slice_.num_entry_point_offsets, 9);
    EXPECT_EQ(slice_.offset_len_minus1, 15);
}

// A later segment that is no dependent one, of a stream that has them: here the block is read.
class SliceHeader265Block : public SliceHeader265 {
  protected:
    SliceHeader265Block() {
        sets_.pps265.dependent_slice_segments_enabled_flag = 1;
        sets_.sps265.picSizeInMinCbs = 1;  // no address
    }

    static BitWriter Start() { return BitWriter().Bit(0).Ue(0).Bit(0); }
};

TEST_F(SliceHeader265Block, ReadsAnIntraSlice) {
    ASSERT_TRUE(Parse(Start().Ue(2).Bits(0xA5, 8).Bit(1).Se(-5)));
    EXPECT_EQ(slice_.dependent_slice_segment_flag, 0);
    EXPECT_EQ(slice_.slice_type, 2);
    EXPECT_EQ(slice_.pic_output_flag, -1);
    EXPECT_EQ(slice_.colour_plane_id, -1);
    EXPECT_EQ(slice_.slice_pic_order_cnt_lsb, 0xA5);
    EXPECT_EQ(slice_.short_term_ref_pic_set_sps_flag, 1);
    EXPECT_EQ(slice_.short_term_ref_pic_set_idx, -1);
    EXPECT_EQ(slice_.num_long_term_pics, -1);
    EXPECT_EQ(slice_.slice_temporal_mvp_enabled_flag, -1);
    EXPECT_EQ(slice_.slice_sao_luma_flag, -1);
    EXPECT_EQ(slice_.num_ref_idx_active_override_flag, -1);
    EXPECT_EQ(slice_.slice_qp_delta, -5);
    EXPECT_EQ(slice_.slice_cb_qp_offset, -1);
    EXPECT_EQ(slice_.deblocking_filter_override_flag, -1);
    EXPECT_EQ(slice_.slice_loop_filter_across_slices_enabled_flag, -1);
}

TEST_F(SliceHeader265Block, ReadsNoPictureOrderOfAnIdrSlice) {
    for (const std::int32_t type : {19, 20}) {
        BitWriter bits = BitWriter().Bit(0).Bit(1).Ue(0).Bit(0);
        ASSERT_TRUE(Parse(bits.Ue(2).Se(-5), type));
        EXPECT_EQ(slice_.slice_pic_order_cnt_lsb, -1);
        EXPECT_EQ(slice_.short_term_ref_pic_set_sps_flag, -1);
        EXPECT_EQ(slice_.slice_qp_delta, -5);
    }
    BitWriter bits = BitWriter().Bit(0).Bit(1).Ue(0).Bit(0);
    ASSERT_TRUE(Parse(bits.Ue(2).Bits(0xA5, 8).Bit(0).Se(-5), 21));
    EXPECT_EQ(slice_.slice_pic_order_cnt_lsb, 0xA5);
    EXPECT_EQ(slice_.slice_qp_delta, -5);
}

TEST_F(SliceHeader265Block, PassesOverExtraBitsAndReadsOutputFlagAndColourPlane) {
    sets_.pps265.num_extra_slice_header_bits = 3;
    sets_.pps265.output_flag_present_flag = 1;
    sets_.sps265.separate_colour_plane_flag = 1;
    ASSERT_TRUE(Parse(Start().Bits(7, 3).Ue(2).Bit(1).Bits(2, 2).Bits(0xA5, 8).Bit(0).Se(4)));
    EXPECT_EQ(slice_.slice_type, 2);
    EXPECT_EQ(slice_.pic_output_flag, 1);
    EXPECT_EQ(slice_.colour_plane_id, 2);
    EXPECT_EQ(slice_.slice_qp_delta, 4);
}

TEST_F(SliceHeader265Block, ReadsTheIndexOfTheSetOfPicturesWhateverTheFlagSays) {
    sets_.sps265.num_short_term_ref_pic_sets = 8;  // ln 8 is 2.08: three bits
    for (const unsigned flag : {0U, 1U}) {
        ASSERT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(flag).Bits(5, 3).Se(4)));
        EXPECT_EQ(slice_.short_term_ref_pic_set_sps_flag, static_cast<std::int32_t>(flag));
        EXPECT_EQ(slice_.short_term_ref_pic_set_idx, 5);
        EXPECT_EQ(slice_.slice_qp_delta, 4);
    }
    sets_.sps265.num_short_term_ref_pic_sets = 1;
    ASSERT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Se(4)));
    EXPECT_EQ(slice_.short_term_ref_pic_set_idx, -1);
    EXPECT_EQ(slice_.slice_qp_delta, 4);
}

TEST_F(SliceHeader265Block, ReadsLongTermPictures) {
    sets_.sps265.long_term_ref_pics_present_flag = 1;
    sets_.sps265.num_long_term_ref_pics_sps = 4;  // ln 4 is 1.39: two bits
    // One by index, and two by count: ln (4 + 4.0) is 2.08, so three bits, and a flag.
    ASSERT_TRUE(Parse(Start()
                          .Ue(2)
                          .Bits(1, 8)
                          .Bit(1)
                          .Ue(1)
                          .Ue(2)
                          .Bits(3, 2)
                          .Bit(0)
                          .Bits(7, 3)
                          .Bit(1)
                          .Bit(0)
                          .Bits(7, 3)
                          .Bit(1)
                          .Bit(1)
                          .Se(4)));
    EXPECT_EQ(slice_.num_long_term_sps, 1);
    EXPECT_EQ(slice_.num_long_term_pics, 2);
    EXPECT_EQ(slice_.delta_poc_msb_present_flag, 1);
    EXPECT_EQ(slice_.slice_qp_delta, 4);  // no cycle count follows, although the flag is 1
}

TEST_F(SliceHeader265Block, ReadsNoIndexWhereThereIsOneLongTermPicture) {
    sets_.sps265.long_term_ref_pics_present_flag = 1;
    sets_.sps265.num_long_term_ref_pics_sps = 1;
    ASSERT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Ue(0).Ue(1).Bits(7, 3).Bit(1).Bit(1).Se(4)));
    EXPECT_EQ(slice_.slice_qp_delta, 4);
}

TEST_F(SliceHeader265Block, RefusesAsManyLongTermPicturesAsTheSetHas) {
    sets_.sps265.long_term_ref_pics_present_flag = 1;
    sets_.sps265.num_long_term_ref_pics_sps = 4;
    const auto parse = [this](std::uint32_t fromSet, std::uint32_t more) {
        return Parse(Start().Ue(2).Bits(1, 8).Bit(1).Ue(fromSet).Ue(more));
    };
    EXPECT_TRUE(parse(3, 1));
    EXPECT_FALSE(parse(4, 0));
    EXPECT_FALSE(parse(5, 1));
    EXPECT_TRUE(parse(0, 0));
    // A sum that is not above 0 is not tested: the first is below 0.
    EXPECT_TRUE(parse(0x80000000, 1));
    EXPECT_FALSE(parse(0xFFFFFFFE, 3));  // -2 and 3
}

TEST_F(SliceHeader265Block, RefusesLongTermPicturesWhereTheirNumberWasNotRead) {
    sets_.sps265.long_term_ref_pics_present_flag = 1;
    sets_.sps265.num_long_term_ref_pics_sps = 0;
    EXPECT_FALSE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Ue(2)));
    EXPECT_EQ(slice_.num_long_term_sps, -1);
    // The sum of -1 and 1 is 0.
    EXPECT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Ue(1).Se(4)));
    EXPECT_EQ(slice_.slice_qp_delta, 4);
}

TEST_F(SliceHeader265Block, EndsTwoThousandMillionLongTermPicturesWithTheBytes) {
    sets_.sps265.long_term_ref_pics_present_flag = 1;
    sets_.sps265.num_long_term_ref_pics_sps = 4;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Ue(1).Ue(0x7FFFFFF0)));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(slice_.delta_poc_msb_present_flag, 0);
    EXPECT_EQ(slice_.slice_qp_delta, 0);
}

TEST_F(SliceHeader265Block, ReadsOffsetFlagsByTheChromaFormat) {
    sets_.sps265.sample_adaptive_offset_enabled_flag = 1;
    ASSERT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Bit(1).Bit(0).Se(4)));
    EXPECT_EQ(slice_.slice_sao_luma_flag, 1);
    EXPECT_EQ(slice_.slice_sao_chroma_flag, 0);
    EXPECT_EQ(slice_.slice_qp_delta, 4);
    sets_.sps265.chromaArrayType = 0;
    ASSERT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Bit(1).Se(4)));
    EXPECT_EQ(slice_.slice_sao_chroma_flag, -1);
    EXPECT_EQ(slice_.slice_qp_delta, 4);
}

TEST_F(SliceHeader265Block, ReadsInterPredictionOfTypeOne) {
    sets_.pps265.cabac_init_present_flag = 1;
    ASSERT_TRUE(Parse(Start().Ue(1).Bits(1, 8).Bit(1).Bit(1).Ue(2).Bit(1).Bit(0).Ue(3).Se(4)));
    EXPECT_EQ(slice_.slice_type, 1);
    EXPECT_EQ(slice_.num_ref_idx_active_override_flag, 1);
    EXPECT_EQ(slice_.num_ref_idx_l0_active_minus1, 2);
    EXPECT_EQ(slice_.num_ref_idx_l1_active_minus1, -1);  // its place is read as a single bit
    EXPECT_EQ(slice_.mvd_l1_zero_flag, -1);
    EXPECT_EQ(slice_.cabac_init_flag, 0);
    EXPECT_EQ(slice_.collocated_from_l0_flag, -1);
    EXPECT_EQ(slice_.five_minus_max_num_merge_cand, 3);
    EXPECT_EQ(slice_.use_integer_mv_flag, -1);
    EXPECT_EQ(slice_.slice_qp_delta, 4);
}

TEST_F(SliceHeader265Block, ReadsInterPredictionOfTypeZero) {
    sets_.sps265.motion_vector_resolution_control_idc = 2;
    ASSERT_TRUE(Parse(Start().Ue(0).Bits(1, 8).Bit(1).Bit(1).Ue(2).Bit(1).Ue(3).Bit(1).Se(4)));
    EXPECT_EQ(slice_.num_ref_idx_l0_active_minus1, 2);
    EXPECT_EQ(slice_.mvd_l1_zero_flag, 1);
    EXPECT_EQ(slice_.cabac_init_flag, -1);
    EXPECT_EQ(slice_.five_minus_max_num_merge_cand, 3);
    EXPECT_EQ(slice_.use_integer_mv_flag, 1);
    EXPECT_EQ(slice_.slice_qp_delta, 4);
    // Without the override flag there is no count.
    sets_.sps265.motion_vector_resolution_control_idc = 0;
    ASSERT_TRUE(Parse(Start().Ue(0).Bits(1, 8).Bit(1).Bit(0).Bit(0).Ue(3).Se(4)));
    EXPECT_EQ(slice_.num_ref_idx_l0_active_minus1, -1);
    EXPECT_EQ(slice_.slice_qp_delta, 4);
}

TEST_F(SliceHeader265Block, ReadsNoTemporalPredictionAsTheSetsFieldIsNeverRead) {
    sets_.sps265.sps_temporal_id_nesting_flag = 1;  // where the set keeps the bit
    ASSERT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Se(4)));
    EXPECT_EQ(slice_.slice_temporal_mvp_enabled_flag, -1);
    EXPECT_EQ(slice_.slice_qp_delta, 4);
}

TEST_F(SliceHeader265Block, ReadsOffsetsAndFilters) {
    sets_.pps265.pps_slice_chroma_qp_offsets_present_flag = 1;
    sets_.pps265.chroma_qp_offset_list_enabled_flag = 1;
    sets_.pps265.deblocking_filter_override_enabled_flag = 1;
    sets_.pps265.pps_loop_filter_across_slices_enabled_flag = 1;
    ASSERT_TRUE(Parse(
        Start().Ue(2).Bits(1, 8).Bit(1).Se(4).Se(-1).Se(-2).Bit(1).Bit(1).Bit(0).Se(5).Se(-6).Bit(
            1)));
    EXPECT_EQ(slice_.slice_cb_qp_offset, -1);
    EXPECT_EQ(slice_.slice_cr_qp_offset, -2);
    EXPECT_EQ(slice_.slice_act_y_qp_offset, -1);
    EXPECT_EQ(slice_.cu_chroma_qp_offset_enabled_flag, 1);
    EXPECT_EQ(slice_.deblocking_filter_override_flag, 1);
    EXPECT_EQ(slice_.slice_deblocking_filter_disabled_flag, 0);
    EXPECT_EQ(slice_.slice_beta_offset_div2, 5);
    EXPECT_EQ(slice_.slice_tc_offset_div2, -6);
    EXPECT_EQ(slice_.slice_loop_filter_across_slices_enabled_flag, 1);
}

TEST_F(SliceHeader265Block, ReadsTheLoopFilterFlagOnlyBehindAFilterThatIsOn) {
    sets_.pps265.deblocking_filter_override_enabled_flag = 1;
    sets_.pps265.pps_loop_filter_across_slices_enabled_flag = 1;
    // Disabled: no offsets and no flag.
    ASSERT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Se(4).Bit(1).Bit(1).Bit(1)));
    EXPECT_EQ(slice_.slice_deblocking_filter_disabled_flag, 1);
    EXPECT_EQ(slice_.slice_beta_offset_div2, -1);
    EXPECT_EQ(slice_.slice_loop_filter_across_slices_enabled_flag, -1);
    // Not overridden: the slice's own flag was not read.
    ASSERT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Se(4).Bit(0).Bit(1)));
    EXPECT_EQ(slice_.slice_deblocking_filter_disabled_flag, -1);
    EXPECT_EQ(slice_.slice_loop_filter_across_slices_enabled_flag, -1);
    // One of the offset flags will do, and the flag of the set has to be 1.
    sets_.sps265.sample_adaptive_offset_enabled_flag = 1;
    ASSERT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Bit(0).Bit(1).Se(4).Bit(0).Bit(1)));
    EXPECT_EQ(slice_.slice_loop_filter_across_slices_enabled_flag, 1);
    sets_.pps265.pps_loop_filter_across_slices_enabled_flag = 0;
    ASSERT_TRUE(Parse(Start().Ue(2).Bits(1, 8).Bit(1).Bit(0).Bit(1).Se(4).Bit(0).Bit(1)));
    EXPECT_EQ(slice_.slice_loop_filter_across_slices_enabled_flag, -1);
}

// ---- Entry points

struct EntryPointCase {
    std::int32_t tiles, wavefront, columnsMinus1, rowsMinus1, remainder;
    std::uint32_t limit;
};

class SliceHeader265EntryPoints : public SliceHeader265,
                                  public testing::WithParamInterface<EntryPointCase> {};

TEST_P(SliceHeader265EntryPoints, AreRefusedFromTheLimitOn) {
    const EntryPointCase& row = GetParam();
    sets_.pps265.tiles_enabled_flag = row.tiles;
    sets_.pps265.entropy_coding_sync_enabled_flag = row.wavefront;
    sets_.pps265.num_tile_columns_minus1 = row.columnsMinus1;
    sets_.pps265.num_tile_rows_minus1 = row.rowsMinus1;
    sets_.sps265.picHeightRemainder = row.remainder;
    if (row.limit > 0) {
        EXPECT_TRUE(Parse(BitWriter().Bit(1).Ue(0).Ue(row.limit - 1)));
        EXPECT_EQ(slice_.num_entry_point_offsets, static_cast<std::int32_t>(row.limit) - 1);
    }
    EXPECT_FALSE(Parse(BitWriter().Bit(1).Ue(0).Ue(row.limit)));
    EXPECT_FALSE(Parse(BitWriter().Bit(1).Ue(0).Ue(row.limit + 1)));
    EXPECT_FALSE(Parse(BitWriter().Bit(1).Ue(0).Ue(0x80000000)));
}

INSTANTIATE_TEST_SUITE_P(
    Limits, SliceHeader265EntryPoints,
    testing::Values(EntryPointCase{0, 1, -1, -1, 56, 56}, EntryPointCase{0, 1, -1, -1, 0, 0},
                    EntryPointCase{1, 0, 3, 1, 56, 7}, EntryPointCase{1, 0, 0, 0, 56, 0},
                    EntryPointCase{1, 1, 3, 1, 56, 4 * 56 - 1}, EntryPointCase{1, 1, 3, 1, 0, 0}));

TEST_F(SliceHeader265, ReadsTheLengthOfOffsetsOnlyWhereThereAreSome) {
    sets_.pps265.entropy_coding_sync_enabled_flag = 1;
    sets_.pps265.slice_segment_header_extension_present_flag = 1;
    ASSERT_TRUE(Parse(BitWriter().Bit(1).Ue(0).Ue(0).Ue(7)));
    EXPECT_EQ(slice_.offset_len_minus1, -1);
    EXPECT_EQ(slice_.slice_segment_header_extension_length, 7);
    // The offsets themselves are not read: what stands behind their length is the extension's.
    ASSERT_TRUE(Parse(BitWriter().Bit(1).Ue(0).Ue(2).Ue(9).Ue(7)));
    EXPECT_EQ(slice_.offset_len_minus1, 9);
    EXPECT_EQ(slice_.slice_segment_header_extension_length, 7);
}

TEST_F(SliceHeader265, TakesAnExtensionOfTwoHundredAndFiftySixBytes) {
    sets_.pps265.slice_segment_header_extension_present_flag = 1;
    EXPECT_TRUE(Parse(BitWriter().Bit(1).Ue(0).Ue(256)));
    EXPECT_FALSE(Parse(BitWriter().Bit(1).Ue(0).Ue(257)));
    EXPECT_TRUE(Parse(BitWriter().Bit(1).Ue(0).Ue(0x80000000)));  // below 0: no bytes
    sets_.pps265.slice_segment_header_extension_present_flag = 0;
    EXPECT_TRUE(Parse(BitWriter().Bit(1).Ue(0).Ue(257)));
}

TEST_F(SliceHeader265, ReadsNoBytesAsALaterSegment) {
    EXPECT_TRUE(slice_.Parse({}, UnitOfType(kIdr), sets_.sps265, sets_.pps265));
    EXPECT_EQ(slice_.first_slice_segment_in_pic_flag, 0);
    EXPECT_EQ(slice_.slice_pic_parameter_set_id, 0);
}

TEST_F(SliceHeader265, ReadsAnyBytesUnderAnySets) {
    test::Random random(9);
    for (int i = 0; i < 5000; ++i) {
        SPS_265 sps;
        static_cast<void>(sps.Parse(random.Bytes(random.Below(60)), 1, 1));
        PPS_265 pps;
        static_cast<void>(pps.Parse(random.Bytes(random.Below(40)), &sps));
        const auto type = static_cast<std::int32_t>(random.Below(22));
        const bool stands =
            slice_.Parse(random.Bytes(random.Below(50)), UnitOfType(type), sps, pps);
        EXPECT_TRUE(!stands || (slice_.slice_pic_parameter_set_id >= 0 &&
                                slice_.slice_pic_parameter_set_id <= 63));
        EXPECT_TRUE(!stands || slice_.slice_segment_header_extension_length <= 256);
    }
}

}  // namespace
}  // namespace clipfix
