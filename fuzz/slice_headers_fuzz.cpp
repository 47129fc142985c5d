// Reads any bytes as a slice header under any parameter sets: the sets first, as codec_sets.h
// tells, then the type of the unit and its reference count in a byte each, and the slice.

#include "codec/h264_slice_header.h"
#include "codec/h265_slice_header.h"
#include "codec_sets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace clipfix;
    using fuzz::Demand;
    fuzz::Input input(data, size);
    const fuzz::Reference reference(input);
    CNALU unit;
    unit.nal_unit_type = input.Byte() % 64;
    unit.nal_ref_idc = input.Byte() % 4;
    const ByteView bytes = input.Rest();
    if (reference.isH265) {
        SliceHeader_265 slice;
        if (slice.Parse(bytes, unit, reference.sps265, reference.pps265)) {
            Demand(slice.slice_pic_parameter_set_id >= 0 && slice.slice_pic_parameter_set_id <= 63);
            Demand(slice.slice_temporal_mvp_enabled_flag == -1);
            Demand(slice.dependent_slice_segment_flag == 0 || slice.slice_type == -1);
        }
        return 0;
    }
    CSliceHeader slice;
    if (slice.Parse(bytes, unit, reference.sps, reference.pps)) {
        Demand(unit.nal_unit_type == 1 || unit.nal_unit_type == 5);
        Demand(slice.slice_type >= 0 && slice.slice_type <= 9);
        Demand(slice.field_pic_flag != -1 || slice.PicHeightInMbs == -1);
    }
    return 0;
}
