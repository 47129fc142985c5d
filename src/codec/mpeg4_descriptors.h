#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/bytes.h"

namespace clipfix {

// The descriptors of an `esds` atom (ISO/IEC 14496-1, 7.2.6; ISO/IEC 14496-14, 5.6), each a value
// that owns the ones it holds. A wrong tag or a child that does not fit is no error: the child is
// absent. Bytes behind the end read as zero.

// The bytes that start an audio decoder. A holder of its own, because an accessor that may have
// nothing to give hands it out: null when there are none.
class DecoderSpecifiInfoWrapper {
  public:
    std::shared_ptr<const ByteVector> bytes;
};

// Tag 6.
class CSLConfigDescriptor {
  public:
    // `payload` are the bytes behind tag and length; what is missing to `length` is filled by 0.
    CSLConfigDescriptor(ByteView payload, std::size_t length);

    std::uint8_t tag = 6;
    std::uint8_t length = 0;  // cut to 8 bits
    ByteVector bytes;
};

// Tag 4.
class CDecoderConfigDescriptor {
  public:
    // `payload` are the bytes behind tag and length.
    explicit CDecoderConfigDescriptor(ByteView payload);

    std::uint8_t tag = 4;
    std::uint8_t length = 0;  // of the payload, cut to 8 bits
    std::uint8_t objectTypeIndication = 0;
    std::uint32_t brate = 0;   // maximum bitrate, in bits per second
    std::uint32_t abrate = 0;  // average bitrate, in bits per second
    std::int32_t streamType = 0;
    std::int32_t upStream = 0;
    std::int32_t reserved = 0;
    std::int32_t bufferSizeDB = 0;
    std::shared_ptr<const ByteVector> specificInfo;  // the payload of tag 5, or null
};

// Tag 3, the descriptor of an elementary stream.
class CObjectDescriptor {
  public:
    // `payload` are the bytes behind tag and length.
    explicit CObjectDescriptor(ByteView payload);

    std::uint8_t tag = 3;
    std::uint8_t length = 0;  // of the payload, cut to 8 bits
    std::uint8_t urlLength = 0;
    std::uint16_t esid = 0;
    std::uint16_t desid = 0;
    std::uint16_t ocresid = 0;
    std::int32_t streamDependenceFlag = 0;
    std::int32_t URL_Flag = 0;
    std::int32_t OCRstreamFlag = 0;
    std::int32_t streamPriority = 0;
    std::string urlString;  // stays empty: the URL's text is passed over
    std::optional<CDecoderConfigDescriptor> decoderConfig;
    std::optional<CSLConfigDescriptor> slConfig;
};

// The `esds` atom.
class CEsdsDecoder {
  public:
    CEsdsDecoder() = default;
    // `atom` is the whole atom, from its 4-byte size on.
    explicit CEsdsDecoder(ByteView atom);

    // In bits per second; 0 where the descriptor that holds it is absent.
    [[nodiscard]] std::uint32_t MaximumBitrate() const noexcept;
    [[nodiscard]] std::uint32_t AverageBitrate() const noexcept;
    // The bytes that start the decoder; null where they are absent.
    [[nodiscard]] std::shared_ptr<const ByteVector> DecoderSpecificBytes() const noexcept;

    std::uint32_t ssize = 0;  // as the atom says, in bytes
    std::uint32_t stype = 0;  // big-endian: FourCC("esds")
    std::uint32_t vflag = 0;  // version and flags
    std::optional<CObjectDescriptor> objectDescriptor;
};

}  // namespace clipfix
