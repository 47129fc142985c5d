#pragma once

#include <cstdint>

#include "base/bytes.h"

namespace clipfix {

class CNALU;
class PPS_265;
class SPS_265;
class SyntaxReader;

// The head of an H.265 slice segment (ITU-T H.265, 7.3.6.1), read far enough to say whether bytes
// that claim to be one can be. -1 means not read.
class SliceHeader_265 {
  public:
    // Reads from `bytes`, which begin behind the two-byte NAL head of `nalu`. False when they
    // cannot be a slice segment; the fields then hold what was read so far. Bits past the end read
    // as 0.
    [[nodiscard]] bool Parse(ByteView bytes, const CNALU& nalu, const SPS_265& sps,
                             const PPS_265& pps);

    std::int32_t first_slice_segment_in_pic_flag = -1;
    std::int32_t no_output_of_prior_pics_flag = -1;
    std::int32_t slice_pic_parameter_set_id = -1;
    std::int32_t dependent_slice_segment_flag = -1;
    std::int32_t slice_segment_address = -1;
    std::int32_t slice_type = -1;
    std::int32_t pic_output_flag = -1;
    std::int32_t colour_plane_id = -1;
    std::int32_t slice_pic_order_cnt_lsb = -1;
    std::int32_t short_term_ref_pic_set_sps_flag = -1;
    std::int32_t short_term_ref_pic_set_idx = -1;
    std::int32_t num_long_term_sps = -1;
    std::int32_t num_long_term_pics = -1;
    std::int32_t delta_poc_msb_present_flag = -1;
    std::int32_t slice_temporal_mvp_enabled_flag = -1;
    std::int32_t slice_sao_luma_flag = -1;
    std::int32_t slice_sao_chroma_flag = -1;
    std::int32_t num_ref_idx_active_override_flag = -1;
    std::int32_t num_ref_idx_l0_active_minus1 = -1;
    std::int32_t num_ref_idx_l1_active_minus1 = -1;
    std::int32_t mvd_l1_zero_flag = -1;
    std::int32_t cabac_init_flag = -1;
    std::int32_t collocated_from_l0_flag = -1;
    std::int32_t collocated_ref_idx = -1;
    std::int32_t five_minus_max_num_merge_cand = -1;
    std::int32_t use_integer_mv_flag = -1;
    std::int32_t slice_qp_delta = -1;
    std::int32_t slice_cb_qp_offset = -1;
    std::int32_t slice_cr_qp_offset = -1;
    std::int32_t slice_act_y_qp_offset = -1;
    std::int32_t slice_act_cb_qp_offset = -1;
    std::int32_t slice_act_cr_qp_offset = -1;
    std::int32_t cu_chroma_qp_offset_enabled_flag = -1;
    std::int32_t deblocking_filter_override_flag = -1;
    std::int32_t slice_deblocking_filter_disabled_flag = -1;
    std::int32_t slice_beta_offset_div2 = -1;
    std::int32_t slice_tc_offset_div2 = -1;
    std::int32_t slice_loop_filter_across_slices_enabled_flag = -1;
    std::int32_t num_entry_point_offsets = -1;
    std::int32_t offset_len_minus1 = -1;
    std::int32_t slice_segment_header_extension_length = -1;

  private:
    [[nodiscard]] bool ReadIndependentPart(SyntaxReader& in, std::int32_t nalUnitType,
                                           const SPS_265& sps, const PPS_265& pps);
    [[nodiscard]] bool ReadPictureOrder(SyntaxReader& in, const SPS_265& sps);
    [[nodiscard]] bool ReadLongTermPictures(SyntaxReader& in, const SPS_265& sps);
    void ReadInterPrediction(SyntaxReader& in, const SPS_265& sps, const PPS_265& pps);
    void ReadFilters(SyntaxReader& in, const PPS_265& pps);
    [[nodiscard]] bool ReadEntryPoints(SyntaxReader& in, const SPS_265& sps, const PPS_265& pps);
};

}  // namespace clipfix
