#pragma once

#include <cstddef>
#include <cstdint>

#include "base/bytes.h"

namespace clipfix::test {

// What the literal models of the codec are made of: numbers that wrap, and bits one by one.

// Arithmetic of 32 bits that wraps.
inline std::int32_t Wrapped(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value)));
}

// The big-endian number of `count` bytes; bytes past the end are 0.
inline std::uint32_t BigNumber(ByteView bytes, std::size_t at, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        value = value * 256 + (at + i < bytes.size() ? bytes[at + i] : 0);
    }
    return value;
}

// Bits from the top of each byte; bits past the end are 0, and a ue(v) ends there.
class LiteralBits {
  public:
    LiteralBits(ByteView bytes, std::size_t place) : bytePosition(place), bytes_(bytes) {}

    std::size_t bytePosition;
    unsigned bitPosition = 0;

    bool AtEnd() const { return bytePosition >= bytes_.size(); }

    std::int32_t F() {
        const std::int32_t bit = AtEnd() ? 0 : (bytes_[bytePosition] >> (7 - bitPosition)) & 1;
        ++bitPosition;
        if (bitPosition == 8) {
            ++bytePosition;
            bitPosition = 0;
        }
        return bit;
    }

    std::int32_t U(std::int32_t n) {
        std::uint32_t value = 0;
        for (std::int32_t i = 0; i < n; ++i) {
            if (AtEnd()) {
                const std::uint64_t rest = static_cast<std::uint64_t>(n - i) + bitPosition;
                bytePosition += rest / 8;
                bitPosition = static_cast<unsigned>(rest % 8);
                break;
            }
            value += static_cast<std::uint32_t>(F())
                     << (static_cast<std::uint32_t>(n - 1 - i) & 31U);
        }
        return static_cast<std::int32_t>(value);
    }

    std::int32_t Ue() { return static_cast<std::int32_t>(UnsignedUe()); }

    std::int32_t Se() {
        const std::uint64_t k = UnsignedUe();
        const auto half = static_cast<std::int64_t>((k + 1) / 2);
        return Wrapped(k % 2 == 1 ? half : -half);
    }

  private:
    std::uint32_t UnsignedUe() {
        std::uint32_t count = 0;
        while (!AtEnd()) {
            if (F() == 1) {
                break;
            }
            ++count;
        }
        std::uint32_t value = 0;
        for (std::uint32_t i = 0; i < count; ++i) {
            if (AtEnd()) {
                break;
            }
            value += static_cast<std::uint32_t>(F()) << ((count - 1 - i) & 31U);
        }
        return (1U << (count & 31U)) - 1 + value;
    }

    ByteView bytes_;
};

}  // namespace clipfix::test
