#include "literal/literal_codec.h"

#include "literal/literal_bits.h"

namespace clipfix::test {

namespace {

std::optional<CNALU> LiteralNalu264(ByteView bytes, std::uint32_t nalLengthSize,
                                    const ReferenceParameterSets& reference) {
    CNALU nalu;
    nalu.size = BigNumber(bytes, 0, 4) + nalLengthSize;
    const auto head = static_cast<std::int32_t>(BigNumber(bytes, nalLengthSize, 1));
    nalu.forbidden_zero_bit = head / 128;
    nalu.nal_ref_idc = head / 32 % 4;
    nalu.nal_unit_type = head % 32;
    const std::int32_t type = nalu.nal_unit_type;
    if (nalu.forbidden_zero_bit != 0) {
        return std::nullopt;
    }
    if (type != 1 && type != 5 && type != 6 && type != 7 && type != 8 && type != 9) {
        return std::nullopt;
    }
    if ((type == 5 || type == 7 || type == 8) && nalu.nal_ref_idc == 0) {
        return std::nullopt;
    }
    if ((type == 9 || type == 6) && nalu.nal_ref_idc != 0) {
        return std::nullopt;
    }
    if ((type == 9 || type == 6 || type == 7 || type == 8) && nalu.size > 800) {
        return std::nullopt;
    }
    if (nalu.size == 0) {
        return std::nullopt;
    }
    const ByteView behind = bytes.subspan(nalLengthSize + 1);
    if (type == 1 || type == 5) {
        if (reference.sps == nullptr || reference.pps == nullptr) {
            return std::nullopt;
        }
        const auto slice = LiteralSlice264(behind, nalu, *reference.sps, *reference.pps);
        if (!slice.accepted) {
            return std::nullopt;
        }
        nalu.payload = std::make_shared<const CSliceHeader>(slice.object);
        nalu.slice_type = slice.object.slice_type;
        nalu.first_mb_in_slice = slice.object.first_mb_in_slice;
        nalu.frame_num = slice.object.frame_num;
    } else if (type == 7) {
        const CSPS sps = LiteralSps264(behind);
        if (reference.sps == nullptr ||
            sps.seq_parameter_set_id != reference.sps->seq_parameter_set_id) {
            return std::nullopt;
        }
        nalu.payload = std::make_shared<const CSPS>(sps);
    } else if (type == 8) {
        nalu.payload = std::make_shared<const CPPS>(LiteralPps264(behind));
    }
    return nalu;
}

bool IsSlice265(std::int32_t type) {
    return (type >= 0 && type <= 9) || (type >= 16 && type <= 21);
}

bool IsListed265(std::int32_t type) {
    return IsSlice265(type) || (type >= 32 && type <= 36) || type == 39 || type == 40 ||
           (type >= 48 && type <= 63);
}

}  // namespace

std::optional<std::string_view> LiteralName265(std::int32_t type) {
    if (!IsListed265(type)) {
        return std::nullopt;
    }
    if (IsSlice265(type)) {
        return "Slice";
    }
    if (type >= 48 && type <= 62) {
        return "Unspecified";
    }
    switch (type) {
        case 32:
            return "VPS";
        case 33:
            return "SPS";
        case 34:
            return "PPS";
        case 35:
            return "AUD";
        case 39:
        case 40:
            return "SEI";
        default:
            return "";
    }
}

namespace {

std::optional<CNALU> LiteralNalu265(ByteView bytes, std::uint32_t nalLengthSize,
                                    const ReferenceParameterSets& reference) {
    if (reference.sps265 == nullptr || reference.pps265 == nullptr) {
        return std::nullopt;
    }
    const SPS_265& referenceSps = *reference.sps265;
    CNALU nalu;
    nalu.size = BigNumber(bytes, 0, 4) + nalLengthSize;
    const ByteView fromHead =
        nalLengthSize < bytes.size() ? bytes.subspan(nalLengthSize) : ByteView();
    const auto first = static_cast<std::int32_t>(BigNumber(fromHead, 0, 1));
    const auto second = static_cast<std::int32_t>(BigNumber(fromHead, 1, 1));
    nalu.forbidden_zero_bit = first / 128;
    nalu.nal_unit_type = first / 2 % 64;
    nalu.nuh_layer_id = first % 2 * 32 + second / 8;
    nalu.nuh_temporal_id_plus1 = second % 8;
    const std::int32_t type = nalu.nal_unit_type;
    if (nalu.forbidden_zero_bit != 0 || nalu.nuh_temporal_id_plus1 == 0 ||
        nalu.nuh_layer_id != referenceSps.nuh_layer_id) {
        return std::nullopt;
    }
    if (!IsListed265(type)) {
        return std::nullopt;
    }
    if (((type >= 32 && type <= 36) || type == 39 || type == 40) && nalu.size > 800) {
        return std::nullopt;
    }
    if (type >= 48 && type <= 63 && nalu.size > 1000) {
        return std::nullopt;
    }
    if (nalu.size < 7) {
        return std::nullopt;
    }
    if (IsSlice265(type)) {
        const auto slice =
            LiteralSlice265(fromHead.subspan(2), nalu, referenceSps, *reference.pps265);
        if (!slice.accepted) {
            return std::nullopt;
        }
        nalu.payload = std::make_shared<const SliceHeader_265>(slice.object);
        nalu.first_mb_in_slice = slice.object.first_slice_segment_in_pic_flag;
    } else if (type == 33) {
        const auto sps = LiteralSps265(fromHead, referenceSps.pic_width_in_luma_samples,
                                       referenceSps.pic_height_in_luma_samples);
        if (!sps.accepted ||
            sps.object.sps_seq_parameter_set_id != referenceSps.sps_seq_parameter_set_id) {
            return std::nullopt;
        }
        nalu.payload = std::make_shared<const SPS_265>(sps.object);
    } else if (type == 34) {
        nalu.payload =
            std::make_shared<const PPS_265>(LiteralPps265(fromHead, &referenceSps).object);
    } else if (type == 32) {
        nalu.payload = std::make_shared<const CVPS>(LiteralVps265(fromHead).object);
    }
    nalu.name = *LiteralName265(type);
    return nalu;
}

}  // namespace

std::optional<CNALU> LiteralNalu(ByteView bytes, std::uint32_t nalLengthSize,
                                 const ReferenceParameterSets& reference) {
    return reference.vps != nullptr ? LiteralNalu265(bytes, nalLengthSize, reference)
                                    : LiteralNalu264(bytes, nalLengthSize, reference);
}

}  // namespace clipfix::test
