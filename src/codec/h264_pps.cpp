#include "codec/h264_pps.h"

#include "codec/syntax_reader.h"

namespace clipfix {

// H.264, 7.3.2.2, without its branches.
CPPS::CPPS(ByteView unit) {
    SyntaxReader in(unit, 1);
    pic_parameter_set_id = in.Ue();
    seq_parameter_set_id = in.Ue();
    entropy_coding_mode_flag = in.Flag();
    bottom_field_pic_order_in_frame_present_flag = in.Flag();
    num_slice_groups_minus1 = in.Ue();
    num_ref_idx_l0_default_active_minus1 = in.Ue();
    num_ref_idx_l1_default_active_minus1 = in.Ue();
    weighted_pred_flag = in.Flag();
    weighted_bipred_idc = in.U(2);
    pic_init_qp_minus26 = in.Se();
    pic_init_qs_minus26 = in.Se();
    chroma_qp_index_offset = in.Se();
    deblocking_filter_control_present_flag = in.Flag();
    constrained_intra_pred_flag = in.Flag();
    redundant_pic_cnt_present_flag = in.Flag();
}

}  // namespace clipfix
