#include "codec/block_test.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "base/bit_reader.h"
#include "codec/h265_sps.h"
#include "codec/nal_head_tests.h"

namespace clipfix {

namespace {

// The compilers' own vector type: sixteen positions side by side, on any processor. Wide compares
// give all ones in a lane where they hold.
using Lanes = std::uint8_t __attribute__((vector_size(16)));
constexpr std::size_t kLanes = sizeof(Lanes);
// The positions that are looked at before a branch is taken.
constexpr std::size_t kGroup = 8 * kLanes;
// Beyond this many bytes of length word, which no record can state, there are no wide compares.
constexpr std::uint32_t kLargestLengthSize = 8;

inline Lanes Load(const std::uint8_t* from) noexcept {
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

inline Lanes Fill(std::uint8_t value) noexcept {
    return Lanes{} + value;
}

template <typename Mask>
inline Lanes AsLanes(Mask mask) noexcept {
    return std::bit_cast<Lanes>(mask);
}

inline bool IsAny(Lanes lanes) noexcept {
    struct Halves {
        std::uint64_t low;
        std::uint64_t high;
    };
    const auto halves = std::bit_cast<Halves>(lanes);
    return (halves.low | halves.high) != 0;
}

inline Lanes Smaller(Lanes a, Lanes b) noexcept {
    return a < b ? a : b;
}
inline Lanes Larger(Lanes a, Lanes b) noexcept {
    return a > b ? a : b;
}

// What the first two bytes of a length word say against it, for units of less than 2 to the power
// of 24 bytes: 0 where they leave room for a unit of the largest size.
inline Lanes Excess(Lanes first, Lanes second, Lanes largestSecond) noexcept {
    return first | (Smaller(second, largestSecond) ^ second);
}

// Where a length word may stand: of a unit that is small enough, or just below 2 to the power of
// 32, which wraps to a small size. The rules of H.265 have no use for the latter.
template <bool kH265>
inline Lanes CouldBeLength(const std::uint8_t* at, Lanes largestSecond) noexcept {
    const Lanes first = Load(at);
    const Lanes second = Load(at + 1);
    Lanes could = AsLanes(Excess(first, second, largestSecond) == Fill(0));
    if constexpr (!kH265) {
        could |= AsLanes((first & second) == Fill(0xFF));
    }
    return could;
}

// Whether a length word may stand anywhere in a group: the smallest excess and the largest common
// bits are kept, and compared only once.
template <bool kH265>
inline bool HasLength(const std::uint8_t* group, Lanes largestSecond) noexcept {
    Lanes excess = Fill(0xFF);
    Lanes common = Fill(0);
    for (std::size_t i = 0; i < kGroup; i += kLanes) {
        const Lanes first = Load(group + i);
        const Lanes second = Load(group + i + 1);
        excess = Smaller(excess, Excess(first, second, largestSecond));
        if constexpr (!kH265) {
            common = Larger(common, first & second);
        }
    }
    Lanes has = AsLanes(excess == Fill(0));
    if constexpr (!kH265) {
        has |= AsLanes(common == Fill(0xFF));
    }
    return IsAny(has);
}

// Bytes behind a group that its last position looks at: the length word and two bytes of head.
constexpr std::size_t kBehindGroup = kLargestLengthSize + 2;

// Whether a group and all that its positions look at is zero. No unit starts in such a stretch.
inline bool IsSilent(const std::uint8_t* group) noexcept {
    Lanes bytes = Load(group + kGroup + kBehindGroup - kLanes);
    for (std::size_t i = 0; i < kGroup; i += kLanes) {
        bytes |= Load(group + i);
    }
    return !IsAny(bytes);
}

// Where the head has its forbidden bit at 0 and one of the types 1 and 5 to 9.
inline Lanes CouldBeHead264(const std::uint8_t* at) noexcept {
    const Lanes type = Load(at) & Fill(0x9F);
    return AsLanes(type == Fill(1)) | AsLanes(type - Fill(5) <= Fill(4));
}

// Where the head has its forbidden bit at 0, the reference's layer, and a temporal id plus 1 that
// is not 0; by the latter no position in a stretch of zeros is looked at more closely.
inline Lanes CouldBeHead265(const std::uint8_t* at, Lanes layerBit, Lanes layerBits) noexcept {
    const Lanes second = Load(at + 1);
    return AsLanes((Load(at) & Fill(0x81)) == layerBit) &
           AsLanes((second & Fill(0xF8)) == layerBits) & AsLanes(second != layerBits);
}

}  // namespace

BlockTest::BlockTest(const ReferenceParameterSets& reference, std::uint32_t nalLengthSize,
                     std::uint32_t maximumSize)
    : isH265_(reference.IsH265()),
      isNothingAccepted_(isH265_ && (reference.sps265 == nullptr || reference.pps265 == nullptr)),
      hasSps_(reference.sps != nullptr),
      hasSliceSets_(reference.sps != nullptr && reference.pps != nullptr),
      nalLengthSize_(nalLengthSize),
      maximumSize_(maximumSize),
      layerId_(isH265_ && reference.sps265 != nullptr ? reference.sps265->nuh_layer_id : 0) {
    const std::uint32_t largestLength =
        maximumSize > nalLengthSize ? maximumSize - nalLengthSize : 0;
    isAnyLength_ = (largestLength >> 24U) != 0;
    bounds_.largestSecond = static_cast<std::uint8_t>(largestLength >> 16U);
    const auto layer = static_cast<std::uint32_t>(layerId_);
    bounds_.layerBit = static_cast<std::uint8_t>((layer >> 5U) & 1U);
    bounds_.layerBits = static_cast<std::uint8_t>((layer & 0x1FU) << 3U);
}

bool BlockTest::CouldStandAt(ByteView block, std::size_t at) const noexcept {
    const std::uint32_t size = UnitSize(ReadBig32(block, at), nalLengthSize_);
    if (size > maximumSize_ || isNothingAccepted_) {
        return false;
    }
    const std::size_t headAt = at + nalLengthSize_;
    if (isH265_) {
        const auto head = NalHead265::From(ByteAt(block, headAt), ByteAt(block, headAt + 1));
        return IsBelievable(head, size, layerId_) &&
               (!IsH265Slice(head.nal_unit_type) ||
                CouldBeSlice265(block, headAt + 2, head.nal_unit_type));
    }
    const auto head = NalHead264::From(ByteAt(block, headAt));
    if (!IsBelievable(head, size)) {
        return false;
    }
    if (head.nal_unit_type == kH264Slice || head.nal_unit_type == kH264IdrSlice) {
        return hasSliceSets_ &&
               CouldBeSlice264(block, headAt + 1, head.nal_unit_type == kH264IdrSlice);
    }
    return head.nal_unit_type != kH264Sps || hasSps_;
}

namespace {

// Bytes of a slice that are looked at. Codes that need more, or that the end of the block cuts
// short, decide nothing; the position then remains a candidate.
constexpr std::size_t kSliceWindow = 16;
static_assert(kLargestLengthSize + 2 + kSliceWindow <= CNALU::kProbeLength);

}  // namespace

bool BlockTest::CouldBeSlice264(ByteView block, std::size_t at, bool isIdr) const noexcept {
    BitReader in(SubView(block, at, kSliceWindow));
    static_cast<void>(in.ReadUe());
    const auto sliceType = static_cast<std::int32_t>(in.ReadUe());
    return in.AtLimit() || IsH264SliceType(sliceType, isIdr);
}

bool BlockTest::CouldBeSlice265(ByteView block, std::size_t at,
                                std::int32_t nalUnitType) const noexcept {
    BitReader in(SubView(block, at, kSliceWindow));
    static_cast<void>(in.ReadBits(IsH265RandomAccess(nalUnitType) ? 2 : 1));
    const auto id = static_cast<std::int32_t>(in.ReadUe());
    return in.AtLimit() || (id >= 0 && id <= kH265LastPpsId);
}

template <bool kH265, bool kAnyLength>
std::size_t BlockTest::FindInGroup(ByteView block, std::size_t first) const noexcept {
    const Lanes largestSecond = Fill(bounds_.largestSecond);
    const Lanes layerBit = Fill(bounds_.layerBit);
    const Lanes layerBits = Fill(bounds_.layerBits);
    for (std::size_t i = 0; i < kGroup; i += kLanes) {
        const std::uint8_t* at = block.data() + first + i;
        Lanes could;
        if constexpr (kH265) {
            could = CouldBeHead265(at + nalLengthSize_, layerBit, layerBits);
        } else {
            could = CouldBeHead264(at + nalLengthSize_);
        }
        if constexpr (!kAnyLength) {
            could &= CouldBeLength<kH265>(at, largestSecond);
        }
        if (!IsAny(could)) {
            continue;
        }
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            if (could[lane] != 0 && CouldStandAt(block, first + i + lane)) {
                return i + lane;
            }
        }
    }
    return kGroup;
}

// A group is first asked for its length words alone, which noise and silence rarely pass: of random
// bytes one position in some two thousand has a length of less than 2.2 million.
template <bool kH265, bool kAnyLength>
std::size_t BlockTest::FindWide(ByteView block, std::size_t from, std::size_t to) const noexcept {
    const Lanes largestSecond = Fill(bounds_.largestSecond);
    const std::size_t behind = kGroup + kBehindGroup;
    std::size_t at = from;
    for (; to - at >= kGroup && block.size() - at >= behind; at += kGroup) {
        if constexpr (!kAnyLength) {
            if (!HasLength<kH265>(block.data() + at, largestSecond)) {
                continue;
            }
        }
        if (IsSilent(block.data() + at)) {
            continue;
        }
        const std::size_t found = FindInGroup<kH265, kAnyLength>(block, at);
        if (found != kGroup) {
            return at + found;
        }
    }
    for (; at < to; ++at) {
        if (CouldStandAt(block, at)) {
            return at;
        }
    }
    return kNone;
}

std::size_t BlockTest::FindNext(ByteView block, std::size_t from, std::size_t to) const noexcept {
    // A position at the end of the block has a head of zero, which is refused.
    to = std::min(to, block.size());
    if (isNothingAccepted_ || from >= to) {
        return kNone;
    }
    if (nalLengthSize_ > kLargestLengthSize) {
        for (std::size_t at = from; at < to; ++at) {
            if (CouldStandAt(block, at)) {
                return at;
            }
        }
        return kNone;
    }
    if (isH265_) {
        return isAnyLength_ ? FindWide<true, true>(block, from, to)
                            : FindWide<true, false>(block, from, to);
    }
    return isAnyLength_ ? FindWide<false, true>(block, from, to)
                        : FindWide<false, false>(block, from, to);
}

std::vector<std::size_t> BlockTest::FindAll(ByteView block, std::size_t from,
                                            std::size_t to) const {
    std::vector<std::size_t> found;
    for (std::size_t at = FindNext(block, from, to); at != kNone;
         at = FindNext(block, at + 1, to)) {
        found.push_back(at);
    }
    return found;
}

}  // namespace clipfix
