#pragma once

#include <cstdint>
#include <vector>

#include "repairmov/sample.h"

namespace clipfix::test {

using Offsets = std::vector<std::uint64_t>;

// Where each chunk begins.
[[nodiscard]] inline Offsets OffsetsOf(const ChunkList& chunks) {
    Offsets offsets;
    for (const Chunk& chunk : chunks) {
        offsets.push_back(chunk.samples.front().offset);
    }
    return offsets;
}

}  // namespace clipfix::test
