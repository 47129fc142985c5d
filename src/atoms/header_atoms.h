#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "atoms/atom_block.h"
#include "base/bytes.h"

namespace clipfix {

// The leaf atoms of fixed layout. QuickTime File Format, "Movie Atoms"; ISO/IEC 14496-12, 8.2 to
// 8.4 and 12.1, 12.2, in their version 0 layouts.
//
// Reading takes every field from its fixed place and tests neither length, version nor type: a
// field outside the atom is 0, and an atom of version 1 is read by the offsets of version 0. That
// is settled. `size` is the length that the parent passed. Durations are in ticks: those of `mvhd`
// and `tkhd` in the movie's time scale, that of `mdhd` in the media's.

// Movie header. Its image is 108 bytes, also where the atom that was read was longer; `size` then
// still says the longer length, and the sums of the parents use it.
struct CMvhd {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t version_Flag = 0;
    std::uint32_t creationTime = 0;      // seconds since 1904-01-01, UTC
    std::uint32_t modificationTime = 0;  // likewise
    std::uint32_t timescale = 0;         // ticks in one second
    std::uint32_t duration = 0;
    std::uint32_t prefferedRate = 0;    // 16.16
    std::uint16_t preferredVolume = 0;  // 8.8
    std::uint16_t reserved1 = 0;
    std::uint64_t reserved2 = 0;
    std::uint32_t matrix_A = 0;
    std::uint32_t matrix_B = 0;
    std::uint32_t matrix_U = 0;
    std::uint32_t matrix_C = 0;
    std::uint32_t matrix_D = 0;
    std::uint32_t matrix_V = 0;
    std::uint32_t matrix_X = 0;
    std::uint32_t matrix_Y = 0;
    std::uint32_t matrix_W = 0;
    std::uint32_t previewTime = 0;
    std::uint32_t previewDuration = 0;
    std::uint32_t posterTime = 0;
    std::uint32_t selectionTime = 0;
    std::uint32_t selectionDuration = 0;
    std::uint32_t currentTime = 0;
    std::uint32_t nextTrackID = 0;
    ByteVector data;  // the image as last serialised; empty after a read

    CMvhd() = default;
    explicit CMvhd(const AtomBlock& block);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.version_Flag, self.creationTime, self.modificationTime);
        visit(self.timescale, self.duration, self.prefferedRate, self.preferredVolume);
        visit(self.reserved1, self.reserved2);
        visit(self.matrix_A, self.matrix_B, self.matrix_U, self.matrix_C, self.matrix_D,
              self.matrix_V, self.matrix_X, self.matrix_Y, self.matrix_W);
        visit(self.previewTime, self.previewDuration, self.posterTime, self.selectionTime);
        visit(self.selectionDuration, self.currentTime, self.nextTrackID);
    }
};

// Track header. Its image is 92 bytes, with the same remark about `size`.
struct CTkhd {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t version_Flag = 0;
    std::uint32_t creationTime = 0;
    std::uint32_t modificationTime = 0;
    std::uint32_t trackID = 0;
    std::uint32_t reserved1 = 0;
    std::uint32_t duration = 0;
    std::uint64_t reserved2 = 0;
    std::uint16_t layer = 0;
    std::uint16_t alternateGroup = 0;
    std::uint16_t volume = 0;
    std::uint16_t resreved3 = 0;
    std::uint32_t matrix_A = 0;
    std::uint32_t matrix_B = 0;
    std::uint32_t matrix_U = 0;
    std::uint32_t matrix_C = 0;
    std::uint32_t matrix_D = 0;
    std::uint32_t matrix_V = 0;
    std::uint32_t matrix_X = 0;
    std::uint32_t matrix_Y = 0;
    std::uint32_t matrix_W = 0;
    std::uint32_t trackWidth = 0;   // 16.16 pixels
    std::uint32_t trackHeight = 0;  // likewise
    ByteVector data;                // the image as last serialised; empty after a read

    CTkhd() = default;
    explicit CTkhd(const AtomBlock& block);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.version_Flag, self.creationTime, self.modificationTime);
        visit(self.trackID, self.reserved1, self.duration, self.reserved2);
        visit(self.layer, self.alternateGroup, self.volume, self.resreved3);
        visit(self.matrix_A, self.matrix_B, self.matrix_U, self.matrix_C, self.matrix_D,
              self.matrix_V, self.matrix_X, self.matrix_Y, self.matrix_W);
        visit(self.trackWidth, self.trackHeight);
    }
};

// Media header, 32 bytes.
struct CMdhd {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t version_Flag = 0;
    std::uint32_t creationTime = 0;
    std::uint32_t modificationTime = 0;
    std::uint32_t timescale = 0;
    std::uint32_t duration = 0;
    std::uint16_t language = 0;
    std::uint16_t quality = 0;
    ByteVector data;

    CMdhd() = default;
    explicit CMdhd(const AtomBlock& block);
    // Makes the `mdhd` of a rebuilt track. Its dates are 0: neither the reference's nor today's.
    void Fill(std::uint32_t newDuration, std::uint32_t newTimescale, std::uint16_t newLanguage,
              std::uint16_t newQuality);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.version_Flag, self.creationTime, self.modificationTime);
        visit(self.timescale, self.duration, self.language, self.quality);
    }
};

// Handler reference. A rebuilt one is 34 bytes and holds no name.
struct CHdlr {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t version_Flag = 0;
    std::uint32_t componentType = 0;
    std::uint32_t componentSubtype = 0;
    std::uint32_t componentManufacturer = 0;
    std::uint32_t componentFlags = 0;
    std::uint32_t componentFlagsMask = 0;
    std::uint8_t stringSize = 0;
    std::uint8_t nameString = 0;
    std::string name;  // kept by Fill, and never written
    ByteVector data;

    CHdlr() = default;
    explicit CHdlr(const AtomBlock& block);
    void Fill(std::uint32_t newComponentType, std::uint32_t newComponentSubtype,
              std::uint8_t newStringSize, std::string_view newName);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.version_Flag, self.componentType, self.componentSubtype);
        visit(self.componentManufacturer, self.componentFlags, self.componentFlagsMask);
        visit(self.stringSize, self.nameString);
    }
};

// Video media header. The default one is what a rebuilt track gets: 20 bytes, flags 1, all else 0.
struct CVmhd {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint16_t graphicsMode = 0;
    std::uint16_t opColor_R = 0;
    std::uint16_t opColor_G = 0;
    std::uint16_t opColor_B = 0;
    ByteVector data;

    CVmhd();
    explicit CVmhd(const AtomBlock& block);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag);
        visit(self.graphicsMode, self.opColor_R, self.opColor_G, self.opColor_B);
    }
};

// Sound media header. The default one is what a rebuilt track gets: 16 bytes, all else 0.
struct CSmhd {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint16_t balance = 0;
    std::uint16_t reserved = 0;
    ByteVector data;

    CSmhd();
    explicit CSmhd(const AtomBlock& block);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag, self.balance, self.reserved);
    }
};

// Base media header, only read; a rebuilt tree holds none. It is not descended into.
struct CGmhd {
    std::uint32_t size = 0;
    std::uint32_t type = 0;

    explicit CGmhd(const AtomBlock& block);
};

// Base media information, only read; a rebuilt tree holds none. The fields of bytes 12 to 23 are
// 16 bits wide on disk.
struct CGmin {
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint32_t Gmode = 0;
    std::uint32_t opc_R = 0;
    std::uint32_t opc_G = 0;
    std::uint32_t opc_B = 0;
    std::uint32_t blnc = 0;
    std::uint32_t rsvd = 0;

    explicit CGmin(const AtomBlock& block);
};

// The head of a media data atom. It does not hold the payload.
struct CMdat {
    std::uint32_t type = 0;
    // The low 32 bits of the atom's size, also where its head states 64 bits: a media data atom of
    // 4 GiB or more loses the rest of its size here. That is settled.
    std::uint32_t size = 0;
    std::uint32_t offset = 0;  // as the caller gave it

    // From the first 16 bytes of the atom; fewer give type and size 0.
    CMdat(ByteView head, std::uint32_t position);
};

}  // namespace clipfix
