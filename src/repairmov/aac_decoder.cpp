#include "repairmov/aac_decoder.h"

#include <algorithm>
#include <neaacdec.h>

namespace clipfix {

std::string_view AacDecoder::LibraryVersion() {
    char* version = nullptr;
    char* copyright = nullptr;
    NeAACDecGetVersion(&version, &copyright);
    return version != nullptr ? std::string_view(version) : std::string_view();
}

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

AacDecoder::Answer AacDecoder::Decode(ByteView bytes, std::size_t length) {
    length = std::min(length, kMostBytes);
    const std::size_t present = std::min(bytes.size(), length);
    std::copy_n(bytes.begin(), present, shown_);
    std::fill(shown_ + present, shown_ + kMostBytes + kSlack, std::uint8_t{0});
    return DecodeInPlace(ByteSpan(shown_).first(length));
}

AacDecoder::Answer AacDecoder::DecodeInPlace(ByteSpan bytes) {
    Answer answer = Ask(bytes);
    if (answer.error == kElementsChanged && Recover()) {
        answer = Ask(bytes);
        answer.isReplaced = true;
    }
    return answer;
}

AacDecoder::Answer AacDecoder::Ask(ByteSpan bytes) {
    NeAACDecFrameInfo info{};
    const void* result = NeAACDecDecode(handle_, &info, bytes.data(), bytes.size());
    return {result != nullptr, info.bytesconsumed, info.error, false};
}

// The decoder's state does not fit the stream any more: another decoder of the same configuration
// takes its place, if the library can start one without being shown a stream. If not, the present
// decoder gets its own configuration once more and stays.
//
// On noise this comes up at one byte in ten, and a decoder costs more than all else together. Two
// fresh decoders are equal, so a start that failed fails again under the same configuration: it is
// tried once for each.
bool AacDecoder::Recover() {
    const NeAACDecConfigurationPtr present = NeAACDecGetCurrentConfiguration(handle_);
    const StartedWith wanted{present->defSampleRate, present->defObjectType, present->outputFormat};
    if (failedStart_ != wanted) {
        if (void* other = StartAnother(wanted); other != nullptr) {
            NeAACDecClose(handle_);
            handle_ = other;
            return true;
        }
        failedStart_ = wanted;
    }
    NeAACDecSetConfiguration(handle_, present);
    return false;
}

void* AacDecoder::StartAnother(const StartedWith& wanted) {
    void* other = NeAACDecOpen();
    if (other == nullptr) {
        return nullptr;
    }
    const NeAACDecConfigurationPtr configuration = NeAACDecGetCurrentConfiguration(other);
    if (wanted.sampleRate != 0) {
        configuration->defSampleRate = wanted.sampleRate;
    }
    configuration->defObjectType = wanted.objectType;
    configuration->outputFormat = wanted.outputFormat;
    NeAACDecSetConfiguration(other, configuration);
    unsigned long rate = 0;
    unsigned char channels = 0;
    if (NeAACDecInit(other, nullptr, 0, &rate, &channels) < 0) {
        NeAACDecClose(other);
        return nullptr;
    }
    return other;
}

}  // namespace clipfix
