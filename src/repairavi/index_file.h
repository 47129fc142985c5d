#pragma once

#include <cstdint>
#include <optional>

#include "base/bytes.h"
#include "platform/file.h"
#include "repairavi/avi_markers.h"
#include "repairavi/repaired_file.h"

namespace clipfix {

// The new `idx1` chunk, kept on the disk while it grows so that memory does not grow with the
// number of chunks. (AVI RIFF, AVIOLDINDEX.)
class IndexFile {
  public:
    // Writes the chunk's head with a size of 0. `file` is nothing when the index file could not be
    // made; all then goes nowhere. A failed write is noted with `repaired`.
    IndexFile(std::optional<platform::File>& file, RepairedFile& repaired);

    // One record of 16 bytes: a chunk's id, the flag that every record has, its offset from the
    // word "movi" and its size, both in bytes.
    void AddRecord(const FourLetters& id, std::uint32_t offset, std::uint32_t size);

    // Brings out what was gathered, and writes `bodySize` into the chunk's size field.
    void Finish(std::uint32_t bodySize);

    // Reads up to `out.size()` bytes of the chunk from `at` on; gives how many there were.
    [[nodiscard]] std::size_t ReadAt(std::uint64_t at, ByteSpan out) const;

  private:
    static constexpr std::size_t kGatheredBytes = std::size_t{64} << 10U;

    void Flush();

    std::optional<platform::File>* file_;
    RepairedFile* repaired_;
    std::uint64_t written_ = 0;
    ByteVector idxBuffer_;
};

}  // namespace clipfix
