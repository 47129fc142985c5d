#pragma once

#include <cstdint>

#include "base/bytes.h"

namespace clipfix {

// An H.264 picture parameter set (ITU-T H.264, 7.3.2.2). Slice group syntax is not followed, nor
// is anything behind `redundant_pic_cnt_present_flag`. -1 means not read.
class CPPS {
  public:
    CPPS() = default;

    // Byte 0 of `unit` counts as the NAL header; reading starts at byte 1. Bits past the end of
    // `unit` read as 0. Any bytes give an object.
    explicit CPPS(ByteView unit);

    std::int32_t pic_parameter_set_id = -1;
    std::int32_t seq_parameter_set_id = -1;
    std::int32_t entropy_coding_mode_flag = -1;
    std::int32_t bottom_field_pic_order_in_frame_present_flag = -1;
    std::int32_t num_slice_groups_minus1 = -1;
    std::int32_t num_ref_idx_l0_default_active_minus1 = -1;
    std::int32_t num_ref_idx_l1_default_active_minus1 = -1;
    std::int32_t weighted_pred_flag = -1;
    std::int32_t weighted_bipred_idc = -1;
    std::int32_t pic_init_qp_minus26 = -1;
    std::int32_t pic_init_qs_minus26 = -1;
    std::int32_t chroma_qp_index_offset = -1;
    std::int32_t deblocking_filter_control_present_flag = -1;
    std::int32_t constrained_intra_pred_flag = -1;
    std::int32_t redundant_pic_cnt_present_flag = -1;
};

}  // namespace clipfix
