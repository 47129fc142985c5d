#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "codec/h265_nal_head.h"

namespace clipfix {

// An H.265 video parameter set (ITU-T H.265, 7.3.2.1). `profile_tier_level` is not read but jumped
// over by a search, and nothing behind the number of layer sets is read. -1 means not read.
class CVPS : public NalHead265 {
  public:
    // Reads `unit`, which begins with its two-byte NAL head. False when it cannot be a parameter
    // set; the fields then hold what was read so far. Bits past the end read as 0.
    [[nodiscard]] bool Parse(ByteView unit);

    std::int32_t vps_video_parameter_set_id = -1;
    std::int32_t vps_base_layer_internal_flag = -1;
    std::int32_t vps_base_layer_available_flag = -1;
    std::int32_t vps_max_layers_minus1 = -1;
    std::int32_t vps_max_sub_layers_minus1 = -1;
    std::int32_t vps_temporal_id_nesting_flag = -1;
    std::int32_t vps_reserved_0xffff_16bits = -1;
    std::int32_t vps_sub_layer_ordering_info_present_flag = -1;
    // The low byte of each value, vps_max_sub_layers_minus1 + 1 of them (0 where none was read), or
    // empty when vps_base_layer_internal_flag is 0.
    ByteVector vps_max_dec_pic_buffering_minus1;
    ByteVector vps_max_num_reorder_pics;
    ByteVector vps_max_latency_increase_plus1;
    std::int32_t vps_max_layer_id = -1;
    std::int32_t vps_num_layer_sets_minus1 = -1;

    // Of the timing information, which is never read.
    std::int32_t vps_timing_info_present_flag = -1;
    std::int32_t vps_num_units_in_tick = -1;
    std::int32_t vps_time_scale = -1;
    std::int32_t vps_poc_proportional_to_timing_flag = -1;
    std::int32_t vps_num_ticks_poc_diff_one_minus1 = -1;
};

}  // namespace clipfix
