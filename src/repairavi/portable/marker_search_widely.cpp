#include "repairavi/marker_search.h"

namespace clipfix::marker_search {

std::size_t FindWidely(ByteView bytes, MarkerStops stops) noexcept {
    return FindBySixteen(bytes, stops);
}

}  // namespace clipfix::marker_search
