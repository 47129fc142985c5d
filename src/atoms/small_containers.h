#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "atoms/atom_block.h"
#include "base/bytes.h"

namespace clipfix {

// Data information, edit list and user data. What is read of them reaches neither the repaired
// movie nor any decision; a rebuilt movie gets `dinf` and `edts` of its own. QuickTime File
// Format, "Data Information Atoms", "Edit Atoms", "User Data Atoms"; ISO/IEC 14496-12, 8.6.5,
// 8.7.1, 8.10.1.

// One data reference; 12 bytes when rebuilt.
struct CDrefentry {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;

    CDrefentry() = default;
    explicit CDrefentry(const AtomBlock& block);

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag);
    }
};

struct CDref {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint32_t numberOfEntries = 0;
    std::optional<CDrefentry> lastEntry;  // of those read
    std::vector<CDrefentry> entries;      // of a rebuilt one
    ByteVector data;

    CDref() = default;
    explicit CDref(const AtomBlock& block);
    void Fill(std::uint32_t code);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag, self.numberOfEntries);
    }
};

struct CDinf {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    CDref dref;
    ByteVector data;

    CDinf() = default;
    // The child at byte 8 is taken for `dref` by its position.
    explicit CDinf(const AtomBlock& block);
    // One reference of the kind `code` to the movie's own file.
    void Fill(std::uint32_t code);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type);
    }
};

// One edit.
struct CEditListEntry {
    std::uint32_t trackDuration = 0;  // ticks of the movie's time scale
    std::uint32_t mediaTime = 0;      // ticks of the media's time scale
    std::uint32_t mediaRate = 0;      // 16.16

    CEditListEntry() = default;
    CEditListEntry(std::uint32_t duration, std::uint32_t time, std::uint32_t rate)
        : trackDuration(duration), mediaTime(time), mediaRate(rate) {}
    explicit CEditListEntry(const AtomBlock& block);

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.trackDuration, self.mediaTime, self.mediaRate);
    }
};

struct CElst {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint32_t numberOfEntries = 0;
    std::optional<CEditListEntry> lastEntry;  // of those read
    std::vector<CEditListEntry> entries;      // of a rebuilt one
    ByteVector data;

    CElst() = default;
    explicit CElst(const AtomBlock& block);
    void Fill(const CEditListEntry& edit);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag, self.numberOfEntries);
    }
};

struct CEdts {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    CElst elst;
    ByteVector data;

    CEdts() = default;
    // The child at byte 8 is taken for `elst` by its position.
    explicit CEdts(const AtomBlock& block);
    // One edit over `duration` ticks of the movie that starts `mediaTime` ticks into the media.
    void Fill(std::uint32_t duration, std::uint32_t mediaTime);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type);
    }
};

// The contents are not kept.
struct CUdta {
    std::uint32_t size = 0;
    std::uint32_t type = 0;

    explicit CUdta(const AtomBlock& block) : size(block.length), type(block.CodeAt(0)) {}
};

}  // namespace clipfix
