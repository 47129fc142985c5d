#pragma once

#include "codec/h264_pps.h"
#include "codec/h264_sps.h"
#include "codec/h265_pps.h"
#include "codec/h265_sps.h"
#include "codec/h265_vps.h"
#include "codec/nalu.h"

namespace clipfix::test {

// Parameter sets of a healthy file, field by field: the plainest stream of frames of each codec.
// A test changes what it is about.
struct ReferenceSets {
    CSPS sps;
    CPPS pps;
    CVPS vps;
    SPS_265 sps265;
    PPS_265 pps265;

    ReferenceSets() {
        sps.seq_parameter_set_id = 0;
        sps.separate_colour_plane_flag = 0;
        sps.log2_max_frame_num_minus4 = 0;
        sps.MaxFrameNum = 16;
        sps.pic_order_cnt_type = 0;
        sps.log2_max_pic_order_cnt_lsb_minus4 = 2;
        sps.frame_mbs_only_flag = 1;
        sps.FrameHeightInMbs = 68;
        sps.PicWidthInMbs = 120;
        sps.MbHeightC = 8;
        pps.bottom_field_pic_order_in_frame_present_flag = 0;

        sps265.nuh_layer_id = 0;
        sps265.sps_seq_parameter_set_id = 0;
        sps265.chroma_format_idc = 1;
        sps265.separate_colour_plane_flag = 0;
        sps265.chromaArrayType = 1;
        sps265.pic_width_in_luma_samples = 1920;
        sps265.pic_height_in_luma_samples = 1080;
        sps265.log2_max_pic_order_cnt_lsb_minus4 = 4;
        sps265.sample_adaptive_offset_enabled_flag = 0;
        sps265.num_short_term_ref_pic_sets = 0;
        sps265.long_term_ref_pics_present_flag = 0;
        sps265.picWidthInMinCbs = 240;
        sps265.picSizeInMinCbs = 240 * 135;
        sps265.picHeightRemainder = 56;
        pps265.dependent_slice_segments_enabled_flag = 0;
        pps265.output_flag_present_flag = 0;
        pps265.num_extra_slice_header_bits = 0;
        pps265.cabac_init_present_flag = 0;
        pps265.tiles_enabled_flag = 0;
        pps265.entropy_coding_sync_enabled_flag = 0;
        pps265.pps_slice_chroma_qp_offsets_present_flag = 0;
        pps265.deblocking_filter_override_enabled_flag = -1;
        pps265.pps_loop_filter_across_slices_enabled_flag = 0;
        pps265.slice_segment_header_extension_present_flag = 0;
    }

    // Views of this object: it must outlive them.
    [[nodiscard]] ReferenceParameterSets H264() const {
        return {&sps, &pps, nullptr, nullptr, nullptr};
    }
    [[nodiscard]] ReferenceParameterSets H265() const {
        return {nullptr, nullptr, &vps, &sps265, &pps265};
    }
};

// The head of a unit, for the parsers that are told it.
inline CNALU UnitOfType(std::int32_t nalUnitType, std::int32_t nalRefIdc = 1) {
    CNALU unit;
    unit.nal_unit_type = nalUnitType;
    unit.nal_ref_idc = nalRefIdc;
    return unit;
}

}  // namespace clipfix::test
