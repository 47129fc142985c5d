#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace clipfix {

// A read-only stretch of bytes that somebody else owns. It lives as long as its owner says.
using ByteView = std::span<const std::uint8_t>;
// A writable stretch of bytes that somebody else owns.
using ByteSpan = std::span<std::uint8_t>;
// An owned run of bytes, such as the on-disk image of an atom.
using ByteVector = std::vector<std::uint8_t>;

// The one place where damaged input meets its bounds: every read below takes any position, and a
// byte outside the view counts as zero. Positions are in bytes from the view's first byte.

[[nodiscard]] constexpr std::uint8_t ByteAt(ByteView bytes, std::size_t at) noexcept {
    return at < bytes.size() ? bytes[at] : std::uint8_t{0};
}

// The part of `bytes` from `at` on, at most `length` bytes; shorter, or empty, at the end.
[[nodiscard]] constexpr ByteView SubView(ByteView bytes, std::size_t at,
                                         std::size_t length = std::dynamic_extent) noexcept {
    if (at >= bytes.size()) {
        return {};
    }
    const std::size_t rest = bytes.size() - at;
    return bytes.subspan(at, length < rest ? length : rest);
}

namespace detail {

template <std::size_t kWidth>
[[nodiscard]] constexpr std::uint64_t ReadBig(ByteView bytes, std::size_t at) noexcept {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < kWidth; ++i) {
        // A position that wraps is outside as well: the sum is tested by ByteAt only if it is real.
        const std::uint8_t byte = at <= SIZE_MAX - i ? ByteAt(bytes, at + i) : std::uint8_t{0};
        value = (value << 8U) | byte;
    }
    return value;
}

template <std::size_t kWidth>
[[nodiscard]] constexpr std::uint64_t ReadLittle(ByteView bytes, std::size_t at) noexcept {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < kWidth; ++i) {
        const std::uint8_t byte = at <= SIZE_MAX - i ? ByteAt(bytes, at + i) : std::uint8_t{0};
        value |= static_cast<std::uint64_t>(byte) << (8U * i);
    }
    return value;
}

}  // namespace detail

[[nodiscard]] constexpr std::uint16_t ReadBig16(ByteView bytes, std::size_t at) noexcept {
    return static_cast<std::uint16_t>(detail::ReadBig<2>(bytes, at));
}
[[nodiscard]] constexpr std::uint32_t ReadBig32(ByteView bytes, std::size_t at) noexcept {
    return static_cast<std::uint32_t>(detail::ReadBig<4>(bytes, at));
}
[[nodiscard]] constexpr std::uint64_t ReadBig64(ByteView bytes, std::size_t at) noexcept {
    return detail::ReadBig<8>(bytes, at);
}
[[nodiscard]] constexpr std::uint16_t ReadLittle16(ByteView bytes, std::size_t at) noexcept {
    return static_cast<std::uint16_t>(detail::ReadLittle<2>(bytes, at));
}
[[nodiscard]] constexpr std::uint32_t ReadLittle32(ByteView bytes, std::size_t at) noexcept {
    return static_cast<std::uint32_t>(detail::ReadLittle<4>(bytes, at));
}

// Writes into a span; bytes that fall outside it are dropped.
constexpr void StoreBig(ByteSpan bytes, std::size_t at, std::uint64_t value,
                        std::size_t width) noexcept {
    for (std::size_t i = 0; i < width; ++i) {
        if (at <= SIZE_MAX - i && at + i < bytes.size()) {
            bytes[at + i] = static_cast<std::uint8_t>(value >> (8U * (width - 1 - i)));
        }
    }
}
constexpr void StoreLittle(ByteSpan bytes, std::size_t at, std::uint64_t value,
                           std::size_t width) noexcept {
    for (std::size_t i = 0; i < width; ++i) {
        if (at <= SIZE_MAX - i && at + i < bytes.size()) {
            bytes[at + i] = static_cast<std::uint8_t>(value >> (8U * i));
        }
    }
}
constexpr void StoreBig16(ByteSpan bytes, std::size_t at, std::uint16_t value) noexcept {
    StoreBig(bytes, at, value, 2);
}
constexpr void StoreBig32(ByteSpan bytes, std::size_t at, std::uint32_t value) noexcept {
    StoreBig(bytes, at, value, 4);
}
constexpr void StoreBig64(ByteSpan bytes, std::size_t at, std::uint64_t value) noexcept {
    StoreBig(bytes, at, value, 8);
}
constexpr void StoreLittle16(ByteSpan bytes, std::size_t at, std::uint16_t value) noexcept {
    StoreLittle(bytes, at, value, 2);
}
constexpr void StoreLittle32(ByteSpan bytes, std::size_t at, std::uint32_t value) noexcept {
    StoreLittle(bytes, at, value, 4);
}

// Append to an owned image.
void AppendBig16(ByteVector& bytes, std::uint16_t value);
void AppendBig32(ByteVector& bytes, std::uint32_t value);
void AppendBig64(ByteVector& bytes, std::uint64_t value);
void AppendLittle16(ByteVector& bytes, std::uint16_t value);
void AppendLittle32(ByteVector& bytes, std::uint32_t value);
void AppendBytes(ByteVector& bytes, ByteView more);
void AppendText(ByteVector& bytes, std::string_view letters);
void AppendZeros(ByteVector& bytes, std::size_t count);

// True when the letters stand at `at`; false when any byte of them lies outside the view.
[[nodiscard]] constexpr bool MatchesAt(ByteView bytes, std::size_t at,
                                       std::string_view letters) noexcept {
    if (at > bytes.size() || bytes.size() - at < letters.size()) {
        return false;
    }
    for (std::size_t i = 0; i < letters.size(); ++i) {
        if (bytes[at + i] != static_cast<std::uint8_t>(letters[i])) {
            return false;
        }
    }
    return true;
}

// ASCII only: the classes of the C locale, whatever the locale of the process.
[[nodiscard]] constexpr bool IsAsciiDigit(std::uint8_t byte) noexcept {
    return byte >= '0' && byte <= '9';
}
[[nodiscard]] constexpr bool IsAsciiLetter(std::uint8_t byte) noexcept {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

}  // namespace clipfix
