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
    // Bytes behind a position's first one that its test may look at. Where a block holds fewer, the
    // missing ones count as the end of the file, as they do for CNALU::Parse. So a block that is
    // not the file's last one has to reach this far behind the last position asked for.
    static constexpr std::size_t kLookAhead = CNALU::kProbeLength - 1;

    // What `reference` points to is read here and not needed afterwards. Units of more than
    // `maximumSize` bytes, length word included, are not looked for: the caller states the largest
    // unit that could be of use to it.
    BlockTest(const ReferenceParameterSets& reference, std::uint32_t nalLengthSize,
              std::uint32_t maximumSize = UINT32_MAX);

    // The first candidate among the positions `from` to `to` - 1 of `block`, or kNone.
    [[nodiscard]] std::size_t FindNext(ByteView block, std::size_t from,
                                       std::size_t to) const noexcept;

    // Every candidate among the positions `from` to `to` - 1 of `block`, in rising order.
    [[nodiscard]] std::vector<std::size_t> FindAll(ByteView block, std::size_t from,
                                                   std::size_t to) const;

    // The test of one position, without the wide compares.
    [[nodiscard]] bool CouldStandAt(ByteView block, std::size_t at) const noexcept;

  private:
    // Bounds on the length word and the head, in the form that compares of single bytes take.
    struct ByteBounds {
        std::uint8_t largestSecond = 0;  // second byte of the length word, behind a first one of 0
        std::uint8_t layerBit = 0;       // H.265: lowest bit of the head's first byte
        std::uint8_t layerBits = 0;      // H.265: upper five bits of its second byte
    };

    [[nodiscard]] bool CouldBeSlice264(ByteView block, std::size_t at, bool isIdr) const noexcept;
    [[nodiscard]] bool CouldBeSlice265(ByteView block, std::size_t at,
                                       std::int32_t nalUnitType) const noexcept;
    // The first position of `first`[0] to `first`[kGroup - 1] that passes, or kGroup.
    template <bool kH265, bool kAnyLength>
    [[nodiscard]] std::size_t FindInGroup(ByteView block, std::size_t first) const noexcept;
    template <bool kH265, bool kAnyLength>
    [[nodiscard]] std::size_t FindWide(ByteView block, std::size_t from,
                                       std::size_t to) const noexcept;

    bool isH265_ = false;
    bool isNothingAccepted_ = false;  // H.265: a set that every unit needs is missing
    bool hasSps_ = false;             // H.264
    bool hasSliceSets_ = false;       // H.264: both sets that a slice needs
    std::uint32_t nalLengthSize_ = 0;
    std::uint32_t maximumSize_ = 0;
    bool isAnyLength_ = false;  // the largest size leaves the first byte of the length word open
    std::int32_t layerId_ = 0;  // H.265: that of the reference's sequence parameter set
    ByteBounds bounds_;
};

}  // namespace clipfix
