#pragma once

#include <cmath>
#include <cstdint>

#include "base/bit_reader.h"

namespace clipfix {

// The bit reader in the terms of the syntax tables of ITU-T H.264 and H.265: each value as the
// signed 32-bit number that the syntax objects keep, wrapped where it is larger.
class SyntaxReader : public BitReader {
  public:
    using BitReader::BitReader;

    [[nodiscard]] std::int32_t Flag() noexcept { return static_cast<std::int32_t>(ReadBit()); }
    [[nodiscard]] std::int32_t U(std::int32_t count) noexcept {
        return static_cast<std::int32_t>(ReadBits(count));
    }
    [[nodiscard]] std::int32_t Ue() noexcept { return static_cast<std::int32_t>(ReadUe()); }
    [[nodiscard]] std::int32_t Se() noexcept { return ReadSe(); }

    // For values that nothing keeps.
    void SkipBits(std::int32_t count) noexcept { static_cast<void>(ReadBits(count)); }
    void SkipUe() noexcept { static_cast<void>(ReadUe()); }
};

// Arithmetic on values from a stream wraps at 32 bits: no number there can be too large for it.
[[nodiscard]] constexpr std::int32_t WrapAdd(std::int32_t a, std::int32_t b) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
[[nodiscard]] constexpr std::int32_t WrapMultiply(std::int32_t a, std::int32_t b) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}
[[nodiscard]] constexpr std::int32_t WrapShiftLeft(std::int32_t a, std::int32_t count) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a)
                                     << (static_cast<std::uint32_t>(count) & 31U));
}

}  // namespace clipfix
