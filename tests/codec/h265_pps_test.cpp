#include "codec/h265_pps.h"

#include <chrono>
#include <gtest/gtest.h>

#include "codec/h265_sps.h"
#include "support/bit_writer.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::BitWriter;

// Everything in front of `tiles_enabled_flag`.
BitWriter Start(unsigned transformSkip = 0) {
    BitWriter bits;
    bits.Bits(0x4401, 16).Ue(1).Ue(2).Bit(1).Bit(0).Bits(3, 3).Bit(1).Bit(0);
    bits.Ue(4).Ue(5).Se(-6).Bit(1).Bit(transformSkip).Bit(1).Ue(2);
    bits.Se(3).Se(-3).Bit(1).Bit(0).Bit(1).Bit(0);
    return bits;
}

// Everything behind the tiles, in front of `pps_extension_present_flag`.
void Filters(BitWriter& bits) {
    bits.Bit(1).Bit(1).Bit(1).Bit(0).Se(2).Se(-2);
    bits.Bit(0).Bit(1).Ue(3).Bit(1);
}

SPS_265 SpsOfWidth(std::int32_t minCbs) {
    SPS_265 sps;
    sps.picWidthInMinCbs = minCbs;
    return sps;
}

TEST(PPS_265, ReadsItsFields) {
    BitWriter bits = Start();
    bits.Bit(0).Bit(1);
    Filters(bits);
    bits.Bit(0);
    PPS_265 pps;
    ASSERT_TRUE(pps.Parse(bits.View(), nullptr));
    EXPECT_EQ(pps.nal_unit_type, 34);
    EXPECT_EQ(pps.nuh_layer_id, 0);
    EXPECT_EQ(pps.nuh_temporal_id_plus1, 1);
    EXPECT_EQ(pps.pps_pic_parameter_set_id, 1);
    EXPECT_EQ(pps.pps_seq_parameter_set_id, 2);
    EXPECT_EQ(pps.dependent_slice_segments_enabled_flag, 1);
    EXPECT_EQ(pps.output_flag_present_flag, 0);
    EXPECT_EQ(pps.num_extra_slice_header_bits, 3);
    EXPECT_EQ(pps.sign_data_hiding_enabled_flag, 1);
    EXPECT_EQ(pps.cabac_init_present_flag, 0);
    EXPECT_EQ(pps.num_ref_idx_l0_default_active_minus1, 4);
    EXPECT_EQ(pps.num_ref_idx_l1_default_active_minus1, 5);
    EXPECT_EQ(pps.init_qp_minus26, -6);
    EXPECT_EQ(pps.constrained_intra_pred_flag, 1);
    EXPECT_EQ(pps.transform_skip_enabled_flag, 0);
    EXPECT_EQ(pps.cu_qp_delta_enabled_flag, 1);
    EXPECT_EQ(pps.diff_cu_qp_delta_depth, 2);
    EXPECT_EQ(pps.pps_cb_qp_offset, 3);
    EXPECT_EQ(pps.pps_cr_qp_offset, -3);
    EXPECT_EQ(pps.pps_slice_chroma_qp_offsets_present_flag, 1);
    EXPECT_EQ(pps.weighted_pred_flag, 0);
    EXPECT_EQ(pps.weighted_bipred_flag, 1);
    EXPECT_EQ(pps.transquant_bypass_enabled_flag, 0);
    EXPECT_EQ(pps.tiles_enabled_flag, 0);
    EXPECT_EQ(pps.entropy_coding_sync_enabled_flag, 1);
    EXPECT_EQ(pps.num_tile_columns_minus1, -1);
    EXPECT_EQ(pps.loop_filter_across_tiles_enabled_flag, -1);
    EXPECT_EQ(pps.pps_loop_filter_across_slices_enabled_flag, 1);
    EXPECT_EQ(pps.deblocking_filter_control_present_flag, 1);
    EXPECT_EQ(pps.deblocking_filter_override_enabled_flag, 1);
    EXPECT_EQ(pps.pps_deblocking_filter_disabled_flag, 0);
    EXPECT_EQ(pps.pps_beta_offset_div2, 2);
    EXPECT_EQ(pps.pps_tc_offset_div2, -2);
    EXPECT_EQ(pps.pps_scaling_list_data_present_flag, 0);
    EXPECT_EQ(pps.lists_modification_present_flag, 1);
    EXPECT_EQ(pps.log2_parallel_merge_level_minus2, 3);
    EXPECT_EQ(pps.slice_segment_header_extension_present_flag, 1);
    EXPECT_EQ(pps.pps_extension_present_flag, 0);
    EXPECT_EQ(pps.pps_range_extension_flag, -1);
    EXPECT_EQ(pps.chroma_qp_offset_list_enabled_flag, -1);
    EXPECT_EQ(pps.pps_slice_act_qp_offsets_present_flag, -1);
}

TEST(PPS_265, ReadsNoDepthWithoutItsFlagAndNoOffsetsOfADisabledFilter) {
    BitWriter bits;
    bits.Bits(0x4401, 16).Ue(0).Ue(0).Bits(0, 2).Bits(0, 3).Bits(0, 2).Ue(0).Ue(0).Se(0);
    bits.Bits(0, 2).Bit(0).Se(1).Se(2).Bits(0, 6);
    bits.Bit(0).Bit(1).Bit(0).Bit(1).Bits(0b01, 2).Ue(7).Bit(0).Bit(0);
    PPS_265 pps;
    ASSERT_TRUE(pps.Parse(bits.View(), nullptr));
    EXPECT_EQ(pps.diff_cu_qp_delta_depth, -1);
    EXPECT_EQ(pps.pps_cb_qp_offset, 1);
    EXPECT_EQ(pps.pps_deblocking_filter_disabled_flag, 1);
    EXPECT_EQ(pps.pps_beta_offset_div2, -1);
    EXPECT_EQ(pps.lists_modification_present_flag, 1);
    EXPECT_EQ(pps.log2_parallel_merge_level_minus2, 7);
}

TEST(PPS_265, ReadsEvenTilesWithoutASequenceSet) {
    BitWriter bits = Start();
    bits.Bit(1).Bit(0).Ue(3).Ue(1).Bit(1).Bit(1);
    Filters(bits);
    bits.Bit(0);
    PPS_265 pps;
    ASSERT_TRUE(pps.Parse(bits.View(), nullptr));
    EXPECT_EQ(pps.num_tile_columns_minus1, 3);
    EXPECT_EQ(pps.num_tile_rows_minus1, 1);
    EXPECT_EQ(pps.uniform_spacing_flag, 1);
    EXPECT_EQ(pps.loop_filter_across_tiles_enabled_flag, 1);
    EXPECT_EQ(pps.log2_parallel_merge_level_minus2, 3);
}

ByteVector UnevenTiles(std::uint32_t columns, std::uint32_t rows, int columnCodes, int rowCodes) {
    BitWriter bits = Start();
    bits.Bit(1).Bit(0).Ue(columns).Ue(rows).Bit(0);
    for (int i = 0; i < columnCodes + rowCodes; ++i) {
        bits.Ue(9);
    }
    bits.Bit(1);
    Filters(bits);
    bits.Bit(0);
    return bits.View();
}

TEST(PPS_265, PassesOverTheSizesOfUnevenTiles) {
    const SPS_265 sps = SpsOfWidth(4);
    PPS_265 pps;
    ASSERT_TRUE(pps.Parse(UnevenTiles(3, 2, 3, 2), &sps));
    EXPECT_EQ(pps.num_tile_columns_minus1, 3);
    EXPECT_EQ(pps.loop_filter_across_tiles_enabled_flag, 1);
    EXPECT_EQ(pps.log2_parallel_merge_level_minus2, 3);
    ASSERT_TRUE(pps.Parse(UnevenTiles(0, 0, 0, 0), &sps));
    EXPECT_EQ(pps.log2_parallel_merge_level_minus2, 3);
}

TEST(PPS_265, RefusesAsManyColumnsAsThePictureHasBlocksOrMore) {
    const SPS_265 sps = SpsOfWidth(4);
    PPS_265 pps;
    EXPECT_TRUE(pps.Parse(UnevenTiles(3, 0, 3, 0), &sps));
    EXPECT_FALSE(pps.Parse(UnevenTiles(4, 0, 4, 0), &sps));
    EXPECT_FALSE(pps.Parse(UnevenTiles(5, 0, 5, 0), &sps));
    // The test stands only where there is more than one column.
    const SPS_265 none = SpsOfWidth(0);
    EXPECT_TRUE(pps.Parse(UnevenTiles(0, 1, 0, 1), &none));
}

TEST(PPS_265, RefusesANegativeNumberOfColumns) {
    const SPS_265 sps = SpsOfWidth(4);
    PPS_265 pps;
    EXPECT_FALSE(pps.Parse(UnevenTiles(0x80000000, 0, 0, 0), &sps));
    EXPECT_EQ(pps.num_tile_columns_minus1, INT32_MIN);
}

TEST(PPS_265, RefusesUnevenTilesWithoutASequenceSet) {
    const SPS_265 sps = SpsOfWidth(4);
    PPS_265 pps;
    EXPECT_FALSE(pps.Parse(UnevenTiles(3, 2, 3, 2), nullptr));
    EXPECT_FALSE(pps.Parse(UnevenTiles(0, 0, 0, 0), nullptr));
    EXPECT_TRUE(pps.Parse(UnevenTiles(3, 2, 3, 2), &sps));
}

TEST(PPS_265, EndsTwoThousandMillionTilesWithTheBytes) {
    const SPS_265 sps = SpsOfWidth(INT32_MAX);
    PPS_265 pps;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(pps.Parse(UnevenTiles(0x7FFFFFFE, 0x7FFFFFFE, 0, 0), &sps));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(pps.loop_filter_across_tiles_enabled_flag, 0);
    EXPECT_EQ(pps.pps_extension_present_flag, 0);
}

TEST(PPS_265, ReadsTheFlagOfOffsetListsFromTheRangeExtension) {
    for (const unsigned skip : {0U, 1U}) {
        BitWriter bits = Start(skip);
        bits.Bit(0).Bit(0);
        Filters(bits);
        bits.Bit(1).Bit(1).Bits(0, 3).Bits(0, 4);
        if (skip == 1) {
            bits.Ue(2);
        }
        bits.Bit(0).Bit(1).Ue(0).Ue(0).Se(1).Se(1).Ue(0).Ue(0);
        PPS_265 pps;
        ASSERT_TRUE(pps.Parse(bits.View(), nullptr));
        EXPECT_EQ(pps.pps_range_extension_flag, 1);
        EXPECT_EQ(pps.pps_multilayer_extension_flag, 0);
        EXPECT_EQ(pps.pps_extension_4bits, 0);
        EXPECT_EQ(pps.chroma_qp_offset_list_enabled_flag, 1) << skip;
    }
}

TEST(PPS_265, ReadsNoExtensionButTheFlags) {
    BitWriter bits = Start();
    bits.Bit(0).Bit(0);
    Filters(bits);
    bits.Bit(1).Bit(0).Bits(0b111, 3).Bits(9, 4).Bits(0xFFFF, 16);
    PPS_265 pps;
    ASSERT_TRUE(pps.Parse(bits.View(), nullptr));
    EXPECT_EQ(pps.pps_range_extension_flag, 0);
    EXPECT_EQ(pps.pps_3d_extension_flag, 1);
    EXPECT_EQ(pps.pps_scc_extension_flag, 1);
    EXPECT_EQ(pps.pps_extension_4bits, 9);
    EXPECT_EQ(pps.chroma_qp_offset_list_enabled_flag, -1);
    EXPECT_EQ(pps.pps_slice_act_qp_offsets_present_flag, -1);
}

TEST(PPS_265, ReadsAnyBytes) {
    test::Random random(5);
    const SPS_265 sps = SpsOfWidth(240);
    for (int i = 0; i < 5000; ++i) {
        const ByteVector bytes = random.Bytes(random.Below(60));
        PPS_265 pps;
        const bool alone = pps.Parse(bytes, nullptr);
        const bool withSet = pps.Parse(bytes, &sps);
        EXPECT_TRUE(withSet || !alone);
        EXPECT_EQ(withSet, pps.pps_extension_present_flag != -1);
    }
}

}  // namespace
}  // namespace clipfix
