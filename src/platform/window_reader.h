#pragma once

#include <cstdint>
#include <memory>

#include "base/bytes.h"
#include "platform/file.h"
#include "platform/read_ahead.h"
#include "platform/unreadable_ranges.h"

namespace clipfix::platform {

// Reads a file that may be damaged, or lie on a medium that is dying. What cannot be read counts
// as zero bytes and is noted; a failed read is tried again in smaller and smaller pieces, so that
// one bad sector costs one sector.
//
// It holds two windows of the file in memory, the last and the one before: who looks ahead at a
// place and comes back finds both. Reads that follow one another make the windows grow up to
// `kLargestWindow`, so that a scan costs few system calls; a jump makes them small again, so that
// a look at a chunk head here and there does not read what lies between. Behind windows of full
// size the next one is read on a thread of its own meanwhile, unless the medium is dying. Not for
// use by two threads at once; each takes a reader of its own.
class WindowReader {
  public:
    static constexpr std::size_t kSmallestWindow = std::size_t{2} << 10U;
    static constexpr std::size_t kLargestWindow = std::size_t{1} << 20U;
    static constexpr std::size_t kSector = 512;

    // `file` must outlive the reader.
    explicit WindowReader(const ReadableFile& file) : file_(&file) {}

    // The file's size in bytes.
    [[nodiscard]] std::uint64_t Size() const { return file_->Size(); }

    // The bytes from `offset` on: `length` of them, or fewer at the file's end. `length` may not
    // be above kLargestWindow. The view lives until the next call of any operation.
    [[nodiscard]] ByteView View(std::uint64_t offset, std::size_t length);

    // All that the window holds from `offset` on: at least one byte, unless `offset` is at or
    // behind the file's end. For scans that take what comes. The view lives until the next call.
    [[nodiscard]] ByteView ViewOnward(std::uint64_t offset);

    // Fills `out` from `offset`; what lies behind the file's end becomes zero. Gives the number of
    // bytes that lie inside the file. Works past the window, for any length.
    std::size_t Read(std::uint64_t offset, ByteSpan out);

    [[nodiscard]] const UnreadableRanges& Unreadable() const { return unreadable_; }

  private:
    struct Window {
        std::uint64_t start = 0;
        ByteVector bytes;

        [[nodiscard]] bool Holds(std::uint64_t offset, std::size_t length) const;
        [[nodiscard]] ByteView From(std::uint64_t offset) const {
            return SubView(bytes, static_cast<std::size_t>(offset - start));
        }
    };

    // Makes the current window hold `length` bytes from `offset` on, all of them inside the file.
    const Window& Provide(std::uint64_t offset, std::size_t length);
    void Load(std::uint64_t offset, std::size_t length);
    [[nodiscard]] bool TakeWhatWasReadAhead(std::uint64_t offset, std::size_t length);
    void BeginReadAhead();
    void ReadPiece(std::uint64_t offset, ByteSpan out);

    const ReadableFile* file_;
    Window current_;
    Window earlier_;
    std::size_t windowSize_ = kSmallestWindow;
    std::unique_ptr<ReadAhead> readAhead_;
    UnreadableRanges unreadable_;
};

}  // namespace clipfix::platform
