#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/bytes.h"
#include "codec/nalu.h"

namespace clipfix {

// Tells for many positions at once where a unit could start: the refusals of CNALU::Parse that need
// only the first bytes, tested with wide compares. It never passes over a position that
// CNALU::Parse accepts; what it gives still has to be parsed.
class BlockTest {
  public:
    static constexpr std::size_t kNone = SIZE_MAX;
    // Bytes behind a position that a test looks at. Where a block holds fewer, the missing ones
    // count as zero, as they do for a unit at the end of a file; so a block that is not the file's
    // last one should overlap the next by this much.
    static constexpr std::size_t kLookAhead = CNALU::kProbeLength;

    // The sets that `reference` points to are read here and not needed afterwards. Units of more
    // than `maximumSize` bytes, length word included, are not looked for: the caller states the
    // largest unit that could begin a run.
    BlockTest(const ReferenceParameterSets& reference, std::uint32_t nalLengthSize,
              std::uint32_t maximumSize = UINT32_MAX);

    // The first candidate among the positions `from` to `to` - 1 of `block`, or kNone.
    [[nodiscard]] std::size_t FindNext(ByteView block, std::size_t from, std::size_t to) const;

    // Every candidate among the positions `from` to `to` - 1 of `block`, in rising order.
    [[nodiscard]] std::vector<std::size_t> FindAll(ByteView block, std::size_t from,
                                                   std::size_t to) const;

  private:
    [[nodiscard]] bool CouldStandAt(ByteView block, std::size_t at) const;
    [[nodiscard]] bool SliceCouldStandAt(ByteView slice, std::int32_t nalUnitType) const;

    bool isH265_ = false;
    bool isNothingAccepted_ = false;  // the reference lacks a set that every unit needs
    bool hasSliceSets_ = false;       // H.264: both sets that a slice needs are there
    std::uint32_t nalLengthSize_ = 0;
    std::uint32_t maximumSize_ = 0;
    std::int32_t layerId_ = 0;  // H.265: that of the reference's sequence parameter set
};

}  // namespace clipfix
