#include "atoms/sample_tables.h"

#include <algorithm>
#include <utility>

#include "atoms/fields.h"
#include "base/fourcc.h"

namespace clipfix {

namespace {

// Where the entries of a table begin, behind size, type, version and flags, and the count.
constexpr std::size_t kTableAt = 16;
constexpr std::size_t kSizeTableAt = 20;

// The sum of a table's head and entries. It may wrap in 32 bits; a movie with tables of 4 GiB is
// refused before it is written.
template <typename Entry>
std::uint32_t TableSize(std::size_t head, std::size_t count) {
    return static_cast<std::uint32_t>(head + count * BytesOnDisk<Entry>());
}

template <typename Table, typename Entry>
ByteVector ImageOfTable(const Table& table, const std::vector<Entry>& entries) {
    ByteVector image;
    image.reserve(BytesOfFields(table) + entries.size() * BytesOnDisk<Entry>());
    AppendFields(image, table);
    AppendEntries(image, entries);
    return image;
}

}  // namespace

CStts::CStts(const AtomBlock& block) {
    ReadFields(*this, block);
    entries = ReadEntries<CTimetoSampleEntry>(block, kTableAt, numberOfEntries);
}

void CStts::Fill(std::uint32_t sampleCount, std::uint32_t sampleDuration) {
    *this = CStts();
    type = FourCC("stts");
    entries.push_back({sampleCount, sampleDuration});
    numberOfEntries = 1;
    size = TableSize<CTimetoSampleEntry>(kTableAt, entries.size());
    data = Serialize();
}

std::uint32_t CStts::GetFirstSampleDuration() const {
    return entries.empty() ? 0 : entries.front().sampleDuration;
}

ByteVector CStts::Serialize() const {
    return ImageOfTable(*this, entries);
}

CStsc::CStsc(const AtomBlock& block) {
    ReadFields(*this, block);
    entries = std::make_shared<std::vector<CSampleToChunkEntery>>(
        ReadEntries<CSampleToChunkEntery>(block, kTableAt, numberOfEntries));
}

void CStsc::Fill(std::shared_ptr<std::vector<CSampleToChunkEntery>> runs) {
    *this = CStsc();
    type = FourCC("stsc");
    entries = std::move(runs);
    const std::size_t count = IsEmpty() ? 0 : entries->size();
    numberOfEntries = static_cast<std::uint32_t>(count);
    size = TableSize<CSampleToChunkEntery>(kTableAt, count);
    data = Serialize();
}

void CStsc::Refresh() {
    data = Serialize();
}

ByteVector CStsc::Serialize() const {
    return IsEmpty() ? ImageOf(*this) : ImageOfTable(*this, *entries);
}

std::uint32_t CStsc::FirstSamplesPerChunk() const {
    return IsEmpty() ? 0 : entries->front().samplesPerChunk;
}

CStsz::CStsz(const AtomBlock& block) {
    ReadFields(*this, block);
    // The table is read whatever `sampleSize` says.
    entries = ReadEntries<std::uint32_t>(block, kSizeTableAt, numberOfEntries);
}

void CStsz::Fill(const std::vector<std::uint32_t>& sizes) {
    *this = CStsz();
    type = FourCC("stsz");
    entries = sizes;
    numberOfEntries = static_cast<std::uint32_t>(entries.size());
    size = TableSize<std::uint32_t>(kSizeTableAt, entries.size());
    data = Serialize();
}

void CStsz::FillUniform(std::uint32_t count, std::uint32_t uniformSize) {
    *this = CStsz();
    type = FourCC("stsz");
    sampleSize = uniformSize;
    numberOfEntries = count;
    size = BytesOfFields(*this);
    data = Serialize();
}

ByteVector CStsz::Serialize() const {
    return sampleSize == 0 ? ImageOfTable(*this, entries) : ImageOf(*this);
}

CStco::CStco(const AtomBlock& block, Form form) {
    ReadFields(*this, block);
    if (form == Form::Offsets32) {
        const auto offsets = ReadEntries<std::uint32_t>(block, kTableAt, numberOfEntries);
        entries.assign(offsets.begin(), offsets.end());
        return;
    }
    // Of each 64-bit offset the first four bytes are taken for the whole: the high half, which is
    // 0 in a file below 4 GiB. That is settled; neither the offsets nor their count are used.
    entries = ReadEntries<std::uint64_t>(block, kTableAt, numberOfEntries);
    for (std::uint64_t& entry : entries) {
        entry >>= 32U;
    }
}

void CStco::Fill(const std::vector<std::uint64_t>& offsets) {
    *this = CStco();
    type = FourCC("co64");
    entries = offsets;
    numberOfEntries = static_cast<std::uint32_t>(entries.size());
    size = TableSize<std::uint64_t>(kTableAt, entries.size());
    data = Serialize();
}

ByteVector CStco::Serialize() const {
    return ImageOfTable(*this, entries);
}

CStss::CStss(const AtomBlock& block) {
    ReadFields(*this, block);
    entries = ReadEntries<std::uint32_t>(block, kTableAt, numberOfEntries);
}

namespace {

// How many sync samples a rebuilt table lists. The rules are settled, to the digit: the table may
// end early, or name samples past the end of the track.
std::uint32_t CountOfSyncSamples(std::uint32_t sampleCount, std::uint32_t sampleSync) {
    if (sampleSync == 0) {
        return 0;  // no distance at all
    }
    if (sampleCount > sampleSync) {
        return sampleCount / sampleSync - 1;
    }
    if (sampleSync == 1) {
        return 1;
    }
    return sampleCount / 2;
}

// A count of samples that no table of sizes stands behind can be any number; what no movie
// reaches (77 hours at 60 pictures a second) is not written out.
constexpr std::uint32_t kMostSyncSamples = 1U << 24U;

}  // namespace

void CStss::Fill(std::uint32_t sampleCount, std::uint32_t sampleSync) {
    *this = CStss();
    type = FourCC("stss");
    const std::uint32_t count = CountOfSyncSamples(sampleCount, sampleSync);
    if (count <= kMostSyncSamples) {
        entries.reserve(count);
        // `sampleSync` is the number of the second sync sample and not a distance. With 31 the
        // table reads 1, 31, 61; with 2 it reads 1, 2, 3; with 1 it repeats 1.
        std::uint32_t sample = 1;
        for (std::uint32_t i = 0; i < count; ++i) {
            entries.push_back(sample);
            sample += sampleSync - 1;
        }
    }
    numberOfEntries = static_cast<std::uint32_t>(entries.size());
    size = TableSize<std::uint32_t>(kTableAt, entries.size());
    data = Serialize();
}

ByteVector CStss::Serialize() const {
    return ImageOfTable(*this, entries);
}

CCtts::CCtts(const AtomBlock& block) {
    ReadFields(*this, block);
    entries = ReadEntries<CompositionOffsetEntery>(block, kTableAt, numOfEntry);
    data = Serialize();
}

ByteVector CCtts::Serialize() const {
    return ImageOfTable(*this, entries);
}

}  // namespace clipfix
