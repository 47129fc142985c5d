#pragma once

#include <cmath>
#include <cstdint>

namespace clipfix {

// A quotient of the movie tree as a number of 32 bits: cut toward zero to a 64-bit number, of
// which the low half stays. A quotient outside the 64-bit range, and 0 / 0, give 0.
[[nodiscard]] inline std::uint32_t TruncateToLow32(double quotient) noexcept {
    constexpr double kTwoTo63 = 9223372036854775808.0;
    if (!(std::fabs(quotient) < kTwoTo63)) {
        return 0;
    }
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(quotient));
}

}  // namespace clipfix
