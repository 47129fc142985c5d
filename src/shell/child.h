#pragma once

#include <memory>
#include <utility>

namespace clipfix {

// Makes a widget that belongs to the parent it is given, which deletes it; the toolkit's way of
// owning. The one place where that is done.
template <typename Widget, typename... Arguments>
Widget* MakeChild(Arguments&&... arguments) {
    return std::make_unique<Widget>(std::forward<Arguments>(arguments)...).release();
}

}  // namespace clipfix
