#pragma once

#include <cstdint>
#include <optional>

#include "base/bytes.h"
#include "base/result.h"
#include "platform/file.h"
#include "platform/flush_ahead.h"
#include "platform/stretch_copier.h"
#include "platform/window_reader.h"

namespace clipfix::platform {

// Copies stretches of one file to the end of another. Stretches that follow one another in the
// source are gathered and copied as one, in the fastest way that the two files offer; what cannot
// be read is copied as zero bytes and noted with `reader`. While a long copy goes on, the system is
// told to store what stands already. Positions and lengths are in bytes.
//
// An operation that could not write all answers with the reason. What comes later keeps its place
// all the same, so a caller may pass a failure over and go on.
class RangeCopier {
  public:
    // `source` may be null when the bytes come from something else than a plain file; all then
    // goes through `reader`. Everything handed over must outlive the copier. `start` is the
    // position in `target` of the first byte that is copied.
    RangeCopier(const File* source, WindowReader& reader, File& target, std::uint64_t start);

    // The position in `target` at which the next byte will stand.
    [[nodiscard]] std::uint64_t End() const { return end_; }

    // Appends `length` bytes of the source from `from`; what lies behind its end becomes zero.
    Result<void> CopyRange(std::uint64_t from, std::uint64_t length);

    // Appends bytes that the caller made.
    Result<void> Append(ByteView bytes);

    // Writes all that was gathered. Only then does the target hold it.
    Result<void> Finish();

  private:
    static constexpr std::size_t kGatheredBytes = std::size_t{256} << 10U;
    // Below this it costs less to gather the bytes than to ask for a copy.
    static constexpr std::uint64_t kLongStretch = std::uint64_t{128} << 10U;
    // What one step copies at most, so that no operation takes long and a pause takes hold soon.
    static constexpr std::uint64_t kLargestRange = std::uint64_t{4} << 20U;

    // From here on it is worth a thread to have the target stored while it grows.
    static constexpr std::uint64_t kLongFile = std::uint64_t{16} << 20U;

    void FlushRange();
    void FlushBytes();
    void StoreWhatStands();
    void CopyThroughMemory(std::uint64_t from, std::uint64_t length);
    void Note(Result<void> done);
    [[nodiscard]] Result<void> TakeOutcome();

    std::optional<StretchCopier> stretches_;  // nothing without a source
    WindowReader* reader_;
    File* target_;
    std::uint64_t start_;
    std::uint64_t end_;
    std::uint64_t written_;        // position in the target behind the last byte written
    std::uint64_t rangeFrom_ = 0;  // the gathered stretch of the source
    std::uint64_t rangeLength_ = 0;
    std::optional<FlushAhead> flushAhead_;  // once the target is long
    ByteVector bytes_;                      // gathered bytes; they come before the gathered stretch
    Result<void> outcome_;                  // the first failure of the operation at hand
};

}  // namespace clipfix::platform
