#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "base/bytes.h"
#include "codec/h264_pps.h"
#include "codec/h264_slice_header.h"
#include "codec/h264_sps.h"
#include "codec/h265_pps.h"
#include "codec/h265_slice_header.h"
#include "codec/h265_sps.h"
#include "codec/h265_vps.h"
#include "codec/nalu.h"

namespace clipfix::test {

// Slow, literal models of the codec's parsers: one bit at a time, one line for each element of the
// syntax, in its order. They fill the program's structures and use none of its code.

// An object, and whether its bytes were accepted.
template <typename Object>
struct LiteralParse {
    Object object;
    bool accepted = true;
};

[[nodiscard]] CSPS LiteralSps264(ByteView unit);
[[nodiscard]] CPPS LiteralPps264(ByteView unit);
[[nodiscard]] LiteralParse<CSliceHeader> LiteralSlice264(ByteView bytes, const CNALU& nalu,
                                                         const CSPS& sps, const CPPS& pps);
[[nodiscard]] LiteralParse<CVPS> LiteralVps265(ByteView unit);
[[nodiscard]] LiteralParse<SPS_265> LiteralSps265(ByteView unit, std::int32_t expectedWidth,
                                                  std::int32_t expectedHeight);
[[nodiscard]] LiteralParse<PPS_265> LiteralPps265(ByteView unit, const SPS_265* sps);
[[nodiscard]] LiteralParse<SliceHeader_265> LiteralSlice265(ByteView bytes, const CNALU& nalu,
                                                            const SPS_265& sps, const PPS_265& pps);

// Null for a type that is refused.
[[nodiscard]] std::optional<std::string_view> LiteralName265(std::int32_t type);
[[nodiscard]] std::optional<CNALU> LiteralNalu(ByteView bytes, std::uint32_t nalLengthSize,
                                               const ReferenceParameterSets& reference);

// The configuration records of both codecs. A set is null when there is none.
struct LiteralAvcRecord {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t numOfSequenceParameterSets = 0;
    std::uint8_t configurationVersion = 0;
    std::uint8_t AVCProfileIndication = 0;
    std::uint8_t profile_compatibility = 0;
    std::uint8_t AVCLevelIndication = 0;
    std::uint8_t lengthSizeMinusOne = 0;
    std::uint8_t numOfPictureParameterSets = 0;
    std::uint16_t ppsLength = 0;
    std::uint16_t spsLength = 0;
    ByteVector spsBytes;
    ByteVector ppsBytes;
    std::optional<CSPS> sps;
    std::optional<CPPS> pps;
};
[[nodiscard]] LiteralAvcRecord LiteralAvcC(ByteView box);

struct LiteralHevcRecord {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint16_t vpsLength = 0;
    std::uint16_t ppsLength = 0;
    std::uint16_t spsLength = 0;
    std::uint8_t numVps = 0;
    std::uint8_t numSps = 0;
    std::uint8_t numPps = 0;
    std::optional<SPS_265> sps;
    std::optional<PPS_265> pps;
    std::optional<CVPS> vps;
};
[[nodiscard]] LiteralHevcRecord LiteralHvcC(ByteView box, std::int32_t expectedWidth,
                                            std::int32_t expectedHeight);

// The descriptors of an `esds` atom.
struct LiteralSlConfig {
    std::uint8_t length = 0;
    ByteVector bytes;
};
struct LiteralDecoderConfig {
    std::uint8_t length = 0;
    std::uint8_t objectTypeIndication = 0;
    std::uint32_t brate = 0;
    std::uint32_t abrate = 0;
    std::int32_t streamType = 0;
    std::int32_t upStream = 0;
    std::int32_t reserved = 0;
    std::int32_t bufferSizeDB = 0;
    std::optional<ByteVector> specificInfo;
};
struct LiteralObjectDescriptor {
    std::uint8_t length = 0;
    std::uint8_t urlLength = 0;
    std::uint16_t esid = 0;
    std::uint16_t desid = 0;
    std::uint16_t ocresid = 0;
    std::int32_t streamDependenceFlag = 0;
    std::int32_t URL_Flag = 0;
    std::int32_t OCRstreamFlag = 0;
    std::int32_t streamPriority = 0;
    std::optional<LiteralDecoderConfig> decoderConfig;
    std::optional<LiteralSlConfig> slConfig;
};
struct LiteralEsds {
    std::uint32_t ssize = 0;
    std::uint32_t stype = 0;
    std::uint32_t vflag = 0;
    std::optional<LiteralObjectDescriptor> objectDescriptor;
};
[[nodiscard]] LiteralEsds LiteralEsdsAtom(ByteView atom);
[[nodiscard]] LiteralObjectDescriptor LiteralObject(ByteView payload);
[[nodiscard]] LiteralDecoderConfig LiteralDecoder(ByteView payload);

}  // namespace clipfix::test
