#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "base/result.h"
#include "platform/file.h"

namespace clipfix {

// Where the pieces of a `moov` go, one behind the other.
class MoovSink {
  public:
    virtual ~MoovSink() = default;

    // Puts `bytes` behind all that is there.
    virtual Result<void> Append(ByteView bytes) = 0;
    // Has what was appended brought to the medium.
    virtual Result<void> Flush() = 0;
};

// Appends to an open file: each piece is written where the file ends at that moment, so that a
// piece which could not be written leaves no gap. The file stays open and belongs to the caller.
// A flush sends it on its way to the medium and does not wait until it is there: that is done once,
// where a finished movie gets its name.
class FileMoovSink final : public MoovSink {
  public:
    explicit FileMoovSink(platform::File& file) : file_(file) {}

    Result<void> Append(ByteView bytes) override;
    Result<void> Flush() override;

  private:
    platform::File& file_;
    std::uint64_t flushFrom_ = UINT64_MAX;  // what was appended and not flushed begins here
};

}  // namespace clipfix
