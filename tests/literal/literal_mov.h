#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "atoms/moov.h"
#include "base/bytes.h"

namespace clipfix::test {

// The walk over a movie file's top level, as the literal model does it.
struct LiteralCheck {
    std::unique_ptr<CMoov> moov;  // null: the file cannot serve
    MovieRead read;
    bool foundMdat = false;
    bool foundFtyp = false;
    std::uint32_t mdatSize = 0;
    std::uint32_t mdatOffset = 0;
};

struct LiteralRecord {
    std::string name;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    std::int32_t nalUnitType = -1;
    std::string unitName;
};

struct LiteralMovResult {
    bool nothingFound = false;  // the one message of the engine
    ByteVector output;          // the repaired file; empty when nothing was found
    std::vector<std::vector<LiteralRecord>> chunks;
    std::vector<int> percents;  // as shown, of both phases
};

// Slow, literal models of the structure check, the scan, the AAC probe and the writer, on files
// that stand in memory: no block test, no threads, one read of 50 bytes at each position. They use
// the program's parsers and movie tree, which have tests of their own.
[[nodiscard]] LiteralCheck LiteralReadStructure(ByteView file);
[[nodiscard]] LiteralMovResult LiteralMovRepair(ByteView damaged, LiteralCheck& reference);

}  // namespace clipfix::test
