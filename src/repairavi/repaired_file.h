#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "base/bytes.h"
#include "job/state/job_state.h"
#include "platform/file.h"
#include "platform/range_copier.h"
#include "platform/window_reader.h"

namespace clipfix {

// The repaired file while it grows. A write that fails is passed over, and every later byte keeps
// its place; that it happened is noted in the job's state. Positions and lengths are in bytes.
class RepairedFile {
  public:
    // `file` is nothing when the repaired file could not be made; all then goes nowhere.
    // `damaged` may be null (see RangeCopier). What is handed over must outlive this object.
    RepairedFile(JobState& state, std::optional<platform::File>& file,
                 const platform::File* damaged, platform::WindowReader& reader);

    // At the end of what was written so far.
    void Append(ByteView bytes);
    void AppendZeros(std::uint64_t count);
    // Appends `length` bytes of the damaged file from `offset` on.
    void CopyFromDamaged(std::uint64_t offset, std::uint64_t length);

    // Overwrites bytes at `at`. The file grows where that is needed, and the next appended byte
    // then stands behind it.
    void Patch(std::uint64_t at, ByteView bytes);

    // The first bytes as they stand now, at most `count`; fewer where the file is shorter.
    [[nodiscard]] ByteVector FirstBytes(std::size_t count);

    // The next appended byte goes to `position`.
    void MoveEnd(std::uint64_t position);
    // Cuts or grows the file.
    void SetEnd(std::uint64_t size);

    // Brings out what was gathered.
    void Finish();

    // Notes a failed write of this file, or of another one that the repair rests on.
    void Note(const Result<void>& done);

  private:
    JobState* state_;
    std::optional<platform::File>* file_;
    const platform::File* damaged_;
    platform::WindowReader* reader_;
    std::optional<platform::RangeCopier> copier_;
};

}  // namespace clipfix
