#pragma once

#include <cstdint>

#include "base/bytes.h"

namespace clipfix {

// An H.264 sequence parameter set (ITU-T H.264, 7.3.2.1.1), read along its simple part only:
// scaling lists, the fields of pic_order_cnt_type 1 and VUI are not followed, and what stands
// behind them is what the bit position gives. -1 means not read.
class CSPS {
  public:
    CSPS() = default;

    // Byte 0 of `unit` counts as the NAL header, and `profile_idc` is the byte at index 1. Bits
    // past the end of `unit` read as 0. Any bytes give an object.
    explicit CSPS(ByteView unit);

    std::int32_t profile_idc = -1;
    std::int32_t level_idc = -1;
    std::int32_t seq_parameter_set_id = -1;
    std::int32_t chroma_format_idc = -1;
    std::int32_t separate_colour_plane_flag = -1;
    std::int32_t bit_depth_luma_minus8 = -1;
    std::int32_t bit_depth_chroma_minus8 = -1;
    std::int32_t qpprime_y_zero_transform_bypass_flag = -1;
    std::int32_t seq_scaling_matrix_present_flag = -1;
    std::int32_t log2_max_frame_num_minus4 = -1;
    std::int32_t pic_order_cnt_type = -1;
    std::int32_t log2_max_pic_order_cnt_lsb_minus4 = -1;
    std::int32_t max_num_ref_frames = -1;
    std::int32_t gaps_in_frame_num_value_allowed_flag = -1;
    std::int32_t pic_width_in_mbs_minus1 = -1;
    std::int32_t pic_height_in_map_units_minus1 = -1;
    std::int32_t frame_mbs_only_flag = -1;
    std::int32_t mb_adaptive_frame_field_flag = -1;
    std::int32_t direct_8x8_inference_flag = -1;
    std::int32_t frame_cropping_flag = -1;
    std::int32_t frame_crop_left_offset = -1;
    std::int32_t frame_crop_right_offset = -1;
    std::int32_t frame_crop_top_offset = -1;
    std::int32_t frame_crop_bottom_offset = -1;
    std::int32_t vui_parameters_present_flag = -1;

    // Derived (H.264, 7.4.2.1.1); -1 where the rule of a value does not apply.
    std::int32_t ChromaArrayType = -1;
    std::int32_t BitDepthY = -1;
    std::int32_t QpBdOffsetY = -1;
    std::int32_t BitDepthC = -1;
    std::int32_t QpBdOffsetC = -1;
    std::int32_t SubWidthC = -1;
    std::int32_t SubHeightC = -1;
    std::int32_t MbWidthC = -1;
    std::int32_t MbHeightC = -1;
    std::int32_t RawMbBits = -1;
    std::int32_t MaxFrameNum = -1;
    std::int32_t MaxPicOrderCntLsb = -1;
    std::int32_t PicWidthInMbs = -1;
    std::int32_t PicWidthInSamplesL = -1;
    std::int32_t PicWidthInSamplesC = -1;
    std::int32_t PicHeightInMapUnits = -1;
    std::int32_t PicSizeInMapUnits = -1;
    std::int32_t FrameHeightInMbs = -1;

  private:
    void ReadFields(ByteView unit);
    void DeriveChroma();
    void DeriveSizes();
};

}  // namespace clipfix
