#include "codec/h264_slice_header.h"

#include "codec/h264_nal_types.h"
#include "codec/h264_pps.h"
#include "codec/h264_sps.h"
#include "codec/nalu.h"
#include "codec/syntax_reader.h"

namespace clipfix {

// H.264, 7.3.3, up to the picture order count. Everything between it and `slice_qp_delta` is
// passed over as if it were not there, so that this last value is right in the plainest case only.
bool CSliceHeader::Parse(ByteView bytes, const CNALU& nalu, const CSPS& sps, const CPPS& pps) {
    *this = CSliceHeader{};
    const bool isIdr = nalu.nal_unit_type == kH264IdrSlice;
    if (!isIdr && nalu.nal_unit_type != kH264Slice) {
        return false;
    }
    SyntaxReader in(bytes, 0, bytes.size());
    first_mb_in_slice = in.Ue();
    slice_type = in.Ue();
    if (!IsH264SliceType(slice_type, isIdr)) {
        return false;
    }
    // The id is not compared with the reference's, and that is meant.
    pic_parameter_set_id = in.Ue();
    if (sps.separate_colour_plane_flag != 0 && sps.separate_colour_plane_flag != -1) {
        colour_plane_id = in.U(2);
    }
    frame_num = in.U(WrapAdd(sps.log2_max_frame_num_minus4, 4));
    if (in.BytePosition() >= bytes.size()) {
        return true;
    }
    if (sps.frame_mbs_only_flag == 0) {
        field_pic_flag = in.Flag();
        if (field_pic_flag == 1) {
            bottom_field_flag = in.Flag();
        }
    }
    if (isIdr) {
        idr_pic_id = in.Ue();
    }
    if (sps.pic_order_cnt_type == 0) {
        pic_order_cnt_lsb = in.U(WrapAdd(sps.log2_max_pic_order_cnt_lsb_minus4, 4));
        // A flag that was not read is still -1 here, not yet 0, and so a stream of frames only
        // never reads this value. That is meant.
        if (pps.bottom_field_pic_order_in_frame_present_flag == 1 && field_pic_flag == 0) {
            delta_pic_order_cnt_bottom = in.Se();
        }
    }
    if (isIdr && nalu.nal_ref_idc != 0) {
        no_output_of_prior_pics_flag = in.Flag();
        long_term_reference_flag = in.Flag();
    }
    slice_qp_delta = in.Se();
    Derive(sps);
    return true;
}

void CSliceHeader::Derive(const CSPS& sps) {
    if (field_pic_flag == -1) {
        field_pic_flag = 0;
    }
    if (bottom_field_flag == -1) {
        bottom_field_flag = 0;
    }
    // The standard asks for mb_adaptive_frame_field_flag here; this flag is meant.
    MbaffFrameFlag = sps.separate_colour_plane_flag != 0 && field_pic_flag == 0 ? 1 : 0;
    PicHeightInMbs = sps.FrameHeightInMbs / (field_pic_flag + 1);
    PicHeightInSamplesL = WrapMultiply(PicHeightInMbs, 16);
    PicHeightInSamplesC = WrapMultiply(PicHeightInMbs, sps.MbHeightC);
    PicSizeInMbs = WrapMultiply(PicHeightInMbs, sps.PicWidthInMbs);
    if (field_pic_flag == 0) {
        MaxPicNum = sps.MaxFrameNum;
        CurrPicNum = frame_num;
    } else {
        MaxPicNum = WrapMultiply(2, sps.MaxFrameNum);
        CurrPicNum = WrapAdd(WrapMultiply(2, frame_num), 1);
    }
}

}  // namespace clipfix
