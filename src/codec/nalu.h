#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <variant>

#include "base/bytes.h"

namespace clipfix {

class CSPS;
class CPPS;
class CSliceHeader;
class CVPS;
class SPS_265;
class PPS_265;
class SliceHeader_265;

// The parameter sets of a healthy file by which a damaged one is read. Nothing is owned here: the
// pointers must stay good as long as the structure is in use. A `vps` selects the H.265 rules and
// the three sets of that codec; without one the H.264 rules and `sps` and `pps` apply. A unit that
// needs a set that is null is refused; in H.265 that is every unit.
struct ReferenceParameterSets {
    const CSPS* sps = nullptr;
    const CPPS* pps = nullptr;
    const CVPS* vps = nullptr;
    const SPS_265* sps265 = nullptr;
    const PPS_265* pps265 = nullptr;

    [[nodiscard]] bool IsH265() const noexcept { return vps != nullptr; }
};

// What a unit was parsed to: nothing for kinds that have no object. Which alternative is held
// follows from the codec and `nal_unit_type`; a held pointer is never null. Copies share the
// object, which nobody can change.
using NalPayload =
    std::variant<std::monostate, std::shared_ptr<const CSliceHeader>, std::shared_ptr<const CSPS>,
                 std::shared_ptr<const CPPS>, std::shared_ptr<const SliceHeader_265>,
                 std::shared_ptr<const SPS_265>, std::shared_ptr<const PPS_265>,
                 std::shared_ptr<const CVPS>>;

// One accepted length-prefixed NAL unit (ISO/IEC 14496-15), in H.264 or H.265. A value: it holds no
// view of the bytes that it was parsed from.
class CNALU {
  public:
    // The number of bytes that the program shows to Parse at a file position.
    static constexpr std::size_t kProbeLength = 50;

    // Tells whether a believable unit starts with the first of `bytes`, the big-endian length word,
    // and parses it as far as the grouping of samples needs. `bytes` are those that could be read,
    // usually kProbeLength of them; what lies behind them reads as zero. `nalLengthSize` is the
    // number of bytes of a length word as the reference's record has it, 0 to 4. A refusal is the
    // normal answer and allocates nothing before a whole header has been believed.
    [[nodiscard]] static std::optional<CNALU> Parse(ByteView bytes, std::uint32_t nalLengthSize,
                                                    const ReferenceParameterSets& reference);

    // The name by which the grouping of H.265 samples knows a type: "Slice", "VPS", "SPS", "PPS",
    // "AUD", "SEI", "Unspecified", or empty for an accepted type without a name. Null when units of
    // the type are refused.
    [[nodiscard]] static std::optional<std::string_view> NameOfType265(
        std::int32_t nalUnitType) noexcept;

    // Header fields (H.264, 7.3.1; H.265, 7.3.1.2); -1 where the codec has no such field.
    std::int32_t forbidden_zero_bit = -1;
    std::int32_t nal_ref_idc = -1;  // H.264 only
    std::int32_t nal_unit_type = -1;
    std::int32_t nuh_layer_id = -1;           // H.265 only
    std::int32_t nuh_temporal_id_plus1 = -1;  // H.265 only

    // The whole extent of the unit in the file, in bytes: length word and what it counts.
    std::uint32_t size = 0;
    // H.265 only, one of the names of NameOfType265; empty for H.264. It lives for ever.
    std::string_view name;

    // Of a parsed H.264 slice; -1 in every other unit.
    std::int32_t frame_num = -1;
    std::int32_t slice_type = -1;
    // H.264: of a parsed slice. H.265: the slice's first_slice_segment_in_pic_flag stands here.
    // -1 in a unit that is no slice.
    std::int32_t first_mb_in_slice = -1;

    NalPayload payload;
};

}  // namespace clipfix
