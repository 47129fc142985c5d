#include "repairavi/marker_search.h"

#include <cstring>

#include "repairavi/avi_markers.h"

namespace clipfix {

namespace marker_search {

namespace {

// Sixteen bytes as the compilers' own vector type: on every processor they make of it what it has.
using Lane = std::uint8_t __attribute__((vector_size(16)));
using Truth = std::int8_t __attribute__((vector_size(16)));
constexpr std::size_t kLaneSize = sizeof(Lane);

Lane Load(const std::uint8_t* at) noexcept {
    Lane lane;
    std::memcpy(&lane, at, kLaneSize);
    return lane;
}

Truth Is(Lane lane, char letter) noexcept {
    return lane == static_cast<std::uint8_t>(letter);
}

bool Any(Truth truth) noexcept {
    std::uint64_t halves[2];
    std::memcpy(halves, &truth, sizeof halves);
    return (halves[0] | halves[1]) != 0;
}

// Whether a marker may begin at any of the sixteen places; its first three letters are looked at.
bool MayHoldMarker(const std::uint8_t* at) noexcept {
    const Lane first = Load(at);
    const Lane second = Load(at + 1);
    const Lane third = Load(at + 2);
    const Truth i = Is(second, 'I');
    const Truth d = Is(third, 'd');
    const Truth upper =
        (i & ((Is(first, 'R') & Is(third, 'F')) | (Is(first, 'L') & Is(third, 'S')))) |
        (Is(first, 'A') & Is(second, 'V') & Is(third, 'I')) |
        (Is(first, 'J') & Is(second, 'U') & Is(third, 'N'));
    const Truth lower = (Is(first, 'm') & Is(second, 'o') & Is(third, 'v')) |
                        (Is(first, 'i') & Is(second, 'd') & Is(third, 'x')) |
                        (Is(first, 'v') & Is(second, 'i') & d) |
                        (Is(first, 'a') & Is(second, 'u') & d);
    const Truth b = Is(second, 'b');
    const Truth tags = (Is(first, 'd') & (Is(second, 'c') | b)) |
                       (Is(first, 'x') & Is(second, 'x')) | (Is(first, 'w') & b);
    return Any(upper | lower | tags);
}

}  // namespace

std::size_t FindPlainly(ByteView bytes, std::size_t from, MarkerStops stops) noexcept {
    while (from < bytes.size() && !StopsAt(bytes, from, stops)) {
        ++from;
    }
    return from;
}

std::size_t FindBySixteen(ByteView bytes, MarkerStops stops) noexcept {
    constexpr std::size_t kLookedAt = kLaneSize + 2;
    std::size_t at = 0;
    for (; bytes.size() - at >= kLookedAt; at += kLaneSize) {
        if (MayHoldMarker(bytes.data() + at)) {
            for (std::size_t i = at; i < at + kLaneSize; ++i) {
                if (StopsAt(bytes, i, stops)) {
                    return i;
                }
            }
        }
    }
    return FindPlainly(bytes, at, stops);
}

}  // namespace marker_search

std::size_t FindMarker(ByteView bytes, MarkerStops stops) noexcept {
    return marker_search::FindWidely(bytes, stops);
}

}  // namespace clipfix
