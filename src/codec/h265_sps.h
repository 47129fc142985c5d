#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "codec/h265_nal_head.h"

namespace clipfix {

class SyntaxReader;

// An H.265 sequence parameter set (ITU-T H.265, 7.3.2.2). `profile_tier_level` is not read: the
// place behind it is found by a search for the picture size that is expected. -1 means not read.
class SPS_265 : public NalHead265 {
  public:
    // Reads `unit`, which begins with its two-byte NAL head. The expected width and height are in
    // luma samples; each must be above 0, and the coded one may be up to just below twice as large.
    // False when the place is not found or a limit is broken; the fields then hold what was read so
    // far. Bits past the end read as 0.
    [[nodiscard]] bool Parse(ByteView unit, std::int32_t expectedWidth,
                             std::int32_t expectedHeight);

    std::int32_t sps_video_parameter_set_id = -1;
    std::int32_t sps_max_sub_layers_minus1 = -1;
    std::int32_t sps_temporal_id_nesting_flag = -1;
    std::int32_t sps_seq_parameter_set_id = -1;
    std::int32_t chroma_format_idc = -1;
    std::int32_t separate_colour_plane_flag = -1;
    std::int32_t pic_width_in_luma_samples = -1;   // 0 once the search has begun
    std::int32_t pic_height_in_luma_samples = -1;  // 0 once the search has begun
    std::int32_t conformance_window_flag = -1;
    std::int32_t conf_win_left_offset = -1;
    std::int32_t conf_win_right_offset = -1;
    std::int32_t conf_win_top_offset = -1;
    std::int32_t conf_win_bottom_offset = -1;
    std::int32_t bit_depth_luma_minus8 = -1;
    std::int32_t bit_depth_chroma_minus8 = -1;
    std::int32_t log2_max_pic_order_cnt_lsb_minus4 = -1;
    std::int32_t sps_sub_layer_ordering_info_present_flag = -1;
    std::int32_t log2_min_luma_coding_block_size_minus3 = -1;
    std::int32_t log2_diff_max_min_luma_coding_block_size = -1;
    std::int32_t log2_min_luma_transform_block_size_minus2 = -1;
    std::int32_t log2_diff_max_min_luma_transform_block_size = -1;
    std::int32_t max_transform_hierarchy_depth_inter = -1;
    std::int32_t max_transform_hierarchy_depth_intra = -1;
    std::int32_t scaling_list_enabled_flag = -1;
    std::int32_t sps_scaling_list_data_present_flag = -1;
    std::int32_t amp_enabled_flag = -1;
    std::int32_t sample_adaptive_offset_enabled_flag = -1;
    std::int32_t pcm_enabled_flag = -1;
    std::int32_t pcm_sample_bit_depth_luma_minus1 = -1;
    std::int32_t pcm_sample_bit_depth_chroma_minus1 = -1;
    std::int32_t log2_min_pcm_luma_coding_block_size_minus3 = -1;
    std::int32_t log2_diff_max_min_pcm_luma_coding_block_size = -1;
    std::int32_t pcm_loop_filter_disabled_flag = -1;
    std::int32_t num_short_term_ref_pic_sets = -1;
    std::int32_t long_term_ref_pics_present_flag = -1;
    std::int32_t num_long_term_ref_pics_sps = -1;
    // Never read: its bit goes into `sps_temporal_id_nesting_flag`.
    std::int32_t sps_temporal_mvp_enabled_flag = -1;
    std::int32_t strong_intra_smoothing_enabled_flag = -1;
    std::int32_t vui_parameters_present_flag = -1;
    std::int32_t sps_extension_present_flag = -1;
    std::int32_t sps_range_extension_flag = -1;
    std::int32_t sps_multilayer_extension_flag = -1;
    std::int32_t sps_3d_extension_flag = -1;
    std::int32_t sps_scc_extension_flag = -1;
    std::int32_t sps_extension_4bits = -1;
    std::int32_t motion_vector_resolution_control_idc = -1;

    // Derived. Only `chromaArrayType` is what its name says in the standard's terms.
    std::int32_t chromaArrayType = -1;
    std::int32_t picWidthInMinCbs = -1;
    std::int32_t picSizeInMinCbs = -1;
    std::int32_t picHeightRemainder = -1;

  private:
    [[nodiscard]] bool FindPictureSize(SyntaxReader& in, std::size_t length,
                                       std::int32_t expectedWidth, std::int32_t expectedHeight);
    void ReadBlockSizes(SyntaxReader& in);
    void ReadTools(SyntaxReader& in);
    [[nodiscard]] bool ReadReferencePictures(SyntaxReader& in);
    void ReadExtensions(SyntaxReader& in);
    void ReadScreenContentExtension(SyntaxReader& in);
    [[nodiscard]] bool Derive();
};

}  // namespace clipfix
