#pragma once

#include <cstdint>

#include "base/bytes.h"

namespace clipfix::test {

// Writes bits, first bit highest in its byte, with the Exp-Golomb codes of ITU-T H.264, 9.1.
// The last byte is filled with zero bits.
class BitWriter {
  public:
    BitWriter& Bit(unsigned bit) { return Bits(bit, 1); }

    // The low `count` bits of `value`, highest first.
    BitWriter& Bits(std::uint64_t value, unsigned count) {
        for (unsigned i = count; i-- > 0;) {
            if (used_ == 0) {
                bytes_.push_back(0);
            }
            const auto bit = static_cast<std::uint8_t>((value >> i) & 1U);
            bytes_.back() = static_cast<std::uint8_t>(bytes_.back() | (bit << (7U - used_)));
            used_ = (used_ + 1) % 8;
        }
        return *this;
    }

    BitWriter& Ue(std::uint32_t value) {
        const std::uint64_t code = static_cast<std::uint64_t>(value) + 1;
        unsigned length = 0;
        while ((code >> length) > 1) {
            ++length;
        }
        return Bits(0, length).Bits(code, length + 1);
    }

    BitWriter& Se(std::int32_t value) {
        const std::int64_t wide = value;
        return Ue(static_cast<std::uint32_t>(wide > 0 ? 2 * wide - 1 : -2 * wide));
    }

    [[nodiscard]] const ByteVector& View() const { return bytes_; }

  private:
    ByteVector bytes_;
    unsigned used_ = 0;  // bits taken of the last byte; 0 when it is full or there is none
};

}  // namespace clipfix::test
