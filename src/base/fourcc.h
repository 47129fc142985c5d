#pragma once

#include <cstdint>
#include <string>

#include "base/bytes.h"

namespace clipfix {

// Four letters as the number that a big-endian read of them gives: FourCC("moov") compares equal
// to ReadBig32 of the bytes 'm' 'o' 'o' 'v'.
[[nodiscard]] constexpr std::uint32_t FourCC(const char (&letters)[5]) noexcept {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        value = (value << 8U) | static_cast<std::uint8_t>(letters[i]);
    }
    return value;
}

// The four letters of a code, for messages. A byte that does not print becomes '.'.
[[nodiscard]] std::string PrintableFourCC(std::uint32_t code);

}  // namespace clipfix
