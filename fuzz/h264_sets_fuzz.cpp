// Reads any bytes as both H.264 parameter sets: of a record, and one byte later, as of a stream.

#include "codec/h264_pps.h"
#include "codec/h264_sps.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace clipfix;
    using fuzz::Demand;
    for (const std::size_t from : {std::size_t{0}, std::size_t{1}}) {
        const ByteView unit = SubView(ByteView(data, size), from);
        const CSPS sps(unit);
        Demand(sps.profile_idc == ByteAt(unit, 1) && sps.level_idc == ByteAt(unit, 3));
        Demand(sps.chroma_format_idc != -1 && sps.separate_colour_plane_flag != -1);
        Demand(sps.MbWidthC >= 0 && sps.MbWidthC <= 16);
        Demand(sps.MaxFrameNum == -1 || (sps.MaxFrameNum >= 16 && sps.MaxFrameNum <= 65536));
        const CPPS pps(unit);
        Demand(pps.weighted_bipred_idc >= 0 && pps.weighted_bipred_idc <= 3);
        Demand(pps.redundant_pic_cnt_present_flag != -1);
    }
    return 0;
}
