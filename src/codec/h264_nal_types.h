#pragma once

#include <cstdint>

namespace clipfix {

// The values of nal_unit_type that this system believes (ITU-T H.264, table 7-1).
inline constexpr std::int32_t kH264Slice = 1;
inline constexpr std::int32_t kH264IdrSlice = 5;
inline constexpr std::int32_t kH264Sei = 6;
inline constexpr std::int32_t kH264Sps = 7;
inline constexpr std::int32_t kH264Pps = 8;
inline constexpr std::int32_t kH264AccessUnitDelimiter = 9;

// Whether a slice may have the type (H.264, table 7-6): 0 to 9, and in an IDR picture only I (2, 7)
// or SI (4, 9).
[[nodiscard]] constexpr bool IsH264SliceType(std::int32_t sliceType, bool isIdr) noexcept {
    if (sliceType < 0 || sliceType > 9) {
        return false;
    }
    return !isIdr || sliceType == 2 || sliceType == 4 || sliceType == 7 || sliceType == 9;
}

}  // namespace clipfix
