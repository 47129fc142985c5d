#pragma once

#include <cstdint>
#include <memory>

#include "base/bytes.h"
#include "codec/h264_pps.h"
#include "codec/h264_sps.h"

namespace clipfix {

// The `avcC` box of a sample description (ISO/IEC 14496-15, 5.3.3.1). It never fails: what does not
// fit leaves its pointer null, and bytes behind the end read as zero.
class CAVCDecoderConfigurationRecord {
  public:
    CAVCDecoderConfigurationRecord() = default;

    // `box` is the whole box, from its 4-byte size on.
    explicit CAVCDecoderConfigurationRecord(ByteView box);

    std::uint32_t size = 0;  // the length of the box as it was handed over, in bytes
    std::uint32_t type = 0;  // big-endian: FourCC("avcC")
    std::uint32_t numOfSequenceParameterSets = 0;
    std::uint8_t configurationVersion = 0;
    std::uint8_t AVCProfileIndication = 0;
    std::uint8_t profile_compatibility = 0;
    std::uint8_t AVCLevelIndication = 0;
    std::uint8_t lengthSizeMinusOne = 0;  // of the units' length words: 0 to 3
    std::uint8_t numOfPictureParameterSets = 0;

    // Of several sets the last stays. The lengths are as they were read, also of a set that did
    // not fit.
    std::uint16_t ppsLength = 0;
    std::uint16_t spsLength = 0;
    ByteVector spsBytes;
    ByteVector ppsBytes;
    std::shared_ptr<const CSPS> sps;
    std::shared_ptr<const CPPS> pps;
};

}  // namespace clipfix
