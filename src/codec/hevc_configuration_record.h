#pragma once

#include <cstdint>
#include <memory>

#include "base/bytes.h"
#include "codec/h265_pps.h"
#include "codec/h265_sps.h"
#include "codec/h265_vps.h"

namespace clipfix {

// The `hvcC` box of a sample description (ISO/IEC 14496-15, 8.3.3.1). Its arrays are not walked:
// the units are found by a hunt for the first byte of their heads. It never fails: a set that is
// not found or refuses leaves its pointer null.
class HVCDecoderConfigurationRecord {
  public:
    // `box` is the whole box, from its 4-byte size on; one of less than 30 bytes is not read. The
    // expected size of the picture is the sample description's, in pixels.
    void Parse(ByteView box, std::int32_t expectedWidth, std::int32_t expectedHeight);

    std::uint32_t size = 0;  // as the box says, in bytes
    std::uint32_t type = 0;  // big-endian: FourCC("hvcC")

    // Length in bytes and count of the last unit of each kind, as they were read.
    std::uint16_t vpsLength = 0;
    std::uint16_t ppsLength = 0;
    std::uint16_t spsLength = 0;
    std::uint8_t numVps = 0;
    std::uint8_t numSps = 0;
    std::uint8_t numPps = 0;

    std::shared_ptr<const SPS_265> sps;
    std::shared_ptr<const PPS_265> pps;
    std::shared_ptr<const CVPS> vps;
};

}  // namespace clipfix
