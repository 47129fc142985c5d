#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "atoms/atom_block.h"
#include "base/bytes.h"

namespace clipfix {

// The tables of `stbl`. ISO/IEC 14496-12, 8.6 and 8.7; QuickTime File Format, "Sample Atoms".
//
// Reading takes the count from its fixed place and then as many entries as fit: the count keeps
// the stated number, and the list may be shorter. A table that was read has no image (`data`),
// with the one exception of `ctts`. A table that was only made by its default constructor is
// empty in every sense: size 0, no image.

// One run of samples that last equally long.
struct CTimetoSampleEntry {
    std::uint32_t sampleCount = 0;
    std::uint32_t sampleDuration = 0;  // ticks of the media's time scale

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.sampleCount, self.sampleDuration);
    }
};

// One run of chunks that hold equally many samples.
struct CSampleToChunkEntery {
    std::uint32_t firstChunk = 0;  // chunks count from 1
    std::uint32_t samplesPerChunk = 0;
    std::uint32_t sampleDescID = 0;  // descriptions count from 1

    CSampleToChunkEntery() = default;
    constexpr CSampleToChunkEntery(std::uint32_t first, std::uint32_t samples,
                                   std::uint32_t description)
        : firstChunk(first), samplesPerChunk(samples), sampleDescID(description) {}

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.firstChunk, self.samplesPerChunk, self.sampleDescID);
    }
};

// One run of samples that are shown equally long after they are decoded.
struct CompositionOffsetEntery {
    std::uint32_t sample = 0;  // how many samples
    std::uint32_t comp = 0;    // offset in ticks of the media's time scale

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.sample, self.comp);
    }
};

// Time to sample. A rebuilt one has a single entry.
struct CStts {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint32_t numberOfEntries = 0;
    std::vector<CTimetoSampleEntry> entries;
    ByteVector data;

    CStts() = default;
    explicit CStts(const AtomBlock& block);
    void Fill(std::uint32_t sampleCount, std::uint32_t sampleDuration);
    // Of the first entry; 0 for an empty list.
    [[nodiscard]] std::uint32_t GetFirstSampleDuration() const;
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag, self.numberOfEntries);
    }
};

// Sample to chunk.
struct CStsc {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint32_t numberOfEntries = 0;
    // Shared with whoever gave the list; null counts as empty.
    std::shared_ptr<std::vector<CSampleToChunkEntery>> entries;
    ByteVector data;

    CStsc() = default;
    explicit CStsc(const AtomBlock& block);
    // Keeps the list and does not copy it.
    void Fill(std::shared_ptr<std::vector<CSampleToChunkEntery>> runs);
    // Makes the image of a table that was read. Size and entries stay as they are, so that the
    // image is shorter than `size` where entries did not fit.
    void Refresh();
    [[nodiscard]] ByteVector Serialize() const;

    // Samples in each chunk of the first run; 0 for an empty list.
    [[nodiscard]] std::uint32_t FirstSamplesPerChunk() const;
    [[nodiscard]] bool IsEmpty() const { return entries == nullptr || entries->empty(); }

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag, self.numberOfEntries);
    }
};

// Sample sizes, in bytes.
struct CStsz {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint32_t sampleSize = 0;  // of all samples; 0 when each has its own in the table
    std::uint32_t numberOfEntries = 0;
    std::vector<std::uint32_t> entries;
    ByteVector data;

    CStsz() = default;
    explicit CStsz(const AtomBlock& block);
    void Fill(const std::vector<std::uint32_t>& sizes);
    // All samples alike, and no table.
    void FillUniform(std::uint32_t count, std::uint32_t uniformSize);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag, self.sampleSize, self.numberOfEntries);
    }
};

// Chunk offsets: `stco` and `co64`. Read in both forms, written as `co64` always.
struct CStco {
    enum class Form { Offsets32, Offsets64 };

    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint32_t numberOfEntries = 0;
    // Offsets in bytes in the file. Those of a `co64` that was read are not the file's; see there.
    std::vector<std::uint64_t> entries;
    ByteVector data;

    CStco() = default;
    CStco(const AtomBlock& block, Form form);
    void Fill(const std::vector<std::uint64_t>& offsets);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag, self.numberOfEntries);
    }
};

// Sync samples.
struct CStss {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint32_t numberOfEntries = 0;
    std::vector<std::uint32_t> entries;  // numbers of samples, counted from 1
    ByteVector data;

    CStss() = default;
    explicit CStss(const AtomBlock& block);
    // Sync samples at a constant distance. `sampleSync` is the number of the reference's second
    // sync sample; see the source for the rules.
    void Fill(std::uint32_t sampleCount, std::uint32_t sampleSync);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag, self.numberOfEntries);
    }
};

// Composition offsets. Never rebuilt: the one that was read is ready to be written.
struct CCtts {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint32_t numOfEntry = 0;
    std::vector<CompositionOffsetEntery> entries;
    ByteVector data;

    CCtts() = default;
    explicit CCtts(const AtomBlock& block);
    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag, self.numOfEntry);
    }
};

}  // namespace clipfix
