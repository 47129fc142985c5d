#pragma once

#include <vector>

#include "base/bytes.h"
#include "repairmov/aac_decoder.h"
#include "repairmov/aac_probe.h"
#include "repairmov/sample.h"

namespace clipfix::test {

// What the probe of a range does, told in the plainest way: every byte by itself, every question
// asked. `start` is the two bytes that the decoder is started with.
inline std::vector<CSample> PlainProbe(ByteView range, const ByteVector& start) {
    std::vector<CSample> frames;
    const auto decoder = AacDecoder::Start(std::span<const std::uint8_t, 2>(start.data(), 2));
    for (std::uint64_t place = 0; decoder != nullptr && place < range.size();) {
        const ByteView shown = SubView(range, place, AacProbe::kProbeSize);
        const std::uint64_t taken =
            shown[0] == 0 ? 0 : decoder->Decode(shown, shown.size()).FrameBytes();
        if (taken > 0) {
            frames.push_back({place, taken, SampleName::Aac, true});
        }
        place += taken > 0 ? taken : 1;
    }
    return frames;
}

}  // namespace clipfix::test
