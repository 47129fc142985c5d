#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "codec/nalu.h"
#include "repairmov/sample.h"

namespace clipfix {

// The facts of one NAL unit that the grouping of units into samples asks for.
struct UnitFacts {
    std::uint32_t size = 0;  // whole extent in the file, in bytes
    std::int32_t nal_unit_type = -1;
    std::int32_t frame_num = -1;
    std::int32_t slice_type = -1;
    // H.264; in H.265 first_slice_segment_in_pic_flag stands here. -1 in a unit that is no slice.
    std::int32_t first_mb_in_slice = -1;
    std::string_view name;  // H.265 only

    UnitFacts() = default;
    explicit UnitFacts(const CNALU& unit)
        : size(unit.size),
          nal_unit_type(unit.nal_unit_type),
          frame_num(unit.frame_num),
          slice_type(unit.slice_type),
          first_mb_in_slice(unit.first_mb_in_slice),
          name(unit.name) {}
};

// A chain of NAL units, grouped into records as it grows.
//
// A record that is no sample of the output (SEI, AUD and their like) adds its bytes to the next
// one that is. Since records of a run lie one behind the other, it is folded into its successor
// right here, so that a run holds one record for each output sample and at most one more at its
// end. Neither the bytes of the output nor its tables can tell the difference.
class NalRun {
  public:
    explicit NalRun(bool isH265) : isH265_(isH265) {}

    // Adds the unit that stands at `offset` and begins where the last one ended.
    void Add(std::uint64_t offset, const UnitFacts& unit);

    [[nodiscard]] std::uint32_t UnitCount() const { return unitCount_; }
    // Samples by the count that goes into the sample-to-chunk table. In H.265 there may be more
    // output samples: a unit without a name is one, and is not counted here. Settled.
    [[nodiscard]] std::uint32_t SampleCount() const { return sampleCount_; }
    [[nodiscard]] const Chunk& Records() const { return chunk_; }
    [[nodiscard]] Chunk TakeRecords() { return std::move(chunk_); }
    // File offset behind the last unit.
    [[nodiscard]] std::uint64_t End() const;

  private:
    [[nodiscard]] bool Merges264(const UnitFacts& unit) const;
    [[nodiscard]] bool Merges265(const UnitFacts& unit) const;
    void OpenRecord(std::uint64_t offset, const UnitFacts& unit);
    void GrowRecord(std::uint32_t bytes);

    bool isH265_;
    bool hasPrevious_ = false;
    bool sawFirstSlice_ = false;  // H.265; once set it stays for the rest of the run
    UnitFacts previous_;
    std::uint32_t unitCount_ = 0;
    std::uint32_t sampleCount_ = 0;
    std::uint64_t foldedBytes_ = 0;  // of the last record: those of the ones folded into it
    Chunk chunk_;
};

// Gives the bytes of the damaged file from an offset on: CNALU::kProbeLength of them, or fewer at
// the file's end.
using HeadSource = std::function<ByteView(std::uint64_t offset)>;

// Follows chains of NAL units through a file.
class NalWalker {
  public:
    // A unit of this many bytes, length word included, or more ends a run and is not part of it.
    static constexpr std::uint32_t kUnitTooLarge = 2200000;
    // A chain of this many units or fewer is no run.
    static constexpr std::uint32_t kNoRun = 2;

    // What `reference` points to must outlive the walker.
    NalWalker(const ReferenceParameterSets& reference, std::uint32_t nalLengthSize,
              HeadSource heads)
        : reference_(reference), nalLengthSize_(nalLengthSize), heads_(std::move(heads)) {}

    // The unit at `offset`, or nothing.
    [[nodiscard]] std::optional<CNALU> ReadNalAt(std::uint64_t offset) const;

    // The chain that starts at `offset`, which may be empty. `goOn` is asked at each unit; when it
    // answers false the result is empty.
    [[nodiscard]] NalRun WalkNalRun(std::uint64_t offset, const std::function<bool()>& goOn) const;

  private:
    ReferenceParameterSets reference_;
    std::uint32_t nalLengthSize_;
    HeadSource heads_;
};

}  // namespace clipfix
