#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace clipfix {

// One data chunk that the pass takes. Offset (of the chunk's id) and size (of its data, as found)
// are in bytes of the damaged file.
struct AviChunk {
    std::string id;
    bool isVideo = false;
    std::uint64_t offset = 0;
    std::uint32_t size = 0;
};

// Told of each chunk that the pass takes, in its order.
using AviChunkListener = std::function<void(const AviChunk&)>;

}  // namespace clipfix
