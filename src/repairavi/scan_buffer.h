#pragma once

#include <array>
#include <cstdint>
#include <map>

#include "base/bytes.h"
#include "platform/prefetch.h"
#include "platform/window_reader.h"
#include "repairavi/avi_markers.h"
#include "repairavi/marker_search.h"
#include "repairavi/repaired_file.h"

namespace clipfix {

// The 333333 bytes of the damaged file that the pass sees at one time, `sBuffer`.
//
// It behaves as a buffer that is cleared and filled by a read of its whole size, and keeps what it
// holds until the next read, whatever the pass does meanwhile. What is kept is only where that
// read began: the bytes are fetched from the damaged file when somebody looks at them, so a refill
// costs nothing. Repairs that were made in the buffer lie over those bytes until the next read.
//
// Indexes count bytes from the buffer's start. They may be anything: a byte outside the buffer
// reads as zero and matches nothing, and a repair outside is dropped.
class ScanBuffer {
  public:
    static constexpr std::uint32_t kSize = 333333;

    // `reader` reads the damaged file, and `prefetch`, unless it is null, reads ahead of the buffer
    // as that moves on; both must outlive it. Nothing is read yet.
    explicit ScanBuffer(platform::WindowReader& reader, platform::Prefetch* prefetch = nullptr)
        : reader_(&reader), prefetch_(prefetch) {}

    // Seeks the damaged file to `fileOffset`, clears the buffer and reads.
    void Refill(std::uint64_t fileOffset);
    // Clears the buffer and reads from where the last read ended.
    void ReadOn() { Refill(filePointer_); }

    // How many bytes the last read gave (`dwBytesRead`); behind them the buffer holds zeros.
    [[nodiscard]] std::uint32_t BytesRead() const { return bytesRead_; }

    // The bytes at `index` and behind it.
    template <std::size_t kCount>
    [[nodiscard]] std::array<std::uint8_t, kCount> Bytes(std::int64_t index) {
        std::array<std::uint8_t, kCount> bytes{};
        Fetch(index, bytes);
        return bytes;
    }
    // A copy of the whole buffer.
    [[nodiscard]] ByteVector AllBytes();
    [[nodiscard]] std::uint8_t Byte(std::int64_t index) { return Bytes<1>(index)[0]; }
    [[nodiscard]] std::uint16_t Little16(std::int64_t index) {
        return ReadLittle16(Bytes<2>(index), 0);
    }
    [[nodiscard]] std::uint32_t Little32(std::int64_t index) {
        return ReadLittle32(Bytes<4>(index), 0);
    }
    template <std::size_t kCount>
    [[nodiscard]] bool Matches(std::int64_t index,
                               const std::array<std::uint8_t, kCount>& letters) {
        return Holds(index, kCount) && Bytes<kCount>(index) == letters;
    }
    // True when a decimal digit stands at `index`.
    [[nodiscard]] bool IsDigit(std::int64_t index) { return IsAsciiDigit(Byte(index)); }

    // Whether `count` bytes from `index` on all lie inside the buffer.
    [[nodiscard]] static bool Holds(std::int64_t index, std::uint32_t count) {
        return index >= 0 && index + count <= std::int64_t{kSize};
    }

    // A repair in the buffer.
    void Store(std::int64_t index, ByteView bytes);
    void StoreLittle32(std::int64_t index, std::uint32_t value);
    void StoreLittle16(std::int64_t index, std::uint16_t value);
    // How often a repair has changed a byte.
    [[nodiscard]] std::uint64_t Changes() const { return changes_; }

    // What stands at `index`, by the bytes inside the buffer.
    [[nodiscard]] Marker MarkerAt(std::int64_t index);

    // The first index at or behind `from` at which a marker stands that `stops` names, but not
    // beyond `until`, which stands for none. 0 <= from <= until <= kSize.
    [[nodiscard]] std::uint32_t FindMarker(std::uint32_t from, std::uint32_t until,
                                           MarkerStops stops);

    // Appends `length` bytes from `index` on to the repaired file; zeros for what lies outside.
    void AppendTo(RepairedFile& repaired, std::int64_t index, std::uint64_t length);

  private:
    void Fetch(std::int64_t index, ByteSpan out);
    void AppendInside(RepairedFile& repaired, std::uint32_t index, std::uint32_t length);

    platform::WindowReader* reader_;
    platform::Prefetch* prefetch_;
    std::uint64_t origin_ = 0;       // file offset at which the last read began
    std::uint64_t filePointer_ = 0;  // file offset at which the next read in a row begins
    std::uint32_t bytesRead_ = 0;
    std::map<std::uint32_t, std::uint8_t> repairs_;  // by index; few, and mostly none
    std::uint64_t changes_ = 0;
};

}  // namespace clipfix
