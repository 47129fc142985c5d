#pragma once

#include <cstddef>
#include <cstdint>

#include "base/bytes.h"
#include "repairavi/avi_markers.h"

namespace clipfix {

// Which markers a search stops at.
class MarkerStops {
  public:
    // Each of them, and tags whatever stands ahead of them.
    [[nodiscard]] static constexpr MarkerStops All() noexcept { return {}; }

    // From now on the search passes over `marker`.
    constexpr void Pass(Marker marker) noexcept { stops_ &= ~Bit(marker); }
    // From now on a tag counts only where two digits stand ahead of it, or may stand ahead of it
    // because the view begins there: letters like those of a tag are common, and chunks are not.
    constexpr void PassTagsWithoutDigits() noexcept { tagsNeedDigits_ = true; }

    [[nodiscard]] constexpr bool Has(Marker marker) const noexcept {
        return (stops_ & Bit(marker)) != 0;
    }
    [[nodiscard]] constexpr bool TagsNeedDigits() const noexcept { return tagsNeedDigits_; }

  private:
    [[nodiscard]] static constexpr std::uint32_t Bit(Marker marker) noexcept {
        return 1U << static_cast<std::uint32_t>(marker);
    }

    std::uint32_t stops_ = Bit(Marker::None) - 1;  // all that are named before None
    bool tagsNeedDigits_ = false;
};

// The first place in `bytes` at which a marker stands that the search stops at; the view's size
// when there is none. A marker that the view's end cuts does not count, so a caller who has more
// bytes looks again at the last three.
//
// This is what crosses the stretches between chunks: many bytes are compared at once.
[[nodiscard]] std::size_t FindMarker(ByteView bytes, MarkerStops stops) noexcept;

namespace marker_search {

// Whether the search stops at `at`.
[[nodiscard]] constexpr bool StopsAt(ByteView bytes, std::size_t at, MarkerStops stops) noexcept {
    const Marker marker = RecogniseMarker(bytes.subspan(at));
    if (!stops.Has(marker)) {
        return false;
    }
    if (marker != Marker::Tag || !stops.TagsNeedDigits() || at < 2) {
        return true;
    }
    return IsAsciiDigit(bytes[at - 1]) && IsAsciiDigit(bytes[at - 2]);
}

// The forms of the search, which all give the same. The plain one goes byte by byte.
[[nodiscard]] std::size_t FindPlainly(ByteView bytes, std::size_t from, MarkerStops stops) noexcept;
// Sixteen bytes at a time, for any processor.
[[nodiscard]] std::size_t FindBySixteen(ByteView bytes, MarkerStops stops) noexcept;
// The widest form that this processor has.
[[nodiscard]] std::size_t FindWidely(ByteView bytes, MarkerStops stops) noexcept;

}  // namespace marker_search

}  // namespace clipfix
