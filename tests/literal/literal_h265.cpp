#include "literal/literal_bits.h"
#include "literal/literal_codec.h"

namespace clipfix::test {

namespace {

std::int32_t ShiftedOne(std::int32_t count) {
    return static_cast<std::int32_t>(1U << (static_cast<std::uint32_t>(count) & 31U));
}

void ReadHead265(NalHead265& head, ByteView unit) {
    const auto first = static_cast<std::int32_t>(BigNumber(unit, 0, 1));
    const auto second = static_cast<std::int32_t>(BigNumber(unit, 1, 1));
    head.forbidden_zero_bit = first / 128;
    head.nal_unit_type = first / 2 % 64;
    head.nuh_layer_id = first % 2 * 32 + second / 8;
    head.nuh_temporal_id_plus1 = second % 8;
}

}  // namespace

LiteralParse<CVPS> LiteralVps265(ByteView unit) {
    LiteralParse<CVPS> result;
    CVPS& v = result.object;
    ReadHead265(v, unit);
    LiteralBits bits(unit, 2);
    v.vps_video_parameter_set_id = bits.U(4);
    v.vps_base_layer_internal_flag = bits.U(1);
    v.vps_base_layer_available_flag = bits.U(1);
    v.vps_max_layers_minus1 = bits.U(6);
    v.vps_max_sub_layers_minus1 = bits.U(3);
    v.vps_temporal_id_nesting_flag = bits.U(1);
    v.vps_reserved_0xffff_16bits = bits.U(16);
    std::size_t found = 0;
    for (std::size_t i = bits.bytePosition; i + 1 < unit.size(); ++i) {
        if (unit[i] == 3 && unit[i - 1] == 0 && unit[i + 1] == 0) {
            found = i + 3;
        }
    }
    bits.bytePosition = found;
    if (v.vps_base_layer_internal_flag == 1) {
        v.vps_sub_layer_ordering_info_present_flag = bits.U(1);
        const std::int32_t elements =
            v.vps_sub_layer_ordering_info_present_flag == 1 ? 1 : v.vps_max_sub_layers_minus1 + 1;
        const auto room = static_cast<std::size_t>(v.vps_max_sub_layers_minus1) + 1;
        v.vps_max_dec_pic_buffering_minus1.assign(room, 0);
        v.vps_max_num_reorder_pics.assign(room, 0);
        v.vps_max_latency_increase_plus1.assign(room, 0);
        for (std::int32_t i = elements - 1; i <= v.vps_max_sub_layers_minus1; ++i) {
            const auto at = static_cast<std::size_t>(i);
            v.vps_max_dec_pic_buffering_minus1[at] = static_cast<std::uint8_t>(bits.Ue());
            v.vps_max_num_reorder_pics[at] = static_cast<std::uint8_t>(bits.Ue());
            v.vps_max_latency_increase_plus1[at] = static_cast<std::uint8_t>(bits.Ue());
        }
    }
    v.vps_max_layer_id = bits.U(6);
    v.vps_num_layer_sets_minus1 = bits.Ue();
    result.accepted = v.vps_num_layer_sets_minus1 <= 1023;
    return result;
}

namespace {

// Sets the place behind `profile_tier_level`; false where no place fits the known picture.
bool FindPictureSize265(LiteralBits& bits, SPS_265& s, std::size_t length,
                        std::int32_t expectedWidth, std::int32_t expectedHeight) {
    bits.bytePosition = 3;
    bits.bitPosition = 0;
    s.pic_width_in_luma_samples = 0;
    s.pic_height_in_luma_samples = 0;
    while (s.pic_height_in_luma_samples == 0 && bits.bytePosition < length) {
        const std::size_t start = bits.bytePosition;
        while (bits.bytePosition < length) {
            s.sps_seq_parameter_set_id = bits.Ue();
            s.chroma_format_idc = bits.Ue();
            if (s.sps_seq_parameter_set_id < 16 && s.chroma_format_idc < 4) {
                break;
            }
            bits.bitPosition = 0;
            bits.bytePosition += 1;
        }
        s.separate_colour_plane_flag = 0;
        if (s.chroma_format_idc == 3) {
            s.separate_colour_plane_flag = bits.U(1);
        }
        s.chromaArrayType = s.separate_colour_plane_flag == 0 ? s.chroma_format_idc : 0;
        s.pic_width_in_luma_samples = bits.Ue();
        s.pic_height_in_luma_samples = bits.Ue();
        if (s.pic_width_in_luma_samples / expectedWidth == 1 &&
            s.pic_height_in_luma_samples / expectedHeight == 1) {
            break;
        }
        s.pic_width_in_luma_samples = 0;
        s.pic_height_in_luma_samples = 0;
        bits.bytePosition = start + 1;
        bits.bitPosition = 0;
    }
    return bits.bytePosition != length;
}

void ReadExtensions265(LiteralBits& bits, SPS_265& s) {
    if (s.sps_range_extension_flag == 1) {
        bits.U(9);
    }
    if (s.sps_multilayer_extension_flag == 1) {
        bits.U(1);
    }
    if (s.sps_3d_extension_flag == 1) {
        for (int d = 0; d <= 1; ++d) {
            bits.F();
            bits.F();
            if (d == 0) {
                bits.Ue();
                bits.U(4);
            } else {
                bits.F();
                bits.Ue();
                bits.U(5);
            }
        }
    }
    if (s.sps_scc_extension_flag == 1) {
        bits.F();
        if (bits.F() == 1) {
            bits.Ue();
            bits.Ue();
            if (bits.F() == 1) {
                const std::int32_t m = bits.Ue();
                for (int c = 0; c < (s.chroma_format_idc == 0 ? 1 : 3); ++c) {
                    const std::int32_t counter = 0;
                    while (counter < m && !bits.AtEnd()) {
                        bits.U(1);
                    }
                }
            }
        }
        s.motion_vector_resolution_control_idc = bits.U(2);
        bits.F();
    }
}

bool DeriveSps265(SPS_265& s) {
    s.chromaArrayType = s.separate_colour_plane_flag == 0 ? s.chroma_format_idc : 0;
    const std::int32_t minCb =
        ShiftedOne(Wrapped(std::int64_t{s.log2_min_luma_coding_block_size_minus3} + 3));
    const auto ctb = static_cast<std::int32_t>(
        static_cast<std::uint32_t>(minCb)
        << (static_cast<std::uint32_t>(s.log2_diff_max_min_luma_coding_block_size) & 31U));
    s.picWidthInMinCbs = s.pic_width_in_luma_samples / minCb;
    s.picSizeInMinCbs =
        Wrapped(std::int64_t{s.picWidthInMinCbs} * (s.pic_height_in_luma_samples / minCb));
    if (ctb == 0) {
        return false;
    }
    s.picHeightRemainder = s.pic_height_in_luma_samples % ctb;
    return true;
}

}  // namespace

LiteralParse<SPS_265> LiteralSps265(ByteView unit, std::int32_t expectedWidth,
                                    std::int32_t expectedHeight) {
    LiteralParse<SPS_265> result;
    result.accepted = false;
    SPS_265& s = result.object;
    ReadHead265(s, unit);
    LiteralBits bits(unit, 2);
    s.sps_video_parameter_set_id = bits.U(4);
    s.sps_max_sub_layers_minus1 = bits.U(3);
    s.sps_temporal_id_nesting_flag = bits.U(1);
    if (expectedWidth == 0 || expectedHeight == 0) {
        return result;
    }
    if (!FindPictureSize265(bits, s, unit.size(), expectedWidth, expectedHeight)) {
        return result;
    }
    s.conformance_window_flag = bits.U(1);
    if (s.pic_width_in_luma_samples == 0 || s.pic_height_in_luma_samples == 0) {
        return result;
    }
    if (s.conformance_window_flag == 1) {
        s.conf_win_left_offset = bits.Ue();
        s.conf_win_right_offset = bits.Ue();
        s.conf_win_top_offset = bits.Ue();
        s.conf_win_bottom_offset = bits.Ue();
    }
    s.bit_depth_luma_minus8 = bits.Ue();
    s.bit_depth_chroma_minus8 = bits.Ue();
    s.log2_max_pic_order_cnt_lsb_minus4 = bits.Ue();
    s.sps_sub_layer_ordering_info_present_flag = bits.U(1);
    if (s.sps_max_sub_layers_minus1 > 0) {
        const std::int32_t rounds =
            s.sps_sub_layer_ordering_info_present_flag == 1 ? 1 : s.sps_max_sub_layers_minus1 + 1;
        for (std::int32_t i = 0; i < rounds; ++i) {
            bits.Ue();
            bits.Ue();
            bits.Ue();
        }
    }
    s.log2_min_luma_coding_block_size_minus3 = bits.Ue();
    s.log2_diff_max_min_luma_coding_block_size = bits.Ue();
    s.log2_min_luma_transform_block_size_minus2 = bits.Ue();
    s.log2_diff_max_min_luma_transform_block_size = bits.Ue();
    s.max_transform_hierarchy_depth_inter = bits.Ue();
    s.max_transform_hierarchy_depth_intra = bits.Ue();
    s.scaling_list_enabled_flag = bits.U(1);
    if (s.scaling_list_enabled_flag == 1) {
        s.sps_scaling_list_data_present_flag = bits.U(1);
    }
    s.amp_enabled_flag = bits.U(1);
    s.sample_adaptive_offset_enabled_flag = bits.U(1);
    s.pcm_enabled_flag = bits.U(1);
    if (s.pcm_enabled_flag == 1) {
        s.pcm_sample_bit_depth_luma_minus1 = bits.U(4);
        s.pcm_sample_bit_depth_chroma_minus1 = bits.U(4);
        s.log2_min_pcm_luma_coding_block_size_minus3 = bits.Ue();
        s.log2_diff_max_min_pcm_luma_coding_block_size = bits.Ue();
        s.pcm_loop_filter_disabled_flag = bits.U(1);
    }
    s.num_short_term_ref_pic_sets = bits.Ue();
    s.long_term_ref_pics_present_flag = bits.U(1);
    if (s.long_term_ref_pics_present_flag == 1) {
        s.num_long_term_ref_pics_sps = bits.Ue();
        if (s.num_long_term_ref_pics_sps < 0 || s.num_long_term_ref_pics_sps > 31) {
            return result;
        }
        for (std::int32_t i = 0; i < s.num_long_term_ref_pics_sps; ++i) {
            bits.U(Wrapped(std::int64_t{s.log2_max_pic_order_cnt_lsb_minus4} + 4));
            bits.U(1);
        }
    }
    s.sps_temporal_id_nesting_flag = bits.U(1);
    s.strong_intra_smoothing_enabled_flag = bits.U(1);
    s.vui_parameters_present_flag = bits.U(1);
    s.sps_extension_present_flag = bits.U(1);
    if (s.sps_extension_present_flag == 1) {
        s.sps_range_extension_flag = bits.U(1);
        s.sps_multilayer_extension_flag = bits.U(1);
        s.sps_3d_extension_flag = bits.U(1);
        s.sps_scc_extension_flag = bits.U(1);
        s.sps_extension_4bits = bits.U(4);
    }
    ReadExtensions265(bits, s);
    result.accepted = DeriveSps265(s);
    return result;
}

namespace {

bool ReadTiles265(LiteralBits& bits, PPS_265& p, const SPS_265* sps) {
    if (p.tiles_enabled_flag != 1) {
        return true;
    }
    p.num_tile_columns_minus1 = bits.Ue();
    p.num_tile_rows_minus1 = bits.Ue();
    p.uniform_spacing_flag = bits.F();
    if (p.uniform_spacing_flag == 0) {
        if (sps == nullptr || p.num_tile_columns_minus1 < 0) {
            return false;
        }
        if (p.num_tile_columns_minus1 > 0) {
            if (p.num_tile_columns_minus1 >= sps->picWidthInMinCbs) {
                return false;
            }
            for (std::int32_t i = 0; i < p.num_tile_columns_minus1 && !bits.AtEnd(); ++i) {
                bits.Ue();
            }
        }
        for (std::int32_t i = 0; i < p.num_tile_rows_minus1 && !bits.AtEnd(); ++i) {
            bits.Ue();
        }
    }
    p.loop_filter_across_tiles_enabled_flag = bits.F();
    return true;
}

}  // namespace

LiteralParse<PPS_265> LiteralPps265(ByteView unit, const SPS_265* sps) {
    LiteralParse<PPS_265> result;
    PPS_265& p = result.object;
    ReadHead265(p, unit);
    LiteralBits bits(unit, 2);
    p.pps_pic_parameter_set_id = bits.Ue();
    p.pps_seq_parameter_set_id = bits.Ue();
    p.dependent_slice_segments_enabled_flag = bits.F();
    p.output_flag_present_flag = bits.F();
    p.num_extra_slice_header_bits = bits.U(3);
    p.sign_data_hiding_enabled_flag = bits.F();
    p.cabac_init_present_flag = bits.F();
    p.num_ref_idx_l0_default_active_minus1 = bits.Ue();
    p.num_ref_idx_l1_default_active_minus1 = bits.Ue();
    p.init_qp_minus26 = bits.Se();
    p.constrained_intra_pred_flag = bits.F();
    p.transform_skip_enabled_flag = bits.F();
    p.cu_qp_delta_enabled_flag = bits.F();
    if (p.cu_qp_delta_enabled_flag == 1) {
        p.diff_cu_qp_delta_depth = bits.Ue();
    }
    p.pps_cb_qp_offset = bits.Se();
    p.pps_cr_qp_offset = bits.Se();
    p.pps_slice_chroma_qp_offsets_present_flag = bits.F();
    p.weighted_pred_flag = bits.F();
    p.weighted_bipred_flag = bits.F();
    p.transquant_bypass_enabled_flag = bits.F();
    p.tiles_enabled_flag = bits.F();
    p.entropy_coding_sync_enabled_flag = bits.F();
    if (!ReadTiles265(bits, p, sps)) {
        result.accepted = false;
        return result;
    }
    p.pps_loop_filter_across_slices_enabled_flag = bits.F();
    p.deblocking_filter_control_present_flag = bits.F();
    if (p.deblocking_filter_control_present_flag == 1) {
        p.deblocking_filter_override_enabled_flag = bits.F();
        p.pps_deblocking_filter_disabled_flag = bits.F();
        if (p.pps_deblocking_filter_disabled_flag == 0) {
            p.pps_beta_offset_div2 = bits.Se();
            p.pps_tc_offset_div2 = bits.Se();
        }
    }
    p.pps_scaling_list_data_present_flag = bits.F();
    p.lists_modification_present_flag = bits.F();
    p.log2_parallel_merge_level_minus2 = bits.Ue();
    p.slice_segment_header_extension_present_flag = bits.F();
    p.pps_extension_present_flag = bits.F();
    if (p.pps_extension_present_flag == 1) {
        p.pps_range_extension_flag = bits.F();
        p.pps_multilayer_extension_flag = bits.F();
        p.pps_3d_extension_flag = bits.F();
        p.pps_scc_extension_flag = bits.F();
        p.pps_extension_4bits = bits.U(4);
    }
    if (p.pps_range_extension_flag == 1) {
        if (p.transform_skip_enabled_flag == 1) {
            bits.Ue();
        }
        bits.F();
        // Nothing that is kept stands behind this flag.
        p.chroma_qp_offset_list_enabled_flag = bits.F();
    }
    return result;
}

}  // namespace clipfix::test
