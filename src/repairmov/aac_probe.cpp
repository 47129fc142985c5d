#include "repairmov/aac_probe.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "repairmov/aac_decoder.h"
#include "repairmov/aac_refusals.h"

namespace clipfix {

namespace {

std::size_t CountLeadingZeros(ByteView bytes) {
    std::size_t at = 0;
    for (std::uint64_t word = 0; at + sizeof word <= bytes.size(); at += sizeof word) {
        std::memcpy(&word, bytes.data() + at, sizeof word);
        if (word != 0) {
            break;
        }
    }
    while (at < bytes.size() && bytes[at] == 0) {
        ++at;
    }
    return at;
}

// The bytes of one range, of which only a first part is read; all others are zero.
class ProbeRange {
  public:
    ProbeRange(platform::WindowReader& reader, std::uint64_t offset, std::uint64_t length)
        : reader_(reader), offset_(offset), readable_(static_cast<std::uint32_t>(length)) {
        const std::uint64_t inFile = offset < reader.Size() ? reader.Size() - offset : 0;
        readable_ = std::min(readable_, inFile);
    }

    // Whether there is anything but zero from `place` on that was not looked at yet.
    [[nodiscard]] bool IsZeroFrom(std::uint64_t place) const { return place >= readable_; }

    // How many bytes at `place` are known to be zero: 0 when the first one is not.
    [[nodiscard]] std::uint64_t ZerosAt(std::uint64_t place) {
        const ByteView onward = reader_.ViewOnward(offset_ + place);
        return CountLeadingZeros(SubView(onward, 0, LeftAt(place, onward.size())));
    }

    // Up to `most` bytes at `place`.
    [[nodiscard]] ByteView At(std::uint64_t place, std::size_t most) {
        return reader_.View(offset_ + place, LeftAt(place, most));
    }

  private:
    [[nodiscard]] std::size_t LeftAt(std::uint64_t place, std::size_t most) const {
        return static_cast<std::size_t>(std::min<std::uint64_t>(most, readable_ - place));
    }

    platform::WindowReader& reader_;
    std::uint64_t offset_;
    std::uint64_t readable_;
};

}  // namespace

AacProbe::AacProbe(ByteView specificInfo) {
    if (specificInfo.empty()) {
        return;
    }
    start_ = {ByteAt(specificInfo, 0), ByteAt(specificInfo, 1)};
    canStart_ = AacDecoder::Start(start_) != nullptr;
}

std::vector<CSample> AacProbe::ProbeAacFrames(platform::WindowReader& reader, std::uint64_t offset,
                                              std::uint64_t length,
                                              const std::function<bool()>& goOn) const {
    std::vector<CSample> frames;
    const auto decoder = canStart_ ? AacDecoder::Start(start_) : nullptr;
    if (decoder == nullptr) {
        return frames;
    }
    ProbeRange range(reader, offset, length);
    AacRefusals refusals(start_);
    std::uint64_t place = 0;
    // The decoder is never asked about a zero byte, so that a stretch of zeros costs no decode.
    while (place < length && !range.IsZeroFrom(place) && goOn()) {
        if (const std::uint64_t zeros = range.ZerosAt(place); zeros > 0) {
            place += zeros;
            continue;
        }
        const auto shownBytes =
            static_cast<std::size_t>(std::min<std::uint64_t>(length - place, kProbeSize));
        const ByteView shown = range.At(place, shownBytes);
        std::uint64_t taken = 0;
        if (!refusals.IsCertain(shown)) {
            const AacDecoder::Answer answer = decoder->Decode(shown, shownBytes);
            refusals.Note(shown, answer);
            taken = answer.FrameBytes();
        }
        if (taken > 0) {
            frames.push_back({offset + place, taken, SampleName::Aac, true});
        }
        // What is no frame is dropped byte by byte.
        place += std::max<std::uint64_t>(taken, 1);
    }
    return frames;
}

}  // namespace clipfix
