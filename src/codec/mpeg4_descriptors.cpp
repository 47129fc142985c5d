#include "codec/mpeg4_descriptors.h"

#include <algorithm>

namespace clipfix {

namespace {

constexpr std::uint8_t kObjectTag = 3;
constexpr std::uint8_t kDecoderConfigTag = 4;
constexpr std::uint8_t kSpecificInfoTag = 5;
constexpr std::uint8_t kSlConfigTag = 6;

// The length of the descriptor whose first length byte stands at `at`: the first byte that is not
// 0x80. The seven bits of several bytes are not added up, and that is meant: the padded form
// 80 80 80 nn reads as nn, and 81 10 as 0x81. Moves `at` behind it. 0 or 0x80 means no child.
std::size_t TakeLength(ByteView bytes, std::size_t& at) {
    std::uint8_t length = ByteAt(bytes, at);
    ++at;
    while (length == 0x80 && at < bytes.size()) {
        length = bytes[at];
        ++at;
    }
    return length == 0x80 ? 0 : length;
}

// The payload of the descriptor at `at` when it has the tag, has a payload, and fits. Moves `at`
// behind what was read of it; a wrong tag leaves it alone.
std::optional<ByteView> TakeChild(ByteView bytes, std::size_t& at, std::uint8_t tag) {
    if (at >= bytes.size() || bytes[at] != tag) {
        return std::nullopt;
    }
    ++at;
    const std::size_t length = TakeLength(bytes, at);
    if (length == 0 || at > bytes.size() || length > bytes.size() - at) {
        return std::nullopt;
    }
    const ByteView child = bytes.subspan(at, length);
    at += length;
    return child;
}

// The length field of a descriptor keeps 8 bits, and a parent looks for its children no further
// than that field says. A payload of more than 255 bytes is thus cut; that is meant.
ByteView CutToLengthField(ByteView payload) {
    return payload.first(static_cast<std::uint8_t>(payload.size()));
}

}  // namespace

CSLConfigDescriptor::CSLConfigDescriptor(ByteView payload, std::size_t payloadLength)
    : length(static_cast<std::uint8_t>(payloadLength)) {
    const ByteView present = SubView(payload, 0, payloadLength);
    bytes.assign(present.begin(), present.end());
    bytes.resize(payloadLength);
}

CDecoderConfigDescriptor::CDecoderConfigDescriptor(ByteView payload)
    : length(static_cast<std::uint8_t>(payload.size())) {
    objectTypeIndication = ByteAt(payload, 0);
    streamType = ByteAt(payload, 1) >> 2;
    upStream = (ByteAt(payload, 1) >> 1) & 1;
    reserved = ByteAt(payload, 1) & 1;
    // The one field in the opposite byte order, and meant; nothing uses it.
    bufferSizeDB = ByteAt(payload, 2) | (ByteAt(payload, 3) << 8) | (ByteAt(payload, 4) << 16);
    brate = ReadBig32(payload, 5);
    abrate = ReadBig32(payload, 9);
    std::size_t at = 13;
    if (const auto info = TakeChild(CutToLengthField(payload), at, kSpecificInfoTag)) {
        specificInfo = std::make_shared<const ByteVector>(info->begin(), info->end());
    }
}

CObjectDescriptor::CObjectDescriptor(ByteView payload)
    : length(static_cast<std::uint8_t>(payload.size())) {
    esid = ReadBig16(payload, 0);
    const std::uint8_t flags = ByteAt(payload, 2);
    streamDependenceFlag = flags >> 7;
    URL_Flag = (flags >> 6) & 1;
    OCRstreamFlag = (flags >> 5) & 1;
    streamPriority = flags & 0x1F;
    std::size_t at = 3;
    if (streamDependenceFlag == 1) {
        desid = ReadBig16(payload, at);
        at += 2;
    }
    if (URL_Flag == 1) {
        urlLength = ByteAt(payload, at);
        at += std::size_t{1} + urlLength;
    }
    if (OCRstreamFlag == 1) {
        ocresid = ReadBig16(payload, at);
        at += 2;
    }
    const ByteView own = CutToLengthField(payload);
    if (const auto config = TakeChild(own, at, kDecoderConfigTag)) {
        decoderConfig.emplace(*config);
    }
    if (at < own.size() && own.size() - at > 2 && own[at] == kSlConfigTag) {
        ++at;
        // This child is not held against the bytes that are left, and that is meant.
        const std::size_t childLength = TakeLength(own, at);
        if (childLength != 0) {
            slConfig.emplace(SubView(own, at), childLength);
        }
    }
}

CEsdsDecoder::CEsdsDecoder(ByteView atom)
    : ssize(ReadBig32(atom, 0)), stype(ReadBig32(atom, 4)), vflag(ReadBig32(atom, 8)) {
    std::size_t at = 12;
    if (const auto descriptor = TakeChild(atom, at, kObjectTag)) {
        objectDescriptor.emplace(*descriptor);
    }
}

std::uint32_t CEsdsDecoder::MaximumBitrate() const noexcept {
    return objectDescriptor && objectDescriptor->decoderConfig
               ? objectDescriptor->decoderConfig->brate
               : 0;
}

std::uint32_t CEsdsDecoder::AverageBitrate() const noexcept {
    return objectDescriptor && objectDescriptor->decoderConfig
               ? objectDescriptor->decoderConfig->abrate
               : 0;
}

std::shared_ptr<const ByteVector> CEsdsDecoder::DecoderSpecificBytes() const noexcept {
    return objectDescriptor && objectDescriptor->decoderConfig
               ? objectDescriptor->decoderConfig->specificInfo
               : nullptr;
}

}  // namespace clipfix
