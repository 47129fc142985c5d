#pragma once

#include <cstdint>
#include <optional>

#include "atoms/movie_read.h"
#include "base/bytes.h"
#include "job/state/job_control.h"
#include "job/state/job_front_end.h"
#include "platform/file.h"
#include "platform/window_reader.h"

namespace clipfix {

class GFile;

// The walk over the top level of a QuickTime or MP4 file. It slides over the file byte by byte and
// looks for five type words (`ftyp`, `wide`, `free`, `mdat`, `moov`); an atom is jumped over only
// after its size has passed a test, so that a file with rubbish at its head or between its atoms
// still yields its `moov`. It records what it finds and judges nothing. An object makes one walk.
class StructureCheck {
  public:
    // All numbers of bytes.
    static constexpr std::uint64_t kReadSize = 66556;      // read in each round
    static constexpr std::uint64_t kFallbackRead = 65532;  // read after a read that failed
    static constexpr std::uint64_t kScanSpan = 66020;      // positions looked at in each round
    static constexpr std::uint64_t kRoundsUnit = 127;      // of the file, for the bound of rounds
    static constexpr std::uint32_t kJumpStride = 66044;    // of the far jump

    StructureCheck(GFile& movie, JobContext job) : movie_(movie), job_(job) {}

    // Fills the movie's members. The job's state tells which file.
    void Run();
    // The same over an open file.
    void RunOn(const platform::ReadableFile& file);

  private:
    void Begin();
    void Walk(const platform::ReadableFile& file);
    void JumpFar(std::uint64_t& round, std::uint64_t rounds);
    [[nodiscard]] bool ReadRound(const platform::ReadableFile& file);
    [[nodiscard]] bool MayGoOn();
    // Looks at one round's positions. Gives how far the walk moves on, in bytes.
    [[nodiscard]] std::uint64_t ScanRound(const platform::ReadableFile& file);
    void TakeMoov(const platform::ReadableFile& file, std::uint64_t offset, std::uint32_t size);

    GFile& movie_;
    JobContext job_;
    MovieRead read_;
    ByteVector buffer_;
    std::uint64_t fileSize_ = 0;
    std::uint64_t position_ = 0;  // file offset of the buffer's first byte
};

}  // namespace clipfix
