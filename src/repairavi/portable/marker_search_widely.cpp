#include "repairavi/marker_search.h"

namespace clipfix::marker_search {

std::size_t FindWidely(ByteView bytes) noexcept {
    return FindBySixteen(bytes);
}

}  // namespace clipfix::marker_search
