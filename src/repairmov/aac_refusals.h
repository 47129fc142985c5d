#pragma once

#include <cstdint>
#include <optional>

#include "base/bit_reader.h"
#include "base/bytes.h"
#include "repairmov/aac_decoder.h"

namespace clipfix {

// Knows of some bytes that a decoder is bound to refuse, in a way that leaves it as it was, so that
// it need not be asked. On noise these are more than half of all places.
//
// What is known follows from how the library decodes a frame (ISO/IEC 14496-3, 4.4.2.1), whose
// first three bits name its first element:
//  - The end of the frame: there is no sound in it. A coupling channel: the library has none.
//  - A single channel, a pair or an effects channel: the first of these that a decoder ever
//    looks into is what its frames begin with for good, and the others are refused at sight. A pair
//    may leave a mark at the first such refusal, and only then.
//  - The same kind as ever with the reserved bit of its window data set: refused right there.
//  - Data of the stream and plain filling leave no trace; what is behind them decides. Filling that
//    holds band replication is refused where no channel went before it, and so is a configuration
//    that is not the first of its frame. One that is the first leaves its traces: it is asked.
// A refusal also clears what the synthesis of the sound remembers. So none of this holds right
// after a frame, and it does hold again after any refusal that was really asked for.
//
// All of it was read off one version of the library; with any other one, nothing is known. Objects
// with error resilience begin their frames differently, and are left out.
class AacRefusals {
  public:
    // For a decoder that was just started with these decoder-specific bytes.
    explicit AacRefusals(ByteView startBytes);

    // Whether the decoder would refuse `shown`, which is not empty, and stay as it is.
    [[nodiscard]] bool IsCertain(ByteView shown) const;

    // To be told of every answer that the decoder gave.
    void Note(ByteView shown, const AacDecoder::Answer& answer);

  private:
    enum class Element : std::uint8_t {
        Single,
        Pair,
        Coupling,
        Effects,
        Data,
        Configuration,
        Filling,
        End
    };
    [[nodiscard]] static bool IsChannels(Element element);
    [[nodiscard]] static bool HasReservedBit(BitReader& bits, Element element);
    [[nodiscard]] static bool SkipData(BitReader& bits);
    [[nodiscard]] static std::optional<bool> IsFillingRefused(BitReader& bits);
    [[nodiscard]] bool IsRefused(BitReader& bits, Element channels) const;

    bool applies_ = false;
    bool isCleared_ = true;         // nothing happened since the last refusal
    bool isReplacedNever_ = false;  // a change of elements was answered, and the decoder stayed
    bool isPairMarked_ = false;
    std::optional<Element> channels_;  // with which the decoder's frames begin
};

}  // namespace clipfix
