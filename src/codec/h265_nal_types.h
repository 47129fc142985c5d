#pragma once

#include <cstdint>

namespace clipfix {

// Ranges and values of nal_unit_type (ITU-T H.265, table 7-1).
inline constexpr std::int32_t kH265IdrWithRadl = 19;
inline constexpr std::int32_t kH265IdrNoLeading = 20;
inline constexpr std::int32_t kH265Vps = 32;
inline constexpr std::int32_t kH265Sps = 33;
inline constexpr std::int32_t kH265Pps = 34;
inline constexpr std::int32_t kH265AccessUnitDelimiter = 35;
inline constexpr std::int32_t kH265EndOfSequence = 36;
inline constexpr std::int32_t kH265PrefixSei = 39;
inline constexpr std::int32_t kH265SuffixSei = 40;
inline constexpr std::int32_t kH265FirstUnspecified = 48;
inline constexpr std::int32_t kH265LastType = 63;

inline constexpr std::int32_t kH265LastPpsId = 63;

[[nodiscard]] constexpr bool IsH265Slice(std::int32_t type) noexcept {
    return (type >= 0 && type <= 9) || (type >= 16 && type <= 21);
}
// Types that carry no_output_of_prior_pics_flag: 16 to 23, the reserved ones included.
[[nodiscard]] constexpr bool IsH265RandomAccess(std::int32_t type) noexcept {
    return type >= 16 && type <= 23;
}
[[nodiscard]] constexpr bool IsH265Idr(std::int32_t type) noexcept {
    return type == kH265IdrWithRadl || type == kH265IdrNoLeading;
}

}  // namespace clipfix
