#include "base/bit_reader.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace clipfix {

namespace {

// Eight bytes that are there, as one load where the compiler has a byte swap.
std::uint64_t LoadBig64(const std::uint8_t* bytes) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (std::endian::native == std::endian::little) {
        word = __builtin_bswap64(word);
    }
    return word;
}

}  // namespace

std::uint64_t BitReader::Peek() const noexcept {
    const std::size_t at = BytePosition();
    const bool isWhole = at < bytes_.size() && bytes_.size() - at >= sizeof(std::uint64_t);
    const std::uint64_t word = isWhole ? LoadBig64(bytes_.data() + at) : ReadBig64(bytes_, at);
    return word << BitPosition();
}

std::uint32_t BitReader::Take(std::uint32_t count) noexcept {
    const auto value = static_cast<std::uint32_t>(Peek() >> (64U - count));
    position_ += count;
    return value;
}

std::uint32_t BitReader::ReadBits(std::int32_t count) noexcept {
    if (count <= 0) {
        return 0;
    }
    auto left = static_cast<std::uint32_t>(count);
    std::uint32_t value = 0;
    while (left > 0) {
        if (BytePosition() >= bytes_.size()) {
            position_ += left;
            break;
        }
        // The last 32 bits keep their places, and so do those 32, 64, ... bits before them.
        const std::uint32_t part = left % 32 == 0 ? 32 : left % 32;
        value += Take(part);
        left -= part;
    }
    return value;
}

std::uint32_t BitReader::ReadUe() noexcept {
    const std::uint64_t word = Peek();
    const auto zeros = static_cast<unsigned>(std::countl_zero(word));
    const unsigned length = 2 * zeros + 1;
    if (length > 57 || position_ + length > codeEnd_) {
        return ReadLongUe();
    }
    position_ += length;
    return static_cast<std::uint32_t>(word >> (64U - length)) - 1U;
}

std::uint64_t BitReader::SkipZeros() noexcept {
    const std::uint64_t start = position_;
    if (start >= codeEnd_) {
        return 0;
    }
    const std::uint64_t word = Peek();
    if (word != 0) {
        position_ += static_cast<unsigned>(std::countl_zero(word));
    } else {
        std::size_t at = BytePosition() + 1;
        std::uint64_t eight = 0;
        while (at + sizeof eight <= bytes_.size()) {
            std::memcpy(&eight, bytes_.data() + at, sizeof eight);
            if (eight != 0) {
                break;
            }
            at += sizeof eight;
        }
        while (at < bytes_.size() && bytes_[at] == 0) {
            ++at;
        }
        MoveTo(at);
        if (at < bytes_.size()) {
            position_ += static_cast<unsigned>(std::countl_zero(bytes_[at]));
        }
    }
    position_ = std::min(position_, codeEnd_);
    return position_ - start;
}

std::uint32_t BitReader::ReadLongUe() noexcept {
    std::uint64_t left = SkipZeros();
    const std::uint32_t base = (std::uint32_t{1} << (left % 32)) - 1U;
    if (!AtLimit()) {
        ++position_;  // the 1 bit that ends the zeros
    }
    std::uint32_t value = 0;
    while (left > 0 && !AtLimit()) {
        const auto part = static_cast<std::uint32_t>(left % 32 == 0 ? 32 : left % 32);
        const auto present =
            static_cast<std::uint32_t>(std::min<std::uint64_t>(part, codeEnd_ - position_));
        value += Take(present) << (part - present);
        left -= part;
    }
    return base + value;
}

std::int32_t BitReader::ReadSe() noexcept {
    const std::uint64_t k = ReadUe();
    const auto half = static_cast<std::int64_t>((k + 1) / 2);
    return static_cast<std::int32_t>(k % 2 == 1 ? half : -half);
}

}  // namespace clipfix
