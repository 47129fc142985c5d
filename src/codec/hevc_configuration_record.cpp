#include "codec/hevc_configuration_record.h"

#include <optional>

#include "codec/h265_nal_types.h"

namespace clipfix {

namespace {

constexpr std::size_t kSmallestBox = 30;
constexpr std::size_t kArrayCountAt = 30;

// Tells the unit of each repetition at a place where a head was believed: its length stands in the
// two bytes before the place, and the place moves behind the unit. From the second repetition on
// the length is thus taken from the last two bytes of the unit before; this is meant. One that does
// not fit is passed over.
class Repetitions {
  public:
    Repetitions(ByteView box, std::size_t& at) : box_(box), at_(at), count_(ByteAt(box, at - 3)) {}

    [[nodiscard]] std::uint8_t Count() const { return count_; }

    // The next unit that fits, or null when there is none left. `length` is as it was read last.
    [[nodiscard]] std::optional<ByteView> Next(std::uint16_t& length) {
        if (done_ == count_) {
            return std::nullopt;
        }
        ++done_;
        length = ReadBig16(box_, at_ - 2);
        const bool isStandingStill = length == 0;
        if (isStandingStill || at_ + length > box_.size()) {
            // The place stays, and every repetition to come would give the same.
            done_ = count_;
        }
        if (at_ + length > box_.size()) {
            return std::nullopt;
        }
        const ByteView unit = SubView(box_, at_, length);
        at_ += length;
        return unit;
    }

  private:
    ByteView box_;
    std::size_t& at_;
    std::uint8_t count_;
    std::uint8_t done_ = 0;
};

// Reads a set into a new object; null when it refuses.
template <typename Set, typename... Context>
std::shared_ptr<const Set> ReadSet(ByteView unit, Context... context) {
    auto set = std::make_shared<Set>();
    if (!set->Parse(unit, context...)) {
        return nullptr;
    }
    return set;
}

}  // namespace

// The published layout is not walked. Array heads, counts and lengths are stepped over as
// candidates for a unit's first byte, and the first byte that has the type of a parameter set is
// taken for one. This is meant.
void HVCDecoderConfigurationRecord::Parse(ByteView box, std::int32_t expectedWidth,
                                          std::int32_t expectedHeight) {
    if (box.size() < kSmallestBox) {
        return;
    }
    size = ReadBig32(box, 0);
    type = ReadBig32(box, 4);
    // A record without arrays for all three kinds is not read at all.
    if (ByteAt(box, kArrayCountAt) <= 2) {
        return;
    }
    for (std::size_t at = kArrayCountAt + 1; at < box.size() - 2; ++at) {
        const std::int32_t nalUnitType = (ByteAt(box, at) >> 1) & 0x7F;
        Repetitions units(box, at);
        if (nalUnitType == kH265Vps) {
            numVps = units.Count();
            while (const auto unit = units.Next(vpsLength)) {
                vps = ReadSet<CVPS>(*unit);
            }
        } else if (nalUnitType == kH265Sps) {
            numSps = units.Count();
            while (const auto unit = units.Next(spsLength)) {
                sps = ReadSet<SPS_265>(*unit, expectedWidth, expectedHeight);
            }
        } else if (nalUnitType == kH265Pps) {
            numPps = units.Count();
            while (const auto unit = units.Next(ppsLength)) {
                pps = ReadSet<PPS_265>(*unit, sps.get());
            }
        }
    }
}

}  // namespace clipfix
