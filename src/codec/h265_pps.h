#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "codec/h265_nal_head.h"

namespace clipfix {

class SPS_265;
class SyntaxReader;

// An H.265 picture parameter set (ITU-T H.265, 7.3.2.3), up to its range extension. -1 means not
// read.
class PPS_265 : public NalHead265 {
  public:
    // Reads `unit`, which begins with its two-byte NAL head. `sps` gives the limit of the tile
    // columns; it may be null, and tiles of uneven size are then refused. False on tile columns
    // that cannot be; the fields then hold what was read so far. Bits past the end read as 0.
    [[nodiscard]] bool Parse(ByteView unit, const SPS_265* sps);

    std::int32_t pps_pic_parameter_set_id = -1;
    std::int32_t pps_seq_parameter_set_id = -1;
    std::int32_t dependent_slice_segments_enabled_flag = -1;
    std::int32_t output_flag_present_flag = -1;
    std::int32_t num_extra_slice_header_bits = -1;
    std::int32_t sign_data_hiding_enabled_flag = -1;
    std::int32_t cabac_init_present_flag = -1;
    std::int32_t num_ref_idx_l0_default_active_minus1 = -1;
    std::int32_t num_ref_idx_l1_default_active_minus1 = -1;
    std::int32_t init_qp_minus26 = -1;
    std::int32_t constrained_intra_pred_flag = -1;
    std::int32_t transform_skip_enabled_flag = -1;
    std::int32_t cu_qp_delta_enabled_flag = -1;
    std::int32_t diff_cu_qp_delta_depth = -1;
    std::int32_t pps_cb_qp_offset = -1;
    std::int32_t pps_cr_qp_offset = -1;
    std::int32_t pps_slice_chroma_qp_offsets_present_flag = -1;
    std::int32_t weighted_pred_flag = -1;
    std::int32_t weighted_bipred_flag = -1;
    std::int32_t transquant_bypass_enabled_flag = -1;
    std::int32_t tiles_enabled_flag = -1;
    std::int32_t entropy_coding_sync_enabled_flag = -1;
    std::int32_t num_tile_columns_minus1 = -1;
    std::int32_t num_tile_rows_minus1 = -1;
    std::int32_t uniform_spacing_flag = -1;
    std::int32_t loop_filter_across_tiles_enabled_flag = -1;
    std::int32_t pps_loop_filter_across_slices_enabled_flag = -1;
    std::int32_t deblocking_filter_control_present_flag = -1;
    std::int32_t deblocking_filter_override_enabled_flag = -1;
    std::int32_t pps_deblocking_filter_disabled_flag = -1;
    std::int32_t pps_beta_offset_div2 = -1;
    std::int32_t pps_tc_offset_div2 = -1;
    std::int32_t pps_scaling_list_data_present_flag = -1;
    std::int32_t lists_modification_present_flag = -1;
    std::int32_t log2_parallel_merge_level_minus2 = -1;
    std::int32_t slice_segment_header_extension_present_flag = -1;
    std::int32_t pps_extension_present_flag = -1;
    std::int32_t pps_range_extension_flag = -1;
    std::int32_t pps_multilayer_extension_flag = -1;
    std::int32_t pps_3d_extension_flag = -1;
    std::int32_t pps_scc_extension_flag = -1;
    std::int32_t pps_extension_4bits = -1;
    std::int32_t chroma_qp_offset_list_enabled_flag = -1;
    // Never read: the screen content extension is not followed.
    std::int32_t pps_slice_act_qp_offsets_present_flag = -1;

  private:
    void ReadCodingTools(SyntaxReader& in);
    [[nodiscard]] bool ReadTiles(SyntaxReader& in, const SPS_265* sps);
    void ReadFilters(SyntaxReader& in);
    void ReadRangeExtension(SyntaxReader& in);
};

}  // namespace clipfix
