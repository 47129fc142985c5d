#pragma once

#include <cstdint>

#include "base/bytes.h"

namespace clipfix {

// The two bytes at the head of every H.265 unit (ITU-T H.265, 7.3.1.2). -1 means not read.
struct NalHead265 {
    std::int32_t forbidden_zero_bit = -1;
    std::int32_t nal_unit_type = -1;
    std::int32_t nuh_layer_id = -1;
    std::int32_t nuh_temporal_id_plus1 = -1;

    [[nodiscard]] static constexpr NalHead265 From(std::uint8_t first,
                                                   std::uint8_t second) noexcept {
        return {first >> 7, (first >> 1) & 0x3F, ((first & 1) << 5) | (second >> 3), second & 7};
    }
    [[nodiscard]] static constexpr NalHead265 From(ByteView unit) noexcept {
        return From(ByteAt(unit, 0), ByteAt(unit, 1));
    }
};

}  // namespace clipfix
