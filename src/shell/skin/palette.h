#pragma once

#include <QColor>
#include <cstdint>

namespace clipfix::skin {

// Colours are given as 0x00BBGGRR: red stands in the low byte.
using ColourValue = std::uint32_t;

inline constexpr ColourValue kText = 0x4B4B4B;
inline constexpr ColourValue kSectionTop = 0xF7F7F7;
inline constexpr ColourValue kSectionCentre = 0xFFFFFF;
inline constexpr ColourValue kSelectedText = 0x228B22;
inline constexpr ColourValue kWarningText = 0x0000FF;
inline constexpr ColourValue kLink = 0xAD6F0C;
inline constexpr ColourValue kBarFill = 0xEF8700;
inline constexpr ColourValue kBarTrough = 0xF7F7F7;
inline constexpr ColourValue kBand = 0xEBEBEB;
inline constexpr ColourValue kFrame = 0xACACAC;

// Ours: what the colours above leave open.
inline constexpr ColourValue kBarEdge = 0xE0DCD8;
inline constexpr ColourValue kFocus = 0xEF8700;
inline constexpr ColourValue kFaceText = 0xFFFFFF;
inline constexpr ColourValue kQuietText = 0x6B6B6B;
inline constexpr ColourValue kDisabledText = 0x8A827A;
inline constexpr ColourValue kLinkHover = 0x7F5209;
inline constexpr ColourValue kDropEdge = 0xDCD2C8;
inline constexpr ColourValue kDropFill = 0xFEFCFA;
inline constexpr ColourValue kDropEdgeActive = 0xEF8700;
inline constexpr ColourValue kDropFillActive = 0xFBF4EA;
inline constexpr ColourValue kSeparator = 0xDCDCDC;

[[nodiscard]] inline QColor Colour(ColourValue value) {
    constexpr ColourValue kByte = 0xFF;
    return QColor(static_cast<int>(value & kByte), static_cast<int>((value >> 8U) & kByte),
                  static_cast<int>((value >> 16U) & kByte));
}

}  // namespace clipfix::skin
