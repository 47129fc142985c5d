#include "repairmov/nal_run.h"

#include <new>

#include "codec/h264_nal_types.h"

namespace clipfix {

namespace {

// Kinds of H.264 units that are no samples.
bool IsUncounted264(std::int32_t type) {
    return type == kH264Sei || type == kH264Pps || type == kH264AccessUnitDelimiter;
}

bool IsSlice(const UnitFacts& unit) {
    return unit.name == "Slice";
}

bool IsVpsOrSps(const UnitFacts& unit) {
    return unit.name == "VPS" || unit.name == "SPS";
}

bool IsPps(const UnitFacts& unit) {
    return unit.name == "PPS";
}

bool IsOutputSample265(const UnitFacts& unit) {
    return unit.name != "Unspecified" && unit.name != "PPS" && unit.name != "SEI" &&
           unit.name != "AUD";
}

// From this size on a record is not folded: records are copied by the low 32 bits of their sizes,
// and a sum must not bring a size there.
constexpr std::uint64_t kLargestFold = std::uint64_t{1} << 31U;

}  // namespace

// One picture's slices follow one another in rising order. Only slices can merge: in every other
// kind of unit first_mb_in_slice is -1.
bool NalRun::Merges264(const UnitFacts& unit) const {
    return unit.nal_unit_type == previous_.nal_unit_type &&
           unit.slice_type == previous_.slice_type && unit.frame_num == previous_.frame_num &&
           unit.first_mb_in_slice > previous_.first_mb_in_slice;
}

// The tests in their order. By the last one VPS and SPS merge whichever comes first, and a PPS
// merges into a PPS before it, but not into an SPS; by the third a slice merges into a parameter
// set before it, and if that is a PPS the slice is no sample of its own. All of it is settled.
bool NalRun::Merges265(const UnitFacts& unit) const {
    const bool goesOnWithPicture = sawFirstSlice_ && IsSlice(unit) && unit.first_mb_in_slice == 0 &&
                                   unit.nal_unit_type == previous_.nal_unit_type;
    const bool followsSlice = IsSlice(previous_) && unit.name == "Unspecified";
    const bool sliceFollowsSet = (IsVpsOrSps(previous_) || IsPps(previous_)) && IsSlice(unit);
    const bool setFollowsSet =
        (IsVpsOrSps(previous_) || IsPps(unit)) && (IsVpsOrSps(unit) || IsPps(previous_));
    return goesOnWithPicture || followsSlice || sliceFollowsSet || setFollowsSet;
}

void NalRun::Add(std::uint64_t offset, const UnitFacts& unit) {
    ++unitCount_;
    const bool merges = hasPrevious_ && (isH265_ ? Merges265(unit) : Merges264(unit));
    if (merges) {
        GrowRecord(unit.size);
    } else {
        OpenRecord(offset, unit);
    }
    previous_ = unit;
    hasPrevious_ = true;
}

void NalRun::OpenRecord(std::uint64_t offset, const UnitFacts& unit) {
    CSample record{offset, unit.size, isH265_ ? SampleName::Hvc1 : SampleName::Avc1, true};
    if (isH265_) {
        record.isOutputSample = IsOutputSample265(unit);
        if (IsSlice(unit) || IsVpsOrSps(unit)) {
            ++sampleCount_;
        }
        if (IsSlice(unit) && unit.first_mb_in_slice == 1) {
            sawFirstSlice_ = true;
        }
    } else {
        record.isOutputSample = !IsUncounted264(unit.nal_unit_type);
        if (record.isOutputSample) {
            ++sampleCount_;
        }
    }
    ++chunk_.recordCount;
    auto& samples = chunk_.samples;
    foldedBytes_ = 0;
    if (!samples.empty() && !samples.back().isOutputSample &&
        samples.back().size + record.size < kLargestFold) {
        CSample& last = samples.back();
        foldedBytes_ = last.size;
        last.size += record.size;
        last.isOutputSample = record.isOutputSample;
        return;
    }
    samples.push_back(record);
}

void NalRun::GrowRecord(std::uint32_t bytes) {
    CSample& last = chunk_.samples.back();
    if (foldedBytes_ > 0 && last.size + bytes >= kLargestFold) {
        CSample own = last;
        own.offset += foldedBytes_;
        own.size = last.size - foldedBytes_ + bytes;
        last.size = foldedBytes_;
        last.isOutputSample = false;
        foldedBytes_ = 0;
        chunk_.samples.push_back(own);
        return;
    }
    last.size += bytes;
}

std::uint64_t NalRun::End() const {
    const CSample& last = chunk_.samples.back();
    return last.offset + last.size;
}

std::optional<CNALU> NalWalker::ReadNalAt(std::uint64_t offset) const {
    return CNALU::Parse(heads_(offset), nalLengthSize_, reference_);
}

NalRun NalWalker::WalkNalRun(std::uint64_t offset, const std::function<bool()>& goOn) const {
    // The one place where a walk's want of memory is swallowed: nothing is found there.
    try {
        NalRun run(reference_.IsH265());
        auto unit = ReadNalAt(offset);
        while (unit && unit->size < kUnitTooLarge) {
            if (!goOn()) {
                return NalRun(reference_.IsH265());
            }
            run.Add(offset, UnitFacts(*unit));
            offset += unit->size;
            unit = ReadNalAt(offset);
        }
        return run;
    } catch (const std::bad_alloc&) {
        return NalRun(reference_.IsH265());
    }
}

}  // namespace clipfix
