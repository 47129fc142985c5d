#include "codec/nalu.h"

#include "codec/h264_pps.h"
#include "codec/h264_slice_header.h"
#include "codec/h264_sps.h"
#include "codec/h265_pps.h"
#include "codec/h265_slice_header.h"
#include "codec/h265_sps.h"
#include "codec/h265_vps.h"
#include "codec/nal_head_tests.h"

namespace clipfix {

namespace {

// H.264 units. `body` is what stands behind the head byte.

std::optional<CNALU> WithSlice264(CNALU unit, ByteView body,
                                  const ReferenceParameterSets& reference) {
    if (reference.sps == nullptr || reference.pps == nullptr) {
        return std::nullopt;
    }
    CSliceHeader slice;
    if (!slice.Parse(body, unit, *reference.sps, *reference.pps)) {
        return std::nullopt;
    }
    unit.slice_type = slice.slice_type;
    unit.first_mb_in_slice = slice.first_mb_in_slice;
    unit.frame_num = slice.frame_num;
    unit.payload = std::make_shared<const CSliceHeader>(slice);
    return unit;
}

// Both kinds of set count byte positions from the head byte, and here they get the bytes behind it:
// a set from the stream is read one byte later than one from a record, and the id compared comes
// from that shifted place. This is meant; it makes most sets in the stream end a run.

std::optional<CNALU> WithSps264(CNALU unit, ByteView body,
                                const ReferenceParameterSets& reference) {
    if (reference.sps == nullptr) {
        return std::nullopt;
    }
    const CSPS sps(body);
    if (sps.seq_parameter_set_id != reference.sps->seq_parameter_set_id) {
        return std::nullopt;
    }
    unit.payload = std::make_shared<const CSPS>(sps);
    return unit;
}

CNALU WithPps264(CNALU unit, ByteView body) {
    unit.payload = std::make_shared<const CPPS>(body);
    return unit;
}

std::optional<CNALU> ParseH264(ByteView bytes, std::uint32_t nalLengthSize,
                               const ReferenceParameterSets& reference) {
    const NalHead264 head = NalHead264::From(ByteAt(bytes, nalLengthSize));
    const std::uint32_t size = UnitSize(ReadBig32(bytes, 0), nalLengthSize);
    if (!IsBelievable(head, size)) {
        return std::nullopt;
    }
    CNALU unit;
    unit.forbidden_zero_bit = head.forbidden_zero_bit;
    unit.nal_ref_idc = head.nal_ref_idc;
    unit.nal_unit_type = head.nal_unit_type;
    unit.size = size;
    const ByteView body = SubView(bytes, std::size_t{nalLengthSize} + 1);
    switch (head.nal_unit_type) {
        case kH264Slice:
        case kH264IdrSlice:
            return WithSlice264(std::move(unit), body, reference);
        case kH264Sps:
            return WithSps264(std::move(unit), body, reference);
        case kH264Pps:
            return WithPps264(std::move(unit), body);
        default:
            return unit;
    }
}

// H.265 units. `whole` begins with the two bytes of the head.

std::optional<CNALU> WithSlice265(CNALU unit, ByteView whole,
                                  const ReferenceParameterSets& reference) {
    SliceHeader_265 slice;
    if (!slice.Parse(SubView(whole, 2), unit, *reference.sps265, *reference.pps265)) {
        return std::nullopt;
    }
    unit.first_mb_in_slice = slice.first_slice_segment_in_pic_flag;
    unit.payload = std::make_shared<const SliceHeader_265>(slice);
    return unit;
}

std::optional<CNALU> WithSps265(CNALU unit, ByteView whole, const SPS_265& reference) {
    auto sps = std::make_shared<SPS_265>();
    if (!sps->Parse(whole, reference.pic_width_in_luma_samples,
                    reference.pic_height_in_luma_samples) ||
        sps->sps_seq_parameter_set_id != reference.sps_seq_parameter_set_id) {
        return std::nullopt;
    }
    unit.payload = std::shared_ptr<const SPS_265>(std::move(sps));
    return unit;
}

// What these two say of themselves is not heeded: the unit stands in any case.

CNALU WithPps265(CNALU unit, ByteView whole, const SPS_265& reference) {
    auto pps = std::make_shared<PPS_265>();
    static_cast<void>(pps->Parse(whole, &reference));
    unit.payload = std::shared_ptr<const PPS_265>(std::move(pps));
    return unit;
}

CNALU WithVps265(CNALU unit, ByteView whole) {
    auto vps = std::make_shared<CVPS>();
    static_cast<void>(vps->Parse(whole));
    unit.payload = std::shared_ptr<const CVPS>(std::move(vps));
    return unit;
}

std::optional<CNALU> ParseH265(ByteView bytes, std::uint32_t nalLengthSize,
                               const ReferenceParameterSets& reference) {
    if (reference.sps265 == nullptr || reference.pps265 == nullptr) {
        return std::nullopt;
    }
    const ByteView whole = SubView(bytes, nalLengthSize);
    const NalHead265 head = NalHead265::From(whole);
    const std::uint32_t size = UnitSize(ReadBig32(bytes, 0), nalLengthSize);
    if (!IsBelievable(head, size, reference.sps265->nuh_layer_id)) {
        return std::nullopt;
    }
    CNALU unit;
    unit.forbidden_zero_bit = head.forbidden_zero_bit;
    unit.nal_unit_type = head.nal_unit_type;
    unit.nuh_layer_id = head.nuh_layer_id;
    unit.nuh_temporal_id_plus1 = head.nuh_temporal_id_plus1;
    unit.size = size;
    unit.name = CNALU::NameOfType265(head.nal_unit_type).value_or(std::string_view());
    if (IsH265Slice(head.nal_unit_type)) {
        return WithSlice265(std::move(unit), whole, reference);
    }
    switch (head.nal_unit_type) {
        case kH265Sps:
            return WithSps265(std::move(unit), whole, *reference.sps265);
        case kH265Pps:
            return WithPps265(std::move(unit), whole, *reference.sps265);
        case kH265Vps:
            return WithVps265(std::move(unit), whole);
        default:
            return unit;
    }
}

}  // namespace

std::optional<std::string_view> CNALU::NameOfType265(std::int32_t nalUnitType) noexcept {
    if (IsH265Slice(nalUnitType)) {
        return "Slice";
    }
    switch (nalUnitType) {
        case kH265Vps:
            return "VPS";
        case kH265Sps:
            return "SPS";
        case kH265Pps:
            return "PPS";
        case kH265AccessUnitDelimiter:
            return "AUD";
        case kH265PrefixSei:
        case kH265SuffixSei:
            return "SEI";
        case kH265EndOfSequence:
        case kH265LastType:
            return "";
        default:
            break;
    }
    if (nalUnitType >= kH265FirstUnspecified && nalUnitType < kH265LastType) {
        return "Unspecified";
    }
    return std::nullopt;
}

std::optional<CNALU> CNALU::Parse(ByteView bytes, std::uint32_t nalLengthSize,
                                  const ReferenceParameterSets& reference) {
    return reference.IsH265() ? ParseH265(bytes, nalLengthSize, reference)
                              : ParseH264(bytes, nalLengthSize, reference);
}

}  // namespace clipfix
