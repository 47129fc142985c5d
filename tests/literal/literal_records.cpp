#include <algorithm>

#include "literal/literal_bits.h"
#include "literal/literal_codec.h"

namespace clipfix::test {

namespace {

std::uint8_t RecordByte(ByteView bytes, std::size_t at) {
    return static_cast<std::uint8_t>(BigNumber(bytes, at, 1));
}
std::uint16_t RecordNumber16(ByteView bytes, std::size_t at) {
    return static_cast<std::uint16_t>(BigNumber(bytes, at, 2));
}
std::uint32_t RecordNumber32(ByteView bytes, std::size_t at) {
    return BigNumber(bytes, at, 4);
}
ByteVector RecordBytes(ByteView bytes, std::size_t at, std::size_t length) {
    ByteVector copy(length);
    for (std::size_t i = 0; i < length; ++i) {
        copy[i] = RecordByte(bytes, at + i);
    }
    return copy;
}

}  // namespace

LiteralAvcRecord LiteralAvcC(ByteView box) {
    LiteralAvcRecord record;
    if (box.empty()) {
        return record;
    }
    record.size = static_cast<std::uint32_t>(box.size());
    record.type = RecordNumber32(box, 4);
    record.configurationVersion = RecordByte(box, 8);
    record.AVCProfileIndication = RecordByte(box, 9);
    record.profile_compatibility = RecordByte(box, 10);
    record.AVCLevelIndication = RecordByte(box, 11);
    record.lengthSizeMinusOne = RecordByte(box, 12) % 4;
    record.numOfSequenceParameterSets = RecordByte(box, 13) % 32;
    std::size_t i = 14;
    for (std::uint32_t round = 0; round < record.numOfSequenceParameterSets; ++round) {
        if (i + 2 > box.size()) {
            continue;
        }
        record.spsLength = RecordNumber16(box, i);
        i += 2;
        if (i + record.spsLength > box.size()) {
            continue;
        }
        record.spsBytes = RecordBytes(box, i, record.spsLength);
        i += record.spsLength;
        record.sps = LiteralSps264(record.spsBytes);
    }
    record.numOfPictureParameterSets = RecordByte(box, i);
    i += 1;
    for (std::uint32_t round = 0; round < record.numOfPictureParameterSets; ++round) {
        if (i + 2 > box.size()) {
            continue;
        }
        record.ppsLength = RecordNumber16(box, i);
        i += 2;
        if (i + record.ppsLength > box.size()) {
            continue;
        }
        record.ppsBytes = RecordBytes(box, i, record.ppsLength);
        record.pps = LiteralPps264(record.ppsBytes);
        i += record.ppsLength;
    }
    return record;
}

LiteralHevcRecord LiteralHvcC(ByteView box, std::int32_t expectedWidth,
                              std::int32_t expectedHeight) {
    LiteralHevcRecord record;
    if (box.size() < 30) {
        return record;
    }
    record.size = RecordNumber32(box, 0);
    record.type = RecordNumber32(box, 4);
    if (RecordByte(box, 30) <= 2) {
        return record;
    }
    std::size_t i = 31;
    while (i + 2 < box.size()) {
        const int t = RecordByte(box, i) / 2;
        if (t == 32 || t == 33 || t == 34) {
            std::uint8_t& count = t == 32 ? record.numVps : t == 33 ? record.numSps : record.numPps;
            std::uint16_t& length = t == 32   ? record.vpsLength
                                    : t == 33 ? record.spsLength
                                              : record.ppsLength;
            count = RecordByte(box, i - 3);
            for (int repetition = 0; repetition < count; ++repetition) {
                length = RecordNumber16(box, i - 2);
                if (i + length > box.size()) {
                    continue;
                }
                const ByteVector unit = RecordBytes(box, i, length);
                i += length;
                if (t == 32) {
                    const auto vps = LiteralVps265(unit);
                    record.vps = vps.accepted ? std::optional(vps.object) : std::nullopt;
                } else if (t == 33) {
                    const auto sps = LiteralSps265(unit, expectedWidth, expectedHeight);
                    record.sps = sps.accepted ? std::optional(sps.object) : std::nullopt;
                } else {
                    const auto pps =
                        LiteralPps265(unit, record.sps.has_value() ? &*record.sps : nullptr);
                    record.pps = pps.accepted ? std::optional(pps.object) : std::nullopt;
                }
            }
        }
        i += 1;
    }
    return record;
}

namespace {

// The length of the descriptor whose tag stands ahead of `place`, which is moved behind it.
std::uint8_t DescriptorLength(ByteView bytes, std::size_t end, std::size_t& place) {
    if (place >= end) {
        return 0;
    }
    std::uint8_t length = RecordByte(bytes, place);
    ++place;
    while (length == 0x80 && place < end) {
        length = RecordByte(bytes, place);
        ++place;
    }
    return length;
}

bool IsChildLength(std::uint8_t length) {
    return length != 0 && length != 0x80;
}

}  // namespace

LiteralDecoderConfig LiteralDecoder(ByteView payload) {
    LiteralDecoderConfig d;
    d.length = static_cast<std::uint8_t>(payload.size());
    d.objectTypeIndication = RecordByte(payload, 0);
    d.streamType = RecordByte(payload, 1) / 4;
    d.upStream = RecordByte(payload, 1) / 2 % 2;
    d.reserved = RecordByte(payload, 1) % 2;
    d.bufferSizeDB =
        RecordByte(payload, 2) + RecordByte(payload, 3) * 256 + RecordByte(payload, 4) * 65536;
    d.brate = RecordNumber32(payload, 5);
    d.abrate = RecordNumber32(payload, 9);
    const std::size_t end = std::min<std::size_t>(payload.size(), d.length);
    if (end > 13 && RecordByte(payload, 13) == 5) {
        std::size_t place = 14;
        const std::uint8_t length = DescriptorLength(payload, end, place);
        if (IsChildLength(length) && place + length <= end) {
            d.specificInfo = RecordBytes(payload, place, length);
        }
    }
    return d;
}

LiteralObjectDescriptor LiteralObject(ByteView payload) {
    LiteralObjectDescriptor o;
    o.length = static_cast<std::uint8_t>(payload.size());
    o.esid = RecordNumber16(payload, 0);
    const std::uint8_t flags = RecordByte(payload, 2);
    o.streamDependenceFlag = flags / 128;
    o.URL_Flag = flags / 64 % 2;
    o.OCRstreamFlag = flags / 32 % 2;
    o.streamPriority = flags % 32;
    std::size_t place = 3;
    if (o.streamDependenceFlag == 1) {
        o.desid = RecordNumber16(payload, 3);
        place = 5;
    }
    if (o.URL_Flag == 1) {
        o.urlLength = RecordByte(payload, place);
        place += 1 + std::size_t{o.urlLength};
    }
    if (o.OCRstreamFlag == 1) {
        o.ocresid = RecordNumber16(payload, place);
        place += 2;
    }
    const std::size_t end = std::min<std::size_t>(payload.size(), o.length);
    if (place < end && RecordByte(payload, place) == 4) {
        // A child that does not fit leaves the place behind its length.
        ++place;
        const std::uint8_t length = DescriptorLength(payload, end, place);
        if (IsChildLength(length) && place + length <= end) {
            o.decoderConfig = LiteralDecoder(RecordBytes(payload, place, length));
            place += length;
        }
    }
    if (place + 2 < end && RecordByte(payload, place) == 6) {
        std::size_t behind = place + 1;
        const std::uint8_t length = DescriptorLength(payload, end, behind);
        if (IsChildLength(length)) {
            o.slConfig = LiteralSlConfig{length, RecordBytes(payload.first(end), behind, length)};
        }
    }
    return o;
}

LiteralEsds LiteralEsdsAtom(ByteView atom) {
    LiteralEsds e;
    e.ssize = RecordNumber32(atom, 0);
    e.stype = RecordNumber32(atom, 4);
    e.vflag = RecordNumber32(atom, 8);
    if (RecordByte(atom, 12) == 3) {
        std::size_t place = 13;
        const std::uint8_t length = DescriptorLength(atom, atom.size(), place);
        if (IsChildLength(length) && place + length <= atom.size()) {
            e.objectDescriptor = LiteralObject(RecordBytes(atom, place, length));
        }
    }
    return e;
}

}  // namespace clipfix::test
