#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/bytes.h"
#include "codec/avc_configuration_record.h"
#include "codec/hevc_configuration_record.h"
#include "codec/mpeg4_descriptors.h"

namespace clipfix::test {

// A slow, literal model of the movie tree: every container with its own scan, every table with its
// own loop, every block a copy. It shares the parsers of the codec records with the program and
// nothing else. A pointer is null where the atom is absent.

// The bytes that a parent hands over, and the length that it says they have. A byte that is not
// there reads as zero.
struct LiteralAtomBlock {
    ByteVector bytes;
    std::uint32_t length = 0;

    [[nodiscard]] std::uint32_t U8(std::uint64_t at) const;
    [[nodiscard]] std::uint32_t U16(std::uint64_t at) const;
    [[nodiscard]] std::uint32_t U32(std::uint64_t at) const;
    [[nodiscard]] bool Spells(std::uint64_t at, std::string_view letters) const;
    [[nodiscard]] LiteralAtomBlock Copy(std::uint64_t at, std::uint32_t count) const;
    // Whether `count` bytes from `at` on are within the block.
    [[nodiscard]] bool Holds(std::uint64_t at, std::uint64_t count) const;
};

// What one read of a movie leaves behind besides the tree.
struct LiteralGlobals {
    std::uint32_t trackCount = 0;
    std::uint32_t stblChildBytes = 0;
    std::string videoCoder;
    std::string audioCoder;
};

// `mvhd`, `tkhd`: the fields that anything asks for, and the image with all the others in it.
struct LiteralHeader {
    std::uint32_t size = 0;
    std::uint32_t timescale = 0;  // of `mvhd` only
    std::uint32_t duration = 0;
    ByteVector fixed;  // 108 or 92 bytes as they were read

    // The image with `duration` at its place, which is byte `durationAt`.
    [[nodiscard]] ByteVector Serialize(std::size_t durationAt) const;
};

struct LiteralMdhd {
    std::uint32_t size = 0;
    std::uint32_t timescale = 0;
    std::uint32_t duration = 0;
    std::uint32_t language = 0;
    std::uint32_t quality = 0;
};

struct LiteralVideoEntry {
    std::uint32_t dformat = 0;
    std::uint32_t wt = 0;
    std::uint32_t ht = 0;
    std::uint32_t dpth = 0;
    // At most one of the two: the record that was stored last.
    std::shared_ptr<CAVCDecoderConfigurationRecord> avcC;
    std::shared_ptr<HVCDecoderConfigurationRecord> hvcC;
    std::shared_ptr<CAVCDecoderConfigurationRecord> avcConfig;
};

struct LiteralAudioEntry {
    std::uint32_t dformat = 0;
    std::uint32_t vrsn = 0;
    std::uint32_t nchanel = 0;
    std::uint32_t smplsize = 0;
    std::uint32_t srate = 0;
    std::uint32_t sppacket = 0;
    std::uint32_t bppacket = 0;
    std::uint32_t bpframe = 0;
    std::uint32_t bpsample = 0;
    std::shared_ptr<CEsdsDecoder> esds;
};

// One of the two is set.
struct LiteralEntry {
    std::shared_ptr<LiteralVideoEntry> video;
    std::shared_ptr<LiteralAudioEntry> audio;
};

struct LiteralStsd {
    std::uint32_t size = 0;
    std::uint32_t numberOfEntries = 0;
    std::string coderFormat;
    std::vector<LiteralEntry> entries;
    ByteVector data;

    [[nodiscard]] std::uint32_t NalLengthSize() const;
    [[nodiscard]] const LiteralVideoEntry* KnownVideo() const;
};

// A table of numbers, `width` of them in each entry.
struct LiteralTable {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint32_t sampleSize = 0;  // of `stsz` only
    std::uint32_t numberOfEntries = 0;
    std::vector<std::vector<std::uint64_t>> entries;
    ByteVector data;
};

struct LiteralStbl {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::shared_ptr<LiteralStsd> stsd;
    std::shared_ptr<LiteralTable> stts;
    std::shared_ptr<LiteralTable> stss;
    std::shared_ptr<LiteralTable> stsc;
    std::shared_ptr<LiteralTable> stsz;
    std::shared_ptr<LiteralTable> stco;
    std::shared_ptr<LiteralTable> ctts;
    ByteVector data;
};

struct LiteralMinf {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::string mediaType;
    bool hasDinf = false;
    bool hasGmin = false;
    std::shared_ptr<std::uint32_t> hdlr;  // its subtype
    std::shared_ptr<LiteralStbl> stbl;
    ByteVector data;
};

struct LiteralMdia {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::string mediaType;
    double sampleRate = 0.0;
    std::shared_ptr<std::uint32_t> hdlr;  // its subtype
    std::shared_ptr<LiteralMinf> minf;
    std::shared_ptr<LiteralMdhd> mdhd;
    bool hasUdta = false;
    ByteVector data;
};

struct LiteralTrak {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t timescale = 0;
    std::uint32_t mediaDuration = 0;
    std::uint32_t sampleCount = 0;
    std::uint32_t sampleDuration = 0;
    std::uint32_t trackDuration = 0;
    double sampleRate = 0.0;
    std::string trackType;
    std::string coderFormat;
    bool hasEdts = false;
    bool hasUdta = false;
    std::shared_ptr<LiteralMdia> mdia;
    std::shared_ptr<LiteralHeader> tkhd;
    ByteVector data;
};

// What a repair found out about a track.
struct LiteralRequest {
    std::vector<std::uint64_t> stcoEntries;
    std::vector<std::uint32_t> stszEntries;
    std::vector<std::vector<std::uint64_t>> stscEntries;
    std::uint32_t timescale = 0;
    double sampleRate = 0.0;
    std::string requestType;
};

struct LiteralMoov {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::shared_ptr<LiteralHeader> mvhd;
    std::vector<std::shared_ptr<LiteralTrak>> tracks;

    [[nodiscard]] const LiteralTrak* FirstOf(std::string_view kind) const;
};

// Reading.
[[nodiscard]] LiteralMoov LiteralReadMoov(const LiteralAtomBlock& block, LiteralGlobals& globals);
[[nodiscard]] std::shared_ptr<LiteralStsd> LiteralReadStsd(const LiteralAtomBlock& block,
                                                           LiteralGlobals& globals);
[[nodiscard]] LiteralTable LiteralReadTable(const LiteralAtomBlock& block, std::string_view code);
[[nodiscard]] LiteralHeader LiteralReadMvhd(const LiteralAtomBlock& block);
[[nodiscard]] LiteralHeader LiteralReadTkhd(const LiteralAtomBlock& block);

// Thrown where a count that is not a count of anything makes a table that no test can hold.
struct LiteralTableTooLong : std::exception {};
inline constexpr std::uint32_t kMostSyncSamples = 1'000'000;

// Building. The reference is changed: it shares its headers with what is made of it.
[[nodiscard]] std::optional<LiteralMoov> LiteralCreateMoov(LiteralMoov& reference,
                                                           const LiteralRequest& video,
                                                           const LiteralRequest& audio);
[[nodiscard]] ByteVector LiteralWriteMoov(const LiteralMoov& moov);
[[nodiscard]] ByteVector LiteralSerializeTable(const LiteralTable& table, std::string_view code);
void LiteralClassify(LiteralTrak& trak);
void LiteralUpdate(LiteralTrak& trak);

// The walk over a file's top level.
struct LiteralFtyp {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t brand = 0;
};
struct LiteralMdat {
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    std::uint32_t offset = 0;
};
struct LiteralStructure {
    std::shared_ptr<LiteralMoov> moov;
    std::optional<LiteralMdat> mdat;
    std::optional<LiteralFtyp> ftyp;
    LiteralGlobals globals;
    std::uint64_t position = 0;  // where the walk ended
    std::uint64_t rounds = 0;
};
[[nodiscard]] LiteralStructure LiteralCheckStructure(ByteView file);

}  // namespace clipfix::test
