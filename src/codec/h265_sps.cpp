#include "codec/h265_sps.h"

#include <vector>

#include "codec/syntax_reader.h"

namespace clipfix {

// H.265, 7.3.2.2. VUI parameters, scaling lists and the sets of reference pictures are not read;
// the read behind one of them takes the bit that follows.
bool SPS_265::Parse(ByteView unit, std::int32_t expectedWidth, std::int32_t expectedHeight) {
    *this = SPS_265{};
    if (expectedWidth == 0 || expectedHeight == 0) {
        return false;
    }
    static_cast<NalHead265&>(*this) = NalHead265::From(unit);
    SyntaxReader in(unit, 2);
    sps_video_parameter_set_id = in.U(4);
    sps_max_sub_layers_minus1 = in.U(3);
    sps_temporal_id_nesting_flag = in.Flag();
    if (!FindPictureSize(in, unit.size(), expectedWidth, expectedHeight)) {
        return false;
    }
    conformance_window_flag = in.Flag();
    if (conformance_window_flag == 1) {
        conf_win_left_offset = in.Ue();
        conf_win_right_offset = in.Ue();
        conf_win_top_offset = in.Ue();
        conf_win_bottom_offset = in.Ue();
    }
    bit_depth_luma_minus8 = in.Ue();
    bit_depth_chroma_minus8 = in.Ue();
    log2_max_pic_order_cnt_lsb_minus4 = in.Ue();
    ReadBlockSizes(in);
    ReadTools(in);
    if (!ReadReferencePictures(in)) {
        return false;
    }
    // The bit of sps_temporal_mvp_enabled_flag goes into this field, and the field of its own name
    // stays -1. That is meant: the slice header tests that one.
    sps_temporal_id_nesting_flag = in.Flag();
    strong_intra_smoothing_enabled_flag = in.Flag();
    vui_parameters_present_flag = in.Flag();
    ReadExtensions(in);
    return Derive();
}

// Instead of reading `profile_tier_level` it tries byte after byte until the syntax behind that
// structure gives the picture size that is expected, in whole division: up to just below twice as
// large. This is meant; so is that a failed pair of ids goes on one byte behind the place where its
// two codes ended.
//
// What a start gives depends on nothing but its place. So each place is tried once, and a start
// that comes to one that has been tried has failed: without this the work would grow with the
// square of the unit's length.
bool SPS_265::FindPictureSize(SyntaxReader& in, std::size_t length, std::int32_t expectedWidth,
                              std::int32_t expectedHeight) {
    const auto isExpected = [](std::int32_t value, std::int32_t expected) {
        return std::int64_t{value} / expected == 1;
    };
    pic_width_in_luma_samples = 0;
    pic_height_in_luma_samples = 0;
    std::vector<bool> isTried(length);
    for (std::size_t start = 3; start < length; ++start) {
        bool isPlausible = false;
        for (std::size_t at = start; at < length && !isTried[at] && !isPlausible;) {
            isTried[at] = true;
            in.MoveTo(at);
            sps_seq_parameter_set_id = in.Ue();
            chroma_format_idc = in.Ue();
            isPlausible = sps_seq_parameter_set_id < 16 && chroma_format_idc < 4;
            at = in.BytePosition() + 1;
        }
        if (!isPlausible) {
            continue;
        }
        separate_colour_plane_flag = chroma_format_idc == 3 ? in.Flag() : 0;
        chromaArrayType = separate_colour_plane_flag == 0 ? chroma_format_idc : 0;
        pic_width_in_luma_samples = in.Ue();
        pic_height_in_luma_samples = in.Ue();
        if (isExpected(pic_width_in_luma_samples, expectedWidth) &&
            isExpected(pic_height_in_luma_samples, expectedHeight)) {
            return in.BytePosition() != length;
        }
        pic_width_in_luma_samples = 0;
        pic_height_in_luma_samples = 0;
    }
    return false;
}

void SPS_265::ReadBlockSizes(SyntaxReader& in) {
    sps_sub_layer_ordering_info_present_flag = in.Flag();
    // The rounds are the reverse of the standard's, and meant: none for a single layer, whose three
    // values are then taken for the fields below, one with the flag, and all without it.
    if (sps_max_sub_layers_minus1 > 0) {
        const std::int32_t rounds =
            sps_sub_layer_ordering_info_present_flag == 1 ? 1 : sps_max_sub_layers_minus1 + 1;
        for (std::int32_t i = 0; i < 3 * rounds; ++i) {
            in.SkipUe();
        }
    }
    log2_min_luma_coding_block_size_minus3 = in.Ue();
    log2_diff_max_min_luma_coding_block_size = in.Ue();
    log2_min_luma_transform_block_size_minus2 = in.Ue();
    log2_diff_max_min_luma_transform_block_size = in.Ue();
    max_transform_hierarchy_depth_inter = in.Ue();
    max_transform_hierarchy_depth_intra = in.Ue();
}

void SPS_265::ReadTools(SyntaxReader& in) {
    scaling_list_enabled_flag = in.Flag();
    if (scaling_list_enabled_flag == 1) {
        sps_scaling_list_data_present_flag = in.Flag();
    }
    amp_enabled_flag = in.Flag();
    sample_adaptive_offset_enabled_flag = in.Flag();
    pcm_enabled_flag = in.Flag();
    if (pcm_enabled_flag == 1) {
        pcm_sample_bit_depth_luma_minus1 = in.U(4);
        pcm_sample_bit_depth_chroma_minus1 = in.U(4);
        log2_min_pcm_luma_coding_block_size_minus3 = in.Ue();
        log2_diff_max_min_pcm_luma_coding_block_size = in.Ue();
        pcm_loop_filter_disabled_flag = in.Flag();
    }
}

bool SPS_265::ReadReferencePictures(SyntaxReader& in) {
    num_short_term_ref_pic_sets = in.Ue();
    long_term_ref_pics_present_flag = in.Flag();
    if (long_term_ref_pics_present_flag != 1) {
        return true;
    }
    num_long_term_ref_pics_sps = in.Ue();
    if (num_long_term_ref_pics_sps < 0 || num_long_term_ref_pics_sps > 31) {
        return false;
    }
    for (std::int32_t i = 0; i < num_long_term_ref_pics_sps; ++i) {
        in.SkipBits(WrapAdd(log2_max_pic_order_cnt_lsb_minus4, 4));
        in.SkipBits(1);
    }
    return true;
}

void SPS_265::ReadExtensions(SyntaxReader& in) {
    sps_extension_present_flag = in.Flag();
    if (sps_extension_present_flag != 1) {
        return;
    }
    sps_range_extension_flag = in.Flag();
    sps_multilayer_extension_flag = in.Flag();
    sps_3d_extension_flag = in.Flag();
    sps_scc_extension_flag = in.Flag();
    sps_extension_4bits = in.U(4);
    if (sps_range_extension_flag == 1) {
        in.SkipBits(9);
    }
    if (sps_multilayer_extension_flag == 1) {
        in.SkipBits(1);
    }
    if (sps_3d_extension_flag == 1) {
        in.SkipBits(2);  // texture
        in.SkipUe();
        in.SkipBits(4);
        in.SkipBits(2 + 1);  // depth
        in.SkipUe();
        in.SkipBits(5);
    }
    if (sps_scc_extension_flag == 1) {
        ReadScreenContentExtension(in);
    }
}

void SPS_265::ReadScreenContentExtension(SyntaxReader& in) {
    in.SkipBits(1);
    if (in.Flag() == 1) {
        in.SkipUe();
        in.SkipUe();
        // The initialisers of the palette predictor are read bit by bit without being counted: if
        // there is one, they take all that is left. That is meant.
        if (in.Flag() == 1 && in.Ue() > 0) {
            in.MoveToEnd();
        }
    }
    motion_vector_resolution_control_idc = in.U(2);
    in.SkipBits(1);
}

// These are not the standard's PicWidthInCtbsY and its like, and meant: the slice header and the
// picture parameter set are tested against them as they are.
bool SPS_265::Derive() {
    chromaArrayType = separate_colour_plane_flag == 0 ? chroma_format_idc : 0;
    const std::int32_t minCb = WrapShiftLeft(1, WrapAdd(log2_min_luma_coding_block_size_minus3, 3));
    const std::int32_t ctb = WrapShiftLeft(minCb, log2_diff_max_min_luma_coding_block_size);
    picWidthInMinCbs = pic_width_in_luma_samples / minCb;
    picSizeInMinCbs = WrapMultiply(picWidthInMinCbs, pic_height_in_luma_samples / minCb);
    if (ctb == 0) {
        return false;
    }
    picHeightRemainder = pic_height_in_luma_samples % ctb;
    return true;
}

}  // namespace clipfix
