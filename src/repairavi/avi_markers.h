#pragma once

#include <array>
#include <cstdint>

#include "base/bytes.h"

namespace clipfix {

// The words by which the pass knows its place in a damaged AVI. They are compared byte by byte.
using FourLetters = std::array<std::uint8_t, 4>;
using TwoLetters = std::array<std::uint8_t, 2>;

inline constexpr FourLetters RIFF_AVI = {'R', 'I', 'F', 'F'};
inline constexpr FourLetters AVI0_AVI = {'A', 'V', 'I', ' '};
inline constexpr FourLetters LIST_AVI = {'L', 'I', 'S', 'T'};
inline constexpr FourLetters JUNK_AVI = {'J', 'U', 'N', 'K'};
inline constexpr FourLetters idx1_AVI = {'i', 'd', 'x', '1'};
inline constexpr FourLetters movi_AVI = {'m', 'o', 'v', 'i'};
inline constexpr FourLetters vids_AVI = {'v', 'i', 'd', 's'};
inline constexpr FourLetters auds_AVI = {'a', 'u', 'd', 's'};
inline constexpr FourLetters odml_AVI = {'o', 'd', 'm', 'l'};
inline constexpr FourLetters indx_AVI = {'i', 'n', 'd', 'x'};

inline constexpr TwoLetters wb_AVI = {'w', 'b'};
inline constexpr TwoLetters dc_AVI = {'d', 'c'};
inline constexpr TwoLetters db_AVI = {'d', 'b'};
inline constexpr TwoLetters xx_AVI = {'x', 'x'};
inline constexpr TwoLetters ix_AVI = {'i', 'x'};

// Letters as the number that a little-endian read of them gives.
template <std::size_t kCount>
[[nodiscard]] constexpr std::uint32_t LetterNumber(
    const std::array<std::uint8_t, kCount>& letters) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < kCount; ++i) {
        number |= static_cast<std::uint32_t>(letters[i]) << (8U * i);
    }
    return number;
}

// What the recogniser can find at a place, in the order in which it is asked.
enum class Marker {
    Riff,
    Avi,
    List,
    Junk,
    Movi,
    Idx1,
    Vids,
    Auds,
    Tag,   // "dc", "db", "xx" or "wb": the third and fourth letter of a data chunk's id
    None,  // anything else
};

// Which marker stands at `bytes`' front. Letters behind the view's end match nothing.
[[nodiscard]] constexpr Marker RecogniseMarker(ByteView bytes) noexcept {
    // Letters behind the view's end read as zero, and no marker has a zero in it.
    const std::uint32_t letters =
        bytes.size() >= sizeof(FourLetters)
            ? LetterNumber(FourLetters{bytes[0], bytes[1], bytes[2], bytes[3]})
            : ReadLittle32(bytes, 0);
    switch (letters) {
        case LetterNumber(RIFF_AVI):
            return Marker::Riff;
        case LetterNumber(AVI0_AVI):
            return Marker::Avi;
        case LetterNumber(LIST_AVI):
            return Marker::List;
        case LetterNumber(JUNK_AVI):
            return Marker::Junk;
        case LetterNumber(movi_AVI):
            return Marker::Movi;
        case LetterNumber(idx1_AVI):
            return Marker::Idx1;
        case LetterNumber(vids_AVI):
            return Marker::Vids;
        case LetterNumber(auds_AVI):
            return Marker::Auds;
        default:
            break;
    }
    switch (letters & 0xFFFFU) {
        case LetterNumber(dc_AVI):
        case LetterNumber(db_AVI):
        case LetterNumber(xx_AVI):
        case LetterNumber(wb_AVI):
            return Marker::Tag;
        default:
            return Marker::None;
    }
}

}  // namespace clipfix
