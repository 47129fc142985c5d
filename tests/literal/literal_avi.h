#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/bytes.h"

namespace clipfix::test {

// What the AVI pass makes of a file that stands in memory.
struct LiteralAviResult {
    int result = 0;            // what Repair answers
    bool standsStill = false;  // the walk of a stream list never ends; nothing else counts then
    ByteVector output;         // the repaired file; empty when the pass gave up
    ByteVector thumbnail;
    std::uint32_t videoChunks = 0;
    std::uint32_t audioChunks = 0;
    std::uint32_t microSecPerFrame = 0;
    std::string codec;
    std::uint64_t riffBody = 0;
    std::vector<int> percents;  // in the order in which they are sent
    int percent = 0;            // as it stands at the end
};

// The pass over a damaged AVI as a slow, literal model: one real buffer of 333333 bytes that is
// cleared and read anew at every step that says so, one file pointer for each file, one byte at a
// time. The engine is held against it; neither shares a line with the other.
// `takesThumbnail`: the damaged file's path ends in "i" or "I".
[[nodiscard]] LiteralAviResult LiteralAviRepair(ByteView damaged, bool takesThumbnail);

}  // namespace clipfix::test
