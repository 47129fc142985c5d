#pragma once

#include <cstdint>

#include "base/bytes.h"

namespace clipfix {

class CNALU;
class CPPS;
class CSPS;

// The head of an H.264 slice (ITU-T H.264, 7.3.3), read as far as a slice at a random place in a
// broken file gives it. -1 means not read.
class CSliceHeader {
  public:
    // Reads from `bytes`, which begin behind the NAL header of `nalu` and end where the file's
    // bytes do. False when they cannot be a slice; the fields then hold what was read so far. Bytes
    // that end early do not refuse: the header holds what it has.
    [[nodiscard]] bool Parse(ByteView bytes, const CNALU& nalu, const CSPS& sps, const CPPS& pps);

    std::int32_t first_mb_in_slice = -1;
    std::int32_t slice_type = -1;
    std::int32_t pic_parameter_set_id = -1;
    std::int32_t frame_num = -1;
    std::int32_t field_pic_flag = -1;
    std::int32_t bottom_field_flag = -1;
    std::int32_t colour_plane_id = -1;
    std::int32_t idr_pic_id = -1;
    std::int32_t pic_order_cnt_lsb = -1;
    std::int32_t delta_pic_order_cnt_bottom = -1;
    std::int32_t slice_qp_delta = -1;
    std::int32_t no_output_of_prior_pics_flag = -1;
    std::int32_t long_term_reference_flag = -1;

    // Derived, only of a header whose bytes reached behind `frame_num`.
    std::int32_t MbaffFrameFlag = -1;
    std::int32_t PicHeightInMbs = -1;
    std::int32_t PicHeightInSamplesL = -1;
    std::int32_t PicHeightInSamplesC = -1;
    std::int32_t PicSizeInMbs = -1;
    std::int32_t MaxPicNum = -1;
    std::int32_t CurrPicNum = -1;

  private:
    void Derive(const CSPS& sps);
};

}  // namespace clipfix
