#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/bytes.h"

namespace clipfix {

// Where the children of a plain container begin: behind its size and its code.
inline constexpr std::size_t kChildrenAt = 8;

// The bytes of one atom from its `size` field on, as its parent hands them over.
//
// `length` is what the parent claims, in bytes. A child that is taken by its position alone may
// claim more than its parent holds; `bytes` is then shorter than `length`, and every byte that is
// missing reads as zero. The view belongs to whoever holds the movie's bytes and is not kept after
// the atom is read.
struct AtomBlock {
    ByteView bytes;
    std::uint32_t length = 0;

    // A whole block: what is claimed is there.
    [[nodiscard]] static AtomBlock Of(ByteView all) noexcept {
        return {all, static_cast<std::uint32_t>(all.size())};
    }

    [[nodiscard]] std::uint32_t Big32(std::size_t at) const noexcept {
        return ReadBig32(bytes, at);
    }

    // The code of the child that would begin at `at`.
    [[nodiscard]] std::uint32_t CodeAt(std::size_t at) const noexcept {
        return ReadBig32(bytes, at + 4);
    }

    // The child at `at` for `childLength` bytes, without a test that it fits.
    [[nodiscard]] AtomBlock ChildByPosition(std::size_t at,
                                            std::uint32_t childLength) const noexcept {
        return {SubView(bytes, at, childLength), childLength};
    }

    // The child whose size field stands at `at`, if it ends inside this block. A child of size 0
    // does not fit: a scan would meet it for ever.
    [[nodiscard]] std::optional<AtomBlock> FittingChild(std::size_t at) const noexcept {
        const std::uint32_t childLength = Big32(at);
        if (childLength == 0 || at > length || childLength > length - at) {
            return std::nullopt;
        }
        return ChildByPosition(at, childLength);
    }
};

}  // namespace clipfix
