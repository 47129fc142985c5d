#include "codec/h264_sps.h"

#include <algorithm>
#include <array>

#include "codec/syntax_reader.h"

namespace clipfix {

namespace {

// The profiles whose sets carry the chroma format (H.264, 7.3.2.1.1). The list is meant to be
// shorter than the standard's, which has 134, 135, 138 and 139 as well.
constexpr std::array<std::int32_t, 9> kProfilesWithChromaFormat{100, 110, 122, 244, 44,
                                                                83,  86,  118, 128};

bool HasChromaFormat(std::int32_t profileIdc) {
    return std::find(kProfilesWithChromaFormat.begin(), kProfilesWithChromaFormat.end(),
                     profileIdc) != kProfilesWithChromaFormat.end();
}

bool IsWithin(std::int32_t value, std::int32_t low, std::int32_t high) {
    return value >= low && value <= high;
}

}  // namespace

CSPS::CSPS(ByteView unit) {
    ReadFields(unit);
    DeriveChroma();
    DeriveSizes();
}

// H.264, 7.3.2.1.1, without its branches.
void CSPS::ReadFields(ByteView unit) {
    profile_idc = ByteAt(unit, 1);
    level_idc = ByteAt(unit, 3);
    SyntaxReader in(unit, 4);
    seq_parameter_set_id = in.Ue();
    if (HasChromaFormat(profile_idc)) {
        chroma_format_idc = in.Ue();
        // Three flags are read as Exp-Golomb codes, and that is meant: a flag of 1 gives the value
        // 0, one of 0 takes further bits with it, and what follows shifts accordingly.
        if (chroma_format_idc == 3) {
            separate_colour_plane_flag = in.Ue();
        }
        bit_depth_luma_minus8 = in.Ue();
        bit_depth_chroma_minus8 = in.Ue();
        qpprime_y_zero_transform_bypass_flag = in.Ue();
        seq_scaling_matrix_present_flag = in.Ue();
    }
    log2_max_frame_num_minus4 = in.Ue();
    pic_order_cnt_type = in.Ue();
    if (pic_order_cnt_type == 0) {
        log2_max_pic_order_cnt_lsb_minus4 = in.Ue();
    }
    max_num_ref_frames = in.Ue();
    gaps_in_frame_num_value_allowed_flag = in.Flag();
    pic_width_in_mbs_minus1 = in.Ue();
    pic_height_in_map_units_minus1 = in.Ue();
    frame_mbs_only_flag = in.Flag();
    if (frame_mbs_only_flag == 0) {
        mb_adaptive_frame_field_flag = in.Flag();
    }
    direct_8x8_inference_flag = in.Flag();
    frame_cropping_flag = in.Flag();
    if (frame_cropping_flag == 1) {
        frame_crop_left_offset = in.Ue();
        frame_crop_right_offset = in.Ue();
        frame_crop_top_offset = in.Ue();
        frame_crop_bottom_offset = in.Ue();
    }
    vui_parameters_present_flag = in.Flag();
}

// H.264, 6.2 and 7.4.2.1.1.
void CSPS::DeriveChroma() {
    if (chroma_format_idc == -1) {
        chroma_format_idc = 1;
    }
    if (profile_idc == 183) {
        chroma_format_idc = 0;
    }
    if (separate_colour_plane_flag == -1) {
        separate_colour_plane_flag = 0;
    }
    if (separate_colour_plane_flag == 0) {
        ChromaArrayType = chroma_format_idc;
    } else if (separate_colour_plane_flag == 1) {
        ChromaArrayType = 0;
    }
    if (bit_depth_luma_minus8 == -1) {
        bit_depth_luma_minus8 = 0;
    }
    if (IsWithin(bit_depth_luma_minus8, 0, 6)) {
        BitDepthY = 8 + bit_depth_luma_minus8;
        QpBdOffsetY = 6 * bit_depth_luma_minus8;
    }
    if (bit_depth_chroma_minus8 == -1) {
        bit_depth_chroma_minus8 = 0;
    }
    if (IsWithin(bit_depth_chroma_minus8, 0, 6)) {
        BitDepthC = 8 + bit_depth_chroma_minus8;
        QpBdOffsetC = 6 * bit_depth_chroma_minus8;
    }
    if (separate_colour_plane_flag == 0 && IsWithin(chroma_format_idc, 1, 3)) {
        SubWidthC = chroma_format_idc == 3 ? 1 : 2;
        SubHeightC = chroma_format_idc == 1 ? 2 : 1;
    }
    MbWidthC = 0;
    MbHeightC = 0;
    if (SubWidthC >= 1 && SubHeightC >= 1) {
        MbWidthC = 16 / SubWidthC;
        MbHeightC = 16 / SubHeightC;
    }
    RawMbBits = BitDepthY * 256 + 2 * MbWidthC * MbHeightC * BitDepthC;
}

void CSPS::DeriveSizes() {
    if (IsWithin(log2_max_frame_num_minus4, 0, 12)) {
        MaxFrameNum = 1 << (log2_max_frame_num_minus4 + 4);
    }
    if (IsWithin(log2_max_pic_order_cnt_lsb_minus4, 0, 12)) {
        MaxPicOrderCntLsb = 1 << (log2_max_pic_order_cnt_lsb_minus4 + 4);
    }
    PicWidthInMbs = WrapAdd(pic_width_in_mbs_minus1, 1);
    PicWidthInSamplesL = WrapMultiply(PicWidthInMbs, 16);
    PicWidthInSamplesC = WrapMultiply(PicWidthInMbs, MbWidthC);
    PicHeightInMapUnits = WrapAdd(pic_height_in_map_units_minus1, 1);
    PicSizeInMapUnits = WrapMultiply(PicWidthInMbs, PicHeightInMapUnits);
    FrameHeightInMbs = WrapMultiply(2 - frame_mbs_only_flag, PicHeightInMapUnits);
    if (mb_adaptive_frame_field_flag == -1) {
        mb_adaptive_frame_field_flag = 0;
    }
}

}  // namespace clipfix
