#include "codec/h264_pps.h"

#include <gtest/gtest.h>

#include "support/bit_writer.h"

namespace clipfix {
namespace {

using test::BitWriter;

TEST(CPPS, ReadsItsFieldsFromTheByteBehindTheHead) {
    const ByteVector unit = BitWriter()
                                .Bits(0x68, 8)
                                .Ue(1)
                                .Ue(2)
                                .Bit(1)
                                .Bit(1)
                                .Ue(0)
                                .Ue(3)
                                .Ue(4)
                                .Bit(1)
                                .Bits(2, 2)
                                .Se(-3)
                                .Se(5)
                                .Se(-2)
                                .Bit(1)
                                .Bit(0)
                                .Bit(1)
                                .Bit(1)
                                .View();
    const CPPS pps(unit);
    EXPECT_EQ(pps.pic_parameter_set_id, 1);
    EXPECT_EQ(pps.seq_parameter_set_id, 2);
    EXPECT_EQ(pps.entropy_coding_mode_flag, 1);
    EXPECT_EQ(pps.bottom_field_pic_order_in_frame_present_flag, 1);
    EXPECT_EQ(pps.num_slice_groups_minus1, 0);
    EXPECT_EQ(pps.num_ref_idx_l0_default_active_minus1, 3);
    EXPECT_EQ(pps.num_ref_idx_l1_default_active_minus1, 4);
    EXPECT_EQ(pps.weighted_pred_flag, 1);
    EXPECT_EQ(pps.weighted_bipred_idc, 2);  // the first bit is the high one
    EXPECT_EQ(pps.pic_init_qp_minus26, -3);
    EXPECT_EQ(pps.pic_init_qs_minus26, 5);
    EXPECT_EQ(pps.chroma_qp_index_offset, -2);
    EXPECT_EQ(pps.deblocking_filter_control_present_flag, 1);
    EXPECT_EQ(pps.constrained_intra_pred_flag, 0);
    EXPECT_EQ(pps.redundant_pic_cnt_present_flag, 1);
}

TEST(CPPS, DoesNotFollowSliceGroups) {
    const ByteVector unit =
        BitWriter().Bits(0x68, 8).Ue(0).Ue(0).Bits(0, 2).Ue(2).Ue(7).Ue(1).View();
    const CPPS pps(unit);
    EXPECT_EQ(pps.num_slice_groups_minus1, 2);
    EXPECT_EQ(pps.num_ref_idx_l0_default_active_minus1, 7);
}

TEST(CPPS, ReadsZerosBehindTheEnd) {
    const CPPS pps{ByteView{}};
    EXPECT_EQ(pps.pic_parameter_set_id, 0);
    EXPECT_EQ(pps.weighted_bipred_idc, 0);
    EXPECT_EQ(pps.redundant_pic_cnt_present_flag, 0);
}

TEST(CPPS, HoldsMinusOneWhereNothingWasRead) {
    const CPPS pps;
    EXPECT_EQ(pps.pic_parameter_set_id, -1);
    EXPECT_EQ(pps.redundant_pic_cnt_present_flag, -1);
}

}  // namespace
}  // namespace clipfix
