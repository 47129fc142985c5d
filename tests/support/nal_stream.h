#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "support/atom_builder.h"
#include "support/bit_writer.h"
#include "support/byte_builder.h"

namespace clipfix::test {

// NAL units with a 4-byte length word, built bit by bit, and the configuration records of streams
// of 64 x 48 pixels that they fit. The bytes behind what a test is about are filled with 0xA5.

constexpr std::uint8_t kFiller = 0xA5;

// The unit of `size` bytes, length word included, that begins with `start`.
inline ByteVector UnitOf(ByteView start, std::uint32_t size) {
    ByteVector unit = ByteBuilder().Big32(size - 4).Bytes(start).Take();
    unit.resize(size, kFiller);
    return unit;
}

// H.264 (ITU-T H.264, 7.3): frame_num has 4 bits, the picture order count 6.
inline ByteVector Sps264() {
    return BitWriter()
        .Bits(0x6742001E, 32)
        .Ue(0)       // id
        .Ue(0)       // log2_max_frame_num_minus4
        .Ue(0)       // pic_order_cnt_type
        .Ue(2)       // log2_max_pic_order_cnt_lsb_minus4
        .Ue(1)       // max_num_ref_frames
        .Bit(0)      // gaps_in_frame_num_value_allowed_flag
        .Ue(3)       // 4 macroblocks wide
        .Ue(2)       // 3 high
        .Bit(1)      // frame_mbs_only_flag
        .Bits(1, 1)  // direct_8x8_inference_flag
        .Bits(0, 2)  // no cropping, no VUI
        .Bit(1)
        .View();
}
inline ByteVector Pps264() {
    return BitWriter()
        .Bits(0x68, 8)
        .Ue(0)
        .Ue(0)
        .Bits(0, 2)
        .Ue(0)
        .Ue(0)
        .Ue(0)
        .Bits(0, 3)
        .Se(0)
        .Se(0)
        .Se(0)
        .Bits(1, 4)
        .View();
}

struct Slice264 {
    std::uint32_t firstMb = 0;
    std::uint32_t sliceType = 5;  // P, all slices of the picture
    std::uint32_t frameNum = 0;
    bool isIdr = false;
    std::uint32_t refIdc = 1;
    std::uint32_t size = 100;
};
inline ByteVector SliceUnit(const Slice264& slice) {
    const std::uint32_t head = (slice.refIdc << 5U) | (slice.isIdr ? 5U : 1U);
    return UnitOf(BitWriter()
                      .Bits(head, 8)
                      .Ue(slice.firstMb)
                      .Ue(slice.sliceType)
                      .Ue(0)
                      .Bits(slice.frameNum, 4)
                      .Bits(0xFFFF, 16)
                      .View(),
                  slice.size);
}
inline ByteVector Idr264(std::uint32_t size = 100) {
    return SliceUnit({.sliceType = 7, .isIdr = true, .size = size});
}
// One picture in one P slice.
inline ByteVector P264(std::uint32_t frameNum, std::uint32_t size = 100) {
    return SliceUnit({.frameNum = frameNum, .size = size});
}
inline ByteVector Sei264(std::uint32_t size = 20) {
    return UnitOf(ByteVector{0x06, 0x05}, size);
}
inline ByteVector Aud264(std::uint32_t size = 6) {
    return UnitOf(ByteVector{0x09, 0xF0}, size);
}
inline ByteVector PpsUnit264(std::uint32_t size = 20) {
    return UnitOf(Pps264(), size);
}
// A set in the stream is read one byte later than one in a record: its id stands at the sixth
// byte. This one is accepted where the reference's id is 0.
inline ByteVector SpsUnit264(std::uint32_t size = 20) {
    return UnitOf(ByteVector{0x67, 0x42, 0x00, 0x1E, 0x95, 0xFF, 0xFF, 0xFF, 0xFF}, size);
}
inline ByteVector AvcStsd264(std::uint8_t lengthSizeByte = 0xFF) {
    return Stsd({VideoEntry("avc1", 64, 48, {AvcC(lengthSizeByte, Sps264(), Pps264())})});
}

// H.265 (ITU-T H.265, 7.3). The sets are as short as the readers let them be.
inline ByteVector Vps265(std::uint32_t id = 0) {
    return ByteBuilder()
        .Bytes(BitWriter().Bits(0x4001, 16).Bits(id, 4).Bits(0, 4).View())
        .Zeros(5)
        .Take();
}
inline ByteVector Sps265(std::uint32_t id = 0) {
    return BitWriter().Bits(0x420101, 24).Ue(id).Ue(1).Ue(64).Ue(48).Bits(0, 7).View();
}
inline ByteVector Pps265(std::uint32_t id = 0) {
    return BitWriter().Bits(0x4401, 16).Ue(id).Ue(0).Bits(0, 6).View();
}
inline ByteVector HvcC265() {
    ByteBuilder body;
    body.Zeros(22).U8(3);
    for (const auto& [type, unit] :
         {std::pair<int, ByteVector>{32, Vps265()}, std::pair<int, ByteVector>{33, Sps265()},
          std::pair<int, ByteVector>{34, Pps265()}}) {
        body.U8(static_cast<std::uint8_t>(0x80 | type)).Big16(1);
        body.Big16(static_cast<std::uint16_t>(unit.size())).Bytes(unit);
    }
    return AtomOf("hvcC", body.View());
}
inline ByteVector HvcStsd265() {
    return Stsd({VideoEntry("hvc1", 64, 48, {HvcC265()})});
}

// Any unit of a type, with `body` behind its two bytes of head.
inline ByteVector Unit265(unsigned type, std::uint32_t size = 100, ByteView body = {}) {
    return UnitOf(ByteBuilder().U8(static_cast<std::uint8_t>(type << 1U)).U8(1).Bytes(body).View(),
                  size);
}
inline ByteVector Slice265(bool isFirst, unsigned type = 1, std::uint32_t size = 100) {
    BitWriter bits;
    bits.Bit(isFirst ? 1 : 0);
    if (type >= 16 && type <= 23) {
        bits.Bit(0);
    }
    return Unit265(type, size, bits.Ue(0).Bits(0, 16).View());
}
inline ByteVector VpsUnit265(std::uint32_t size = 30) {
    return UnitOf(Vps265(), size);
}
// The bytes behind the set are zero, as the reader wants them.
inline ByteVector SpsUnit265(std::uint32_t id = 0) {
    const ByteVector sps = Sps265(id);
    return ByteBuilder().Big32(static_cast<std::uint32_t>(sps.size())).Bytes(sps).Take();
}
inline ByteVector PpsUnit265(std::uint32_t size = 30) {
    return UnitOf(Pps265(), size);
}
inline ByteVector Sei265(std::uint32_t size = 30) {
    return Unit265(39, size);
}
inline ByteVector Aud265(std::uint32_t size = 7) {
    return Unit265(35, size);
}

}  // namespace clipfix::test
