#include "literal/literal_bits.h"
#include "literal/literal_codec.h"

namespace clipfix::test {

namespace {

bool IsInProfileList(std::int32_t profile) {
    for (const std::int32_t listed : {100, 110, 122, 244, 44, 83, 86, 118, 128}) {
        if (profile == listed) {
            return true;
        }
    }
    return false;
}

void DeriveSps264(CSPS& s) {
    if (s.chroma_format_idc == -1) {
        s.chroma_format_idc = 1;
    }
    if (s.profile_idc == 183) {
        s.chroma_format_idc = 0;
    }
    if (s.separate_colour_plane_flag == -1) {
        s.separate_colour_plane_flag = 0;
    }
    if (s.separate_colour_plane_flag == 0) {
        s.ChromaArrayType = s.chroma_format_idc;
    } else if (s.separate_colour_plane_flag == 1) {
        s.ChromaArrayType = 0;
    }
    if (s.bit_depth_luma_minus8 == -1) {
        s.bit_depth_luma_minus8 = 0;
    }
    if (s.bit_depth_luma_minus8 >= 0 && s.bit_depth_luma_minus8 <= 6) {
        s.BitDepthY = 8 + s.bit_depth_luma_minus8;
        s.QpBdOffsetY = 6 * s.bit_depth_luma_minus8;
    }
    if (s.bit_depth_chroma_minus8 == -1) {
        s.bit_depth_chroma_minus8 = 0;
    }
    if (s.bit_depth_chroma_minus8 >= 0 && s.bit_depth_chroma_minus8 <= 6) {
        s.BitDepthC = 8 + s.bit_depth_chroma_minus8;
        s.QpBdOffsetC = 6 * s.bit_depth_chroma_minus8;
    }
    const std::int32_t idc = s.chroma_format_idc;
    const std::int32_t flag = s.separate_colour_plane_flag;
    if (idc == 0 && flag == 0) {
        s.SubWidthC = -1;
        s.SubHeightC = -1;
    } else if (idc == 1 && flag == 0) {
        s.SubWidthC = 2;
        s.SubHeightC = 2;
    } else if (idc == 2 && flag == 0) {
        s.SubWidthC = 2;
        s.SubHeightC = 1;
    } else if (idc == 3 && flag == 0) {
        s.SubWidthC = 1;
        s.SubHeightC = 1;
    } else if (idc == 3 && flag == 1) {
        s.SubWidthC = -1;
        s.SubHeightC = -1;
    }
    if (idc == 0 && flag == 1) {
        s.MbWidthC = 0;
        s.MbHeightC = 0;
    } else if (s.SubWidthC >= 1 && s.SubHeightC >= 1) {
        s.MbWidthC = 16 / s.SubWidthC;
        s.MbHeightC = 16 / s.SubHeightC;
    } else {
        s.MbWidthC = 0;
        s.MbHeightC = 0;
    }
    s.RawMbBits = s.BitDepthY * 256 + 2 * s.MbWidthC * s.MbHeightC * s.BitDepthC;
    if (s.log2_max_frame_num_minus4 >= 0 && s.log2_max_frame_num_minus4 <= 12) {
        s.MaxFrameNum = 1 << (s.log2_max_frame_num_minus4 + 4);
    }
    if (s.log2_max_pic_order_cnt_lsb_minus4 >= 0 && s.log2_max_pic_order_cnt_lsb_minus4 <= 12) {
        s.MaxPicOrderCntLsb = 1 << (s.log2_max_pic_order_cnt_lsb_minus4 + 4);
    }
    s.PicWidthInMbs = Wrapped(std::int64_t{s.pic_width_in_mbs_minus1} + 1);
    s.PicWidthInSamplesL = Wrapped(std::int64_t{s.PicWidthInMbs} * 16);
    s.PicWidthInSamplesC = Wrapped(std::int64_t{s.PicWidthInMbs} * s.MbWidthC);
    s.PicHeightInMapUnits = Wrapped(std::int64_t{s.pic_height_in_map_units_minus1} + 1);
    s.PicSizeInMapUnits = Wrapped(std::int64_t{s.PicWidthInMbs} * s.PicHeightInMapUnits);
    s.FrameHeightInMbs = Wrapped((std::int64_t{2} - s.frame_mbs_only_flag) * s.PicHeightInMapUnits);
    if (s.mb_adaptive_frame_field_flag == -1) {
        s.mb_adaptive_frame_field_flag = 0;
    }
}

}  // namespace

CSPS LiteralSps264(ByteView unit) {
    CSPS s;
    s.profile_idc = static_cast<std::int32_t>(BigNumber(unit, 1, 1));
    s.level_idc = static_cast<std::int32_t>(BigNumber(unit, 3, 1));
    LiteralBits bits(unit, 4);
    s.seq_parameter_set_id = bits.Ue();
    if (IsInProfileList(s.profile_idc)) {
        s.chroma_format_idc = bits.Ue();
        if (s.chroma_format_idc == 3) {
            s.separate_colour_plane_flag = bits.Ue();
        }
        s.bit_depth_luma_minus8 = bits.Ue();
        s.bit_depth_chroma_minus8 = bits.Ue();
        s.qpprime_y_zero_transform_bypass_flag = bits.Ue();
        s.seq_scaling_matrix_present_flag = bits.Ue();
    }
    s.log2_max_frame_num_minus4 = bits.Ue();
    s.pic_order_cnt_type = bits.Ue();
    if (s.pic_order_cnt_type == 0) {
        s.log2_max_pic_order_cnt_lsb_minus4 = bits.Ue();
    }
    s.max_num_ref_frames = bits.Ue();
    s.gaps_in_frame_num_value_allowed_flag = bits.F();
    s.pic_width_in_mbs_minus1 = bits.Ue();
    s.pic_height_in_map_units_minus1 = bits.Ue();
    s.frame_mbs_only_flag = bits.F();
    if (s.frame_mbs_only_flag == 0) {
        s.mb_adaptive_frame_field_flag = bits.F();
    }
    s.direct_8x8_inference_flag = bits.F();
    s.frame_cropping_flag = bits.F();
    if (s.frame_cropping_flag == 1) {
        s.frame_crop_left_offset = bits.Ue();
        s.frame_crop_right_offset = bits.Ue();
        s.frame_crop_top_offset = bits.Ue();
        s.frame_crop_bottom_offset = bits.Ue();
    }
    s.vui_parameters_present_flag = bits.F();
    DeriveSps264(s);
    return s;
}

CPPS LiteralPps264(ByteView unit) {
    CPPS p;
    LiteralBits bits(unit, 1);
    p.pic_parameter_set_id = bits.Ue();
    p.seq_parameter_set_id = bits.Ue();
    p.entropy_coding_mode_flag = bits.F();
    p.bottom_field_pic_order_in_frame_present_flag = bits.F();
    p.num_slice_groups_minus1 = bits.Ue();
    p.num_ref_idx_l0_default_active_minus1 = bits.Ue();
    p.num_ref_idx_l1_default_active_minus1 = bits.Ue();
    p.weighted_pred_flag = bits.F();
    const std::int32_t high = bits.F();
    const std::int32_t low = bits.F();
    p.weighted_bipred_idc = high * 2 + low;
    p.pic_init_qp_minus26 = bits.Se();
    p.pic_init_qs_minus26 = bits.Se();
    p.chroma_qp_index_offset = bits.Se();
    p.deblocking_filter_control_present_flag = bits.F();
    p.constrained_intra_pred_flag = bits.F();
    p.redundant_pic_cnt_present_flag = bits.F();
    return p;
}

LiteralParse<CSliceHeader> LiteralSlice264(ByteView bytes, const CNALU& nalu, const CSPS& sps,
                                           const CPPS& pps) {
    LiteralParse<CSliceHeader> result;
    CSliceHeader& h = result.object;
    if (nalu.nal_unit_type != 1 && nalu.nal_unit_type != 5) {
        result.accepted = false;
        return result;
    }
    LiteralBits bits(bytes, 0);
    h.first_mb_in_slice = bits.Ue();
    h.slice_type = bits.Ue();
    if (h.slice_type < 0 || h.slice_type > 9) {
        result.accepted = false;
        return result;
    }
    if (nalu.nal_unit_type == 5 && h.slice_type != 2 && h.slice_type != 4 && h.slice_type != 7 &&
        h.slice_type != 9) {
        result.accepted = false;
        return result;
    }
    h.pic_parameter_set_id = bits.Ue();
    if (sps.separate_colour_plane_flag != 0 && sps.separate_colour_plane_flag != -1) {
        h.colour_plane_id = bits.U(2);
    }
    h.frame_num = bits.U(Wrapped(std::int64_t{sps.log2_max_frame_num_minus4} + 4));
    if (bits.AtEnd()) {
        return result;
    }
    if (sps.frame_mbs_only_flag == 0) {
        h.field_pic_flag = bits.F();
        if (h.field_pic_flag == 1) {
            h.bottom_field_flag = bits.F();
        }
    }
    if (nalu.nal_unit_type == 5) {
        h.idr_pic_id = bits.Ue();
    }
    if (sps.pic_order_cnt_type == 0) {
        h.pic_order_cnt_lsb =
            bits.U(Wrapped(std::int64_t{sps.log2_max_pic_order_cnt_lsb_minus4} + 4));
        if (pps.bottom_field_pic_order_in_frame_present_flag == 1 && h.field_pic_flag == 0) {
            h.delta_pic_order_cnt_bottom = bits.Se();
        }
    }
    if (nalu.nal_ref_idc != 0 && nalu.nal_unit_type == 5) {
        h.no_output_of_prior_pics_flag = bits.F();
        h.long_term_reference_flag = bits.F();
    }
    h.slice_qp_delta = bits.Se();
    if (h.field_pic_flag == -1) {
        h.field_pic_flag = 0;
    }
    if (h.bottom_field_flag == -1) {
        h.bottom_field_flag = 0;
    }
    h.MbaffFrameFlag = sps.separate_colour_plane_flag != 0 && h.field_pic_flag == 0 ? 1 : 0;
    h.PicHeightInMbs = sps.FrameHeightInMbs / (h.field_pic_flag + 1);
    h.PicHeightInSamplesL = Wrapped(std::int64_t{h.PicHeightInMbs} * 16);
    h.PicHeightInSamplesC = Wrapped(std::int64_t{h.PicHeightInMbs} * sps.MbHeightC);
    h.PicSizeInMbs = Wrapped(std::int64_t{h.PicHeightInMbs} * sps.PicWidthInMbs);
    if (h.field_pic_flag == 0) {
        h.MaxPicNum = sps.MaxFrameNum;
        h.CurrPicNum = h.frame_num;
    } else {
        h.MaxPicNum = Wrapped(std::int64_t{2} * sps.MaxFrameNum);
        h.CurrPicNum = Wrapped(std::int64_t{2} * h.frame_num + 1);
    }
    return result;
}

}  // namespace clipfix::test
