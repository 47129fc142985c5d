// Walks any bytes as length-prefixed units under any reference: the parameter sets first, as
// codec_sets.h tells, and then the stream. The slice parsers are reached through it.

#include "codec/h264_slice_header.h"
#include "codec/h265_slice_header.h"
#include "codec/nalu.h"
#include "codec_sets.h"

namespace {

using namespace clipfix;
using fuzz::Demand;

void Check264(const CNALU& unit) {
    Demand(unit.name.empty() && unit.size != 0);
    const bool isSlice = unit.nal_unit_type == 1 || unit.nal_unit_type == 5;
    const auto* slice = std::get_if<std::shared_ptr<const CSliceHeader>>(&unit.payload);
    Demand(isSlice == (slice != nullptr));
    if (slice != nullptr) {
        Demand(*slice && unit.slice_type >= 0 && unit.slice_type <= 9);
        Demand((*slice)->frame_num == unit.frame_num);
    } else {
        Demand(unit.size <= 800 && unit.first_mb_in_slice == -1);
    }
}

void Check265(const CNALU& unit) {
    Demand(unit.size >= 7 && unit.nuh_temporal_id_plus1 > 0);
    Demand(CNALU::NameOfType265(unit.nal_unit_type) == unit.name);
    const auto* slice = std::get_if<std::shared_ptr<const SliceHeader_265>>(&unit.payload);
    Demand((unit.name == "Slice") == (slice != nullptr));
    if (slice != nullptr) {
        Demand((*slice)->slice_pic_parameter_set_id >= 0);
        Demand((*slice)->slice_pic_parameter_set_id <= 63);
        Demand((*slice)->slice_segment_header_extension_length <= 256);
        Demand(unit.first_mb_in_slice >= 0);
    } else {
        Demand(unit.size <= 1000 && unit.first_mb_in_slice == -1);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const fuzz::Reference reference(input);
    const ByteView stream = input.Rest();
    std::size_t at = 0;
    while (at < stream.size()) {
        // The whole rest as well: nothing depends on the length of a probe.
        static_cast<void>(
            CNALU::Parse(SubView(stream, at), reference.lengthSize, reference.View()));
        const auto unit = CNALU::Parse(SubView(stream, at, CNALU::kProbeLength),
                                       reference.lengthSize, reference.View());
        if (!unit) {
            ++at;
            continue;
        }
        Demand(unit->size == ReadBig32(stream, at) + reference.lengthSize);
        if (reference.isH265) {
            Check265(*unit);
        } else {
            Check264(*unit);
        }
        at += unit->size;
    }
    return 0;
}
