#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

#include "base/bytes.h"
#include "support/byte_builder.h"

namespace clipfix::test {

// QuickTime atoms for tests, each a function from its fields to its bytes. The sizes are worked
// out here; a test that wants a wrong one changes it afterwards with WithSize.

using Atoms = std::initializer_list<ByteVector>;

// An atom around bytes.
inline ByteVector AtomOf(std::string_view code, ByteView payload) {
    return ByteBuilder()
        .Big32(static_cast<std::uint32_t>(payload.size() + 8))
        .Text(code)
        .Bytes(payload)
        .Take();
}

// An atom around other atoms.
inline ByteVector Atom(std::string_view code, Atoms children = {}) {
    ByteBuilder payload;
    for (const ByteVector& child : children) {
        payload.Bytes(child);
    }
    return AtomOf(code, payload.View());
}

// The same bytes under another size field.
inline ByteVector WithSize(ByteVector atom, std::uint32_t size) {
    StoreBig32(atom, 0, size);
    return atom;
}

// An atom with version and flags 0 and bytes behind them.
inline ByteVector FullAtom(std::string_view code, ByteView payload) {
    return AtomOf(code, ByteBuilder().Big32(0).Bytes(payload).Take());
}

// A table: version and flags, the count, the numbers of its entries.
inline ByteVector Table(std::string_view code, std::uint32_t count,
                        std::initializer_list<std::uint32_t> numbers) {
    ByteBuilder payload;
    payload.Big32(count);
    for (const std::uint32_t number : numbers) {
        payload.Big32(number);
    }
    return FullAtom(code, payload.View());
}

inline ByteVector Mvhd(std::uint32_t timescale, std::uint32_t duration) {
    return FullAtom("mvhd", ByteBuilder()
                                .Big32(0xC0000001)  // created
                                .Big32(0xC0000002)  // modified
                                .Big32(timescale)
                                .Big32(duration)
                                .Big32(0x00010000)  // rate 1.0
                                .Big16(0x0100)      // volume 1.0
                                .Zeros(10)
                                .Big32(0x00010000)
                                .Zeros(12)
                                .Big32(0x00010000)
                                .Zeros(12)
                                .Big32(0x40000000)
                                .Zeros(24)
                                .Big32(7)  // next track
                                .Take());
}

inline ByteVector Tkhd(std::uint32_t trackId, std::uint32_t duration, std::uint32_t width = 0,
                       std::uint32_t height = 0) {
    return AtomOf("tkhd", ByteBuilder()
                              .Big32(0x00000007)  // enabled, in movie, in preview
                              .Big32(0xC0000003)  // created
                              .Big32(0xC0000004)  // modified
                              .Big32(trackId)
                              .Big32(0)
                              .Big32(duration)
                              .Zeros(8)
                              .Big16(1)       // layer
                              .Big16(2)       // alternate group
                              .Big16(0x0100)  // volume
                              .Big16(0)
                              .Big32(0x00010000)
                              .Zeros(12)
                              .Big32(0x00010000)
                              .Zeros(12)
                              .Big32(0x40000000)
                              .Big32(width << 16U)
                              .Big32(height << 16U)
                              .Take());
}

inline ByteVector Mdhd(std::uint32_t timescale, std::uint32_t duration,
                       std::uint16_t language = 0x55C4, std::uint16_t quality = 0) {
    return FullAtom("mdhd", ByteBuilder()
                                .Big32(0xC0000005)
                                .Big32(0xC0000006)
                                .Big32(timescale)
                                .Big32(duration)
                                .Big16(language)
                                .Big16(quality)
                                .Take());
}

inline ByteVector Hdlr(std::string_view subtype) {
    return FullAtom(
        "hdlr",
        ByteBuilder().Text("mhlr").Text(subtype).Zeros(12).U8(4).Text("Name").Zeros(1).Take());
}

inline ByteVector Vmhd() {
    return AtomOf("vmhd", ByteBuilder().Big32(1).Big16(0x40).Big16(1).Big16(2).Big16(3).Take());
}

inline ByteVector Smhd() {
    return FullAtom("smhd", ByteBuilder().Big16(5).Big16(6).Take());
}

inline ByteVector Dinf() {
    return Atom("dinf",
                {FullAtom("dref", ByteBuilder().Big32(1).Big32(12).Text("url ").Big32(1).Take())});
}

// A sample description around entries.
inline ByteVector Stsd(Atoms entries) {
    ByteBuilder payload;
    payload.Big32(static_cast<std::uint32_t>(entries.size()));
    for (const ByteVector& entry : entries) {
        payload.Bytes(entry);
    }
    return FullAtom("stsd", payload.View());
}

// The 86 fixed bytes of a video entry, then extensions.
inline ByteVector VideoEntry(std::string_view format, std::uint16_t width, std::uint16_t height,
                             Atoms extensions = {}) {
    ByteBuilder payload;
    payload.Zeros(6).Big16(1).Zeros(16).Big16(width).Big16(height);
    payload.Big32(0x00480000).Big32(0x00480000).Big32(0).Big16(1).Zeros(32);
    payload.Big16(24).Big16(0xFFFF);
    for (const ByteVector& extension : extensions) {
        payload.Bytes(extension);
    }
    return AtomOf(format, payload.View());
}

// The 36 fixed bytes of a sound entry, then whatever follows.
inline ByteVector AudioEntry(std::string_view format, std::uint16_t version, Atoms rest = {}) {
    ByteBuilder payload;
    payload.Zeros(6).Big16(1).Big16(version).Zeros(6).Big16(2).Big16(16).Zeros(4);
    payload.Big32(48000U << 16U);
    for (const ByteVector& part : rest) {
        payload.Bytes(part);
    }
    return AtomOf(format, payload.View());
}

// An `avcC` with one set of each kind.
inline ByteVector AvcC(std::uint8_t lengthSizeByte, ByteView sps, ByteView pps) {
    return AtomOf("avcC", ByteBuilder()
                              .U8(1)
                              .U8(0x42)
                              .U8(0xC0)
                              .U8(0x1E)
                              .U8(lengthSizeByte)
                              .U8(0xE1)
                              .Big16(static_cast<std::uint16_t>(sps.size()))
                              .Bytes(sps)
                              .U8(1)
                              .Big16(static_cast<std::uint16_t>(pps.size()))
                              .Bytes(pps)
                              .Take());
}

// An `esds` whose decoder-specific bytes are `specific`, with the lengths in their short form.
inline ByteVector Esds(ByteView specific, std::uint32_t maximumBitrate = 128000,
                       std::uint32_t averageBitrate = 96000) {
    const auto specificLength = static_cast<std::uint8_t>(specific.size());
    const auto configLength = static_cast<std::uint8_t>(15 + specificLength);
    return FullAtom("esds", ByteBuilder()
                                .U8(3)
                                .U8(static_cast<std::uint8_t>(5 + configLength))
                                .Big16(0)
                                .U8(0)
                                .U8(4)
                                .U8(configLength)
                                .U8(0x40)
                                .U8(0x15)
                                .Zeros(3)
                                .Big32(maximumBitrate)
                                .Big32(averageBitrate)
                                .U8(5)
                                .U8(specificLength)
                                .Bytes(specific)
                                .Take());
}

}  // namespace clipfix::test
