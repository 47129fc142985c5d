#pragma once

#include <array>
#include <cstdint>

#include "base/bytes.h"
#include "codec/nalu.h"
#include "platform/file.h"
#include "platform/window_reader.h"

namespace clipfix {

// Gives the first bytes of NAL units here and there in a file, and touches little besides them:
// inside a run of units most of the file lies between two heads. Not for two threads at once.
class HeadReader {
  public:
    // `file` must outlive the reader.
    explicit HeadReader(const platform::ReadableFile& file) : file_(file), careful_(file) {}

    // CNALU::kProbeLength bytes from `offset` on, or fewer at the file's end; what cannot be read
    // is zero. The view lives until the next call.
    [[nodiscard]] ByteView At(std::uint64_t offset);

    [[nodiscard]] const platform::UnreadableRanges& Unreadable() const {
        return careful_.Unreadable();
    }

  private:
    // Enough for the small units that often stand ahead of a slice.
    static constexpr std::size_t kBlock = 512;

    const platform::ReadableFile& file_;
    platform::WindowReader careful_;  // takes over where a read fails
    std::array<std::uint8_t, kBlock> block_{};
    std::uint64_t start_ = 0;
    std::size_t length_ = 0;
};

}  // namespace clipfix
