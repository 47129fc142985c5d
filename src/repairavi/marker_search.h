#pragma once

#include <cstddef>

#include "base/bytes.h"

namespace clipfix {

// The first place in `bytes` at which a marker stands (RecogniseMarker gives anything but None);
// the view's size when there is none. A marker that the view's end cuts does not count, so a
// caller who has more bytes looks again at the last three.
//
// This is what crosses the stretches between chunks: many bytes are compared at once.
[[nodiscard]] std::size_t FindMarker(ByteView bytes) noexcept;

namespace marker_search {

// The forms of the search, which all give the same. The plain one goes byte by byte.
[[nodiscard]] std::size_t FindPlainly(ByteView bytes, std::size_t from) noexcept;
// Sixteen bytes at a time, for any processor.
[[nodiscard]] std::size_t FindBySixteen(ByteView bytes) noexcept;
// The widest form that this processor has.
[[nodiscard]] std::size_t FindWidely(ByteView bytes) noexcept;

}  // namespace marker_search

}  // namespace clipfix
