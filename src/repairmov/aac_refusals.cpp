#include "repairmov/aac_refusals.h"

namespace clipfix {

namespace {

constexpr std::int32_t kElementBits = 3;
constexpr std::int32_t kTagBits = 4;

// Moves to the first bit of a byte.
void Align(BitReader& bits) {
    if (bits.BitPosition() != 0) {
        bits.MoveTo(bits.BytePosition() + 1);
    }
}

void SkipBytes(BitReader& bits, std::size_t count) {
    bits.MoveTo(bits.BytePosition() + count, bits.BitPosition());
}

}  // namespace

AacRefusals::AacRefusals(ByteView startBytes) {
    constexpr unsigned kLargestPlain = 4;  // main, low complexity, scalable rate, prediction
    const unsigned objectType = ByteAt(startBytes, 0) >> 3U;
    applies_ =
        objectType >= 1 && objectType <= kLargestPlain && AacDecoder::LibraryVersion() == "2.10.1";
}

bool AacRefusals::IsChannels(Element element) {
    return element == Element::Single || element == Element::Pair || element == Element::Effects;
}

// Where the reserved bit stands: behind the tag, and, unless a pair has common window data, behind
// the gain.
bool AacRefusals::HasReservedBit(BitReader& bits, Element element) {
    constexpr std::int32_t kGainBits = 8;
    static_cast<void>(bits.ReadBits(kTagBits));
    if (element != Element::Pair || bits.ReadBit() == 0) {
        static_cast<void>(bits.ReadBits(kGainBits));
    }
    return bits.ReadBit() != 0;
}

bool AacRefusals::IsRefused(BitReader& bits, Element channels) const {
    if (!channels_) {
        return false;
    }
    if (channels == *channels_) {
        return HasReservedBit(bits, channels);
    }
    return isReplacedNever_ && (channels != Element::Pair || isPairMarked_);
}

// False where the data end behind what is shown.
bool AacRefusals::SkipData(BitReader& bits) {
    static_cast<void>(bits.ReadBits(kTagBits));
    const bool isAligned = bits.ReadBit() != 0;
    std::size_t count = bits.ReadBits(8);
    if (count == 255) {
        count += bits.ReadBits(8);
    }
    if (isAligned) {
        Align(bits);
    }
    SkipBytes(bits, count);
    return !bits.HasOverrun();
}

// Nothing where the filling leaves a trace, or ends behind what is shown.
std::optional<bool> AacRefusals::IsFillingRefused(BitReader& bits) {
    constexpr std::uint32_t kDataElement = 2;
    constexpr std::uint32_t kDynamicRange = 11;
    constexpr std::uint32_t kReplication = 13;
    constexpr std::uint32_t kCheckedReplication = 14;
    std::size_t count = bits.ReadBits(4);
    if (count == 15) {
        count += bits.ReadBits(8);
        --count;
    }
    if (count == 0) {
        return false;
    }
    BitReader inside = bits;
    const std::uint32_t extension = inside.ReadBits(4);
    if (extension == kReplication || extension == kCheckedReplication) {
        return true;
    }
    SkipBytes(bits, count);
    if (extension == kDataElement || extension == kDynamicRange || bits.HasOverrun()) {
        return std::nullopt;
    }
    return false;
}

bool AacRefusals::IsCertain(ByteView shown) const {
    if (!applies_ || !isCleared_) {
        return false;
    }
    BitReader bits(shown);
    for (bool isFirst = true;; isFirst = false) {
        const auto element = static_cast<Element>(bits.ReadBits(kElementBits));
        if (bits.HasOverrun()) {
            return false;
        }
        switch (element) {
            case Element::End:
            case Element::Coupling:
                return true;
            case Element::Single:
            case Element::Pair:
            case Element::Effects:
                return IsRefused(bits, element) && !bits.HasOverrun();
            case Element::Configuration:
                return !isFirst;
            case Element::Data:
                if (!SkipData(bits)) {
                    return false;
                }
                break;
            case Element::Filling: {
                const auto refused = IsFillingRefused(bits);
                if (!refused || *refused) {
                    return refused.value_or(false) && !bits.HasOverrun();
                }
                break;
            }
        }
    }
}

void AacRefusals::Note(ByteView shown, const AacDecoder::Answer& answer) {
    if (answer.isReplaced) {
        applies_ = false;  // another decoder, of which nothing is known
        return;
    }
    if (answer.error != 0) {
        isCleared_ = true;
    } else if (answer.hasResult) {
        isCleared_ = false;
    }
    const auto element = static_cast<Element>(ByteAt(shown, 0) >> 5U);
    if (answer.error == AacDecoder::kElementsChanged) {
        isReplacedNever_ = true;
        isPairMarked_ =
            isPairMarked_ || (element == Element::Pair && channels_ && *channels_ != Element::Pair);
    } else if (IsChannels(element) && (answer.error != 0 || answer.hasResult)) {
        channels_ = element;  // it was looked into
    }
}

}  // namespace clipfix
