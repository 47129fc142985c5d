#include "repairmov/aac_refusals.h"

namespace clipfix {

AacRefusals::AacRefusals(ByteView startBytes) {
    constexpr unsigned kFirstResilient = 17;
    constexpr unsigned kLargestPlain = 4;  // main, low complexity, scalable rate, prediction
    const unsigned objectType = ByteAt(startBytes, 0) >> 3U;
    static_assert(kLargestPlain < kFirstResilient);
    applies_ =
        objectType >= 1 && objectType <= kLargestPlain && AacDecoder::LibraryVersion() == "2.10.1";
}

// Where the reserved bit stands: behind the element's kind (3 bits) and tag (4), and, unless a pair
// has common window data, behind the gain (8).
bool AacRefusals::HasReservedBit(ByteView shown, Element element) {
    if (element != kPair) {
        return (ByteAt(shown, 1) & 0x01U) != 0;
    }
    const bool isCommonWindow = (ByteAt(shown, 0) & 0x01U) != 0;
    return (ByteAt(shown, isCommonWindow ? 1 : 2) & 0x80U) != 0;
}

bool AacRefusals::IsCertain(ByteView shown) const {
    if (!applies_ || !isCleared_) {
        return false;
    }
    const auto element = static_cast<Element>(ByteAt(shown, 0) >> 5U);
    switch (element) {
        case kEnd:
        case kCoupling:
            return true;
        case kSingle:
        case kEffects:
        case kPair:
            break;
        default:
            return false;
    }
    if (!channels_) {
        return false;
    }
    if (element == *channels_) {
        return HasReservedBit(shown, element);
    }
    return isReplacedNever_ && (element != kPair || isPairMarked_);
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
    const bool isChannels = element == kSingle || element == kPair || element == kEffects;
    if (answer.error == AacDecoder::kElementsChanged) {
        isReplacedNever_ = true;
        isPairMarked_ = isPairMarked_ || (element == kPair && channels_ && *channels_ != kPair);
    } else if (isChannels && (answer.error != 0 || answer.hasResult)) {
        // It was looked into.
        channels_ = element;
    }
}

}  // namespace clipfix
