#include "repairmov/aac_decoder.h"

#include <algorithm>
#include <neaacdec.h>

namespace clipfix {

struct AacDecoder::Answer {
    bool hasResult = false;
    std::uint64_t bytesConsumed = 0;
    std::uint8_t error = 0;

    // A frame is a decode that gave something and consumed something, whatever number of samples
    // came of it.
    [[nodiscard]] std::uint64_t FrameBytes() const { return hasResult ? bytesConsumed : 0; }
};

std::unique_ptr<AacDecoder> AacDecoder::Start(std::span<const std::uint8_t, kStartBytes> bytes) {
    std::unique_ptr<AacDecoder> made(new AacDecoder);
    made->handle_ = NeAACDecOpen();
    if (made->handle_ == nullptr) {
        return nullptr;
    }
    std::uint8_t start[kStartBytes + kSlack] = {};
    std::copy(bytes.begin(), bytes.end(), start);
    unsigned long sampleRate = 0;
    unsigned char channels = 0;
    if (NeAACDecInit2(made->handle_, start, kStartBytes, &sampleRate, &channels) != 0) {
        return nullptr;
    }
    return made;
}

AacDecoder::~AacDecoder() {
    if (handle_ != nullptr) {
        NeAACDecClose(handle_);
    }
}

std::uint64_t AacDecoder::Decode(ByteView bytes, std::size_t length) {
    // The library's "Unexpected channel configuration change".
    constexpr std::uint8_t kConfigurationChanged = 21;
    length = std::min(length, kMostBytes);
    const std::size_t present = std::min(bytes.size(), length);
    std::copy_n(bytes.begin(), present, shown_);
    std::fill(shown_ + present, shown_ + kMostBytes + kSlack, std::uint8_t{0});
    Answer answer = Ask(length);
    if (answer.error == kConfigurationChanged && Recover()) {
        answer = Ask(length);
    }
    return answer.FrameBytes();
}

AacDecoder::Answer AacDecoder::Ask(std::size_t length) {
    NeAACDecFrameInfo info{};
    const void* result = NeAACDecDecode(handle_, &info, shown_, length);
    return {result != nullptr, info.bytesconsumed, info.error};
}

// The decoder's state does not fit the stream any more: another decoder of the same configuration
// takes its place, if the library can start one without being shown a stream. If not, the present
// decoder gets its own configuration once more and stays.
bool AacDecoder::Recover() {
    const NeAACDecConfigurationPtr present = NeAACDecGetCurrentConfiguration(handle_);
    void* other = NeAACDecOpen();
    if (other == nullptr) {
        return false;
    }
    const NeAACDecConfigurationPtr fresh = NeAACDecGetCurrentConfiguration(other);
    if (present->defSampleRate != 0) {
        fresh->defSampleRate = present->defSampleRate;
    }
    fresh->defObjectType = present->defObjectType;
    fresh->outputFormat = present->outputFormat;
    NeAACDecSetConfiguration(other, fresh);
    unsigned long rate = 0;
    unsigned char channels = 0;
    if (NeAACDecInit(other, nullptr, 0, &rate, &channels) < 0) {
        NeAACDecClose(other);
        NeAACDecSetConfiguration(handle_, present);
        return false;
    }
    NeAACDecClose(handle_);
    handle_ = other;
    return true;
}

}  // namespace clipfix
