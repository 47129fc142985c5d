#pragma once

#include <cstddef>
#include <cstdint>

#include "base/bytes.h"

namespace clipfix {

// Reads bits from a view, first bit highest in its byte, with the Exp-Golomb codes of
// ITU-T H.264 (08/2021), 9.1. Bytes are taken as they stand; no emulation prevention byte is
// removed. The view must outlive the reader.
//
// The reader latches past the end: a bit that is not there reads as 0, the place still moves on,
// and HasOverrun() says so. No operation waits for a bit that will never come, and none is slower
// than the bytes it passes over.
class BitReader {
  public:
    // A limit that lies at the end of the bytes.
    static constexpr std::size_t kNoLimit = SIZE_MAX;

    // Starts at the first bit of byte `bytePosition`. An Exp-Golomb code ends at byte `codeLimit`
    // if its bits have not ended before; the end of the bytes ends it in any case. Fixed-length
    // reads do not heed the limit.
    explicit BitReader(ByteView bytes, std::size_t bytePosition = 0,
                       std::size_t codeLimit = kNoLimit) noexcept
        : bytes_(bytes),
          position_(static_cast<std::uint64_t>(bytePosition) * 8),
          codeEnd_(static_cast<std::uint64_t>(codeLimit < bytes.size() ? codeLimit : bytes.size()) *
                   8) {}

    [[nodiscard]] std::uint32_t ReadBit() noexcept {
        const std::size_t at = BytePosition();
        const std::uint32_t bit =
            at < bytes_.size() ? (std::uint32_t{bytes_[at]} >> (7U - BitPosition())) & 1U : 0U;
        ++position_;
        return bit;
    }

    // The next `count` bits, the first of them highest. With more than 32 the shift of each bit
    // wraps at 32 and the bits are added up. Nothing is read when `count` is 0 or less.
    [[nodiscard]] std::uint32_t ReadBits(std::int32_t count) noexcept;

    // ue(v). The shifts wrap at 32 in a code of more than 32 zero bits. A code that the limit cuts
    // short counts its missing bits as 0.
    [[nodiscard]] std::uint32_t ReadUe() noexcept;

    // se(v): of k = ue(v) it gives (k + 1) / 2, positive for an odd k and negative for an even one.
    [[nodiscard]] std::int32_t ReadSe() noexcept;

    // Moves to bit 0..7 of any byte, also past the end.
    void MoveTo(std::size_t bytePosition, unsigned bitPosition = 0) noexcept {
        position_ = static_cast<std::uint64_t>(bytePosition) * 8 + bitPosition;
    }
    void MoveToEnd() noexcept { MoveTo(bytes_.size()); }

    // The byte that the next bit is taken from, and the bit in it: 0 is the highest.
    [[nodiscard]] std::size_t BytePosition() const noexcept {
        return static_cast<std::size_t>(position_ / 8);
    }
    [[nodiscard]] unsigned BitPosition() const noexcept {
        return static_cast<unsigned>(position_ % 8);
    }
    // True at and past the place where a code has to end: every further code reads as 0.
    [[nodiscard]] bool AtLimit() const noexcept { return position_ >= codeEnd_; }
    // True once a read has taken bits from behind the last byte.
    [[nodiscard]] bool HasOverrun() const noexcept {
        return position_ > static_cast<std::uint64_t>(bytes_.size()) * 8;
    }

  private:
    // 64 bits at the place, zero behind the end; at least the first 57 of them are the stream's.
    [[nodiscard]] std::uint64_t Peek() const noexcept;
    // The next 1 to 32 bits.
    [[nodiscard]] std::uint32_t Take(std::uint32_t count) noexcept;
    // Moves over zero bits, at most to the limit, and tells how many there were.
    [[nodiscard]] std::uint64_t SkipZeros() noexcept;
    [[nodiscard]] std::uint32_t ReadLongUe() noexcept;

    ByteView bytes_;
    std::uint64_t position_;  // in bits from the first byte
    std::uint64_t codeEnd_;   // in bits from the first byte; never behind the end
};

}  // namespace clipfix
