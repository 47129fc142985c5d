#pragma once

#include <cstddef>
#include <cstdint>

#include "base/bytes.h"
#include "codec/h264_nal_types.h"
#include "codec/h265_nal_head.h"
#include "codec/h265_nal_types.h"

namespace clipfix {

// The refusals that need no more than a unit's length word and head. They end nearly every question
// that the scan of a damaged file asks, so they are the ones that must cost nothing; CNALU::Parse
// and BlockTest share them.

// Largest extent in bytes of units that carry no picture.
inline constexpr std::uint32_t kLargestSmallUnit = 800;
inline constexpr std::uint32_t kLargestUnspecifiedUnit = 1000;  // H.265, types 48 to 63
inline constexpr std::uint32_t kSmallestUnit265 = 7;

// The extent of a unit in the file, in bytes. Four bytes are read whatever the size of a length
// word is; that size only says where the head stands and how much is added. This is meant. The sum
// wraps: a length of 0xFFFFFFFF gives 3.
[[nodiscard]] constexpr std::uint32_t UnitSize(std::uint32_t lengthWord,
                                               std::uint32_t nalLengthSize) noexcept {
    return lengthWord + nalLengthSize;
}

// The head byte of an H.264 unit (H.264, 7.3.1).
struct NalHead264 {
    std::int32_t forbidden_zero_bit = 0;
    std::int32_t nal_ref_idc = 0;
    std::int32_t nal_unit_type = 0;

    [[nodiscard]] static constexpr NalHead264 From(std::uint8_t head) noexcept {
        return {head >> 7, (head >> 5) & 3, head & 0x1F};
    }
};

[[nodiscard]] constexpr bool IsBelievable(const NalHead264& head, std::uint32_t size) noexcept {
    if (head.forbidden_zero_bit != 0 || size == 0) {
        return false;
    }
    switch (head.nal_unit_type) {
        case kH264Slice:
            return true;
        case kH264IdrSlice:
            return head.nal_ref_idc != 0;
        case kH264Sps:
        case kH264Pps:
            return head.nal_ref_idc != 0 && size <= kLargestSmallUnit;
        case kH264Sei:
        case kH264AccessUnitDelimiter:
            return head.nal_ref_idc == 0 && size <= kLargestSmallUnit;
        default:
            return false;
    }
}

// Largest extent of an H.265 unit of the type, in bytes; 0 when units of the type are refused.
[[nodiscard]] constexpr std::uint32_t LargestUnit265(std::int32_t type) noexcept {
    if (IsH265Slice(type)) {
        return UINT32_MAX;
    }
    if ((type >= kH265Vps && type <= kH265EndOfSequence) || type == kH265PrefixSei ||
        type == kH265SuffixSei) {
        return kLargestSmallUnit;
    }
    return type >= kH265FirstUnspecified && type <= kH265LastType ? kLargestUnspecifiedUnit : 0;
}

// `layerId` is that of the reference's sequence parameter set.
[[nodiscard]] constexpr bool IsBelievable(const NalHead265& head, std::uint32_t size,
                                          std::int32_t layerId) noexcept {
    return head.forbidden_zero_bit == 0 && head.nuh_temporal_id_plus1 != 0 &&
           head.nuh_layer_id == layerId && size >= kSmallestUnit265 &&
           size <= LargestUnit265(head.nal_unit_type);
}

}  // namespace clipfix
