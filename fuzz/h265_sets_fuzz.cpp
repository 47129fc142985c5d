// Reads any bytes as each of the three H.265 parameter sets. The input: the picture's width and
// height in two bytes each, and the unit.

#include "codec/h265_pps.h"
#include "codec/h265_sps.h"
#include "codec/h265_vps.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace clipfix;
    using fuzz::Demand;
    fuzz::Input input(data, size);
    const std::int32_t width = input.Big16();
    const std::int32_t height = input.Big16();
    const ByteView unit = input.Rest();

    CVPS vps;
    Demand(vps.Parse(unit) == (vps.vps_num_layer_sets_minus1 <= 1023));
    Demand(vps.vps_max_num_reorder_pics.size() <= 8);

    SPS_265 sps;
    const bool hasSps = sps.Parse(unit, width, height);
    if (hasSps) {
        Demand(width > 0 && height > 0);
        Demand(sps.pic_width_in_luma_samples / width == 1);
        Demand(sps.pic_height_in_luma_samples / height == 1);
        Demand(sps.sps_temporal_mvp_enabled_flag == -1);
    }
    SPS_265 again;
    Demand(again.Parse(unit, width, height) == hasSps);
    Demand(again.picSizeInMinCbs == sps.picSizeInMinCbs);

    PPS_265 alone;
    PPS_265 withSps;
    Demand(!alone.Parse(unit, nullptr) || withSps.Parse(unit, &sps));
    Demand(withSps.pps_slice_act_qp_offsets_present_flag == -1);
    return 0;
}
