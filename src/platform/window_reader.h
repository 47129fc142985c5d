#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "platform/file.h"
#include "platform/unreadable_ranges.h"

namespace clipfix::platform {

// Reads a file that may be damaged, or lie on a medium that is dying. What cannot be read counts
// as zero bytes and is noted; a failed read is tried again in smaller and smaller pieces, so that
// one bad sector costs one sector.
//
// It holds one window of the file in memory. Reads that follow one another make the window grow
// up to `kLargestWindow`, so that a scan costs few system calls; a jump makes it small again, so
// that a look at a chunk head here and there does not read what lies between. Not for use by two
// threads at once; each takes a reader of its own.
class WindowReader {
  public:
    static constexpr std::size_t kSmallestWindow = std::size_t{16} << 10U;
    static constexpr std::size_t kLargestWindow = std::size_t{1} << 20U;
    static constexpr std::size_t kSector = 512;

    // `file` must outlive the reader.
    explicit WindowReader(const ReadableFile& file) : file_(&file) {}

    // The file's size in bytes.
    [[nodiscard]] std::uint64_t Size() const { return file_->Size(); }

    // The bytes from `offset` on: `length` of them, or fewer at the file's end. `length` may not
    // be above kLargestWindow. The view lives until the next call.
    [[nodiscard]] ByteView View(std::uint64_t offset, std::size_t length);

    // All that the window holds from `offset` on: at least one byte, unless `offset` is at or
    // behind the file's end. For scans that take what comes. The view lives until the next call.
    [[nodiscard]] ByteView ViewOnward(std::uint64_t offset);

    // Fills `out` from `offset`; what lies behind the file's end becomes zero. Gives the number of
    // bytes that lie inside the file. Works past the window, for any length.
    std::size_t Read(std::uint64_t offset, ByteSpan out);

    [[nodiscard]] const UnreadableRanges& Unreadable() const { return unreadable_; }

  private:
    [[nodiscard]] bool Holds(std::uint64_t offset, std::size_t length) const;
    void Load(std::uint64_t offset, std::size_t length);
    void ReadPiece(std::uint64_t offset, ByteSpan out);

    const ReadableFile* file_;
    ByteVector window_;
    std::uint64_t windowStart_ = 0;
    std::size_t windowSize_ = kSmallestWindow;
    UnreadableRanges unreadable_;
};

}  // namespace clipfix::platform
