#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "atoms/moov.h"
#include "support/atom_builder.h"

namespace clipfix::test {

// The pieces of a small healthy movie: a video track of 6 samples at 30 per second and sound
// tracks, each piece replaceable by a test.

inline std::unique_ptr<CMoov> ReadMoov(const ByteVector& bytes) {
    MovieRead read;
    return std::make_unique<CMoov>(bytes, read);
}

inline ByteVector Stsz(std::initializer_list<std::uint32_t> sizes) {
    ByteBuilder payload;
    payload.Big32(0).Big32(static_cast<std::uint32_t>(sizes.size()));
    for (const std::uint32_t size : sizes) {
        payload.Big32(size);
    }
    return FullAtom("stsz", payload.View());
}

// An `stsz` of `count` samples of one size, without a table.
inline ByteVector UniformStsz(std::uint32_t count, std::uint32_t size) {
    return FullAtom("stsz", ByteBuilder().Big32(size).Big32(count).Take());
}

inline ByteVector SmallAvcC() {
    const ByteVector sps{0x67, 0x42, 0xC0, 0x1E, 0xD9, 0x00, 0xA0, 0x47, 0xFE, 0xC8};
    const ByteVector pps{0x68, 0xCE, 0x3C, 0x80};
    return AvcC(0xFF, sps, pps);
}

inline ByteVector AvcStsd() {
    return Stsd({VideoEntry("avc1", 64, 48, {SmallAvcC()})});
}
inline ByteVector Mp4aStsd() {
    return Stsd({AudioEntry("mp4a", 0, {Esds(ByteVector{0x12, 0x10})})});
}

inline ByteVector VideoStbl() {
    return Atom("stbl", {AvcStsd(), Table("stts", 1, {6, 1000}), Table("stsc", 1, {1, 6, 1}),
                         Stsz({60, 61, 62, 63, 64, 65}), Table("stco", 1, {48})});
}
inline ByteVector AacStbl() {
    return Atom("stbl", {Mp4aStsd(), Table("stts", 1, {4, 1024}), Table("stsc", 1, {1, 4, 1}),
                         Stsz({20, 21, 22, 23}), Table("stco", 1, {500})});
}
// 10 samples in 2 chunks of 5.
inline ByteVector PcmStbl(std::string_view format) {
    return Atom("stbl",
                {Stsd({AudioEntry(format, 0)}), Table("stts", 1, {10, 1}),
                 Table("stsc", 1, {1, 5, 1}), UniformStsz(10, 1), Table("stco", 2, {500, 520})});
}

inline ByteVector VideoMinf(const ByteVector& stbl) {
    return Atom("minf", {Vmhd(), Hdlr("url "), Dinf(), stbl});
}
inline ByteVector AudioMinf(const ByteVector& stbl) {
    return Atom("minf", {Smhd(), Hdlr("url "), Dinf(), stbl});
}
// 6 samples over 6000 ticks of 1/30000 second: 30 samples a second.
inline ByteVector VideoMdia(const ByteVector& minf) {
    return Atom("mdia", {Mdhd(30000, 6000, 0x15C7, 3), Hdlr("vide"), minf});
}
// 4 samples of 1024 over 4096 ticks of 1/48000 second: 46.875 samples a second.
inline ByteVector AacMdia(const ByteVector& minf) {
    return Atom("mdia", {Mdhd(48000, 4096), Hdlr("soun"), minf});
}

inline ByteVector VideoTrak(const ByteVector& stbl = VideoStbl()) {
    return Atom("trak", {Tkhd(1, 200, 1920, 1080), VideoMdia(VideoMinf(stbl))});
}
inline ByteVector AacTrak(const ByteVector& stbl = AacStbl()) {
    return Atom("trak", {Tkhd(2, 85), AacMdia(AudioMinf(stbl))});
}
// 10 samples over 10 ticks of 1/48000 second: 48000 samples a second.
inline ByteVector PcmTrak(std::string_view format) {
    return Atom(
        "trak",
        {Tkhd(2, 1), Atom("mdia", {Mdhd(48000, 10), Hdlr("soun"), AudioMinf(PcmStbl(format))})});
}
inline ByteVector TimecodeTrak() {
    const ByteVector stbl =
        Atom("stbl", {Stsd({AtomOf("tmcd", ByteVector(26))}), Table("stts", 1, {1, 6000}),
                      Table("stsc", 1, {1, 1, 1}), Stsz({4}), Table("stco", 1, {900})});
    const ByteVector gmhd = Atom("gmhd", {FullAtom("gmin", ByteVector(12))});
    return Atom("trak", {Tkhd(3, 200), Atom("mdia", {Mdhd(30000, 6000), Hdlr("tmcd"),
                                                     Atom("minf", {gmhd, Dinf(), stbl})})});
}

inline ByteVector Moov(Atoms tracks) {
    ByteBuilder payload;
    payload.Bytes(Mvhd(1000, 999));
    for (const ByteVector& track : tracks) {
        payload.Bytes(track);
    }
    return AtomOf("moov", payload.View());
}

}  // namespace clipfix::test
