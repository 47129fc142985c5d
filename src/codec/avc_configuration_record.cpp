#include "codec/avc_configuration_record.h"

#include <optional>

namespace clipfix {

namespace {

// Takes the length word at `at` and the bytes that it counts, and moves `at` behind what it took.
// Without two bytes for the length nothing is done. A set that does not fit leaves `at` behind its
// length word, and the length as it was read. Both are meant.
std::optional<ByteView> TakeSet(ByteView box, std::size_t& at, std::uint16_t& length) {
    if (at + 2 > box.size()) {
        return std::nullopt;
    }
    length = ReadBig16(box, at);
    at += 2;
    if (at + length > box.size()) {
        return std::nullopt;
    }
    const ByteView set = SubView(box, at, length);
    at += length;
    return set;
}

}  // namespace

CAVCDecoderConfigurationRecord::CAVCDecoderConfigurationRecord(ByteView box)
    : size(static_cast<std::uint32_t>(box.size())) {
    type = ReadBig32(box, 4);
    configurationVersion = ByteAt(box, 8);
    AVCProfileIndication = ByteAt(box, 9);
    profile_compatibility = ByteAt(box, 10);
    AVCLevelIndication = ByteAt(box, 11);
    lengthSizeMinusOne = ByteAt(box, 12) & 0x03;
    numOfSequenceParameterSets = ByteAt(box, 13) & 0x1F;
    std::size_t at = 14;
    for (std::uint32_t i = 0; i < numOfSequenceParameterSets; ++i) {
        if (const auto set = TakeSet(box, at, spsLength)) {
            spsBytes.assign(set->begin(), set->end());
            sps = std::make_shared<const CSPS>(spsBytes);
        }
    }
    // The whole byte counts, although the count is said to be no larger than the other one.
    numOfPictureParameterSets = ByteAt(box, at);
    ++at;
    for (std::uint32_t i = 0; i < numOfPictureParameterSets; ++i) {
        if (const auto set = TakeSet(box, at, ppsLength)) {
            ppsBytes.assign(set->begin(), set->end());
            pps = std::make_shared<const CPPS>(ppsBytes);
        }
    }
}

}  // namespace clipfix
