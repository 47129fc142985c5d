#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include "base/bytes.h"
#include "platform/window_reader.h"
#include "repairmov/sample.h"

namespace clipfix {

// Finds raw AAC frames, which carry neither heads nor lengths, by decoding: what the decoder
// accepts is a frame, as long as the bytes that it consumed. Holds what every probe of a job
// starts from; probes may run side by side.
class AacProbe {
  public:
    // The most that the decoder is shown at a place, in bytes.
    static constexpr std::size_t kProbeSize = 1024;

    // The decoder-specific bytes of the reference's sound (ISO/IEC 14496-3, 1.6.2.1). The decoder
    // is started with exactly two of them, however many there are; of a single one, a zero is the
    // second. Without any, no probe finds anything.
    explicit AacProbe(ByteView specificInfo);

    // Whether the decoder takes the bytes at all. Where not, no range holds a frame.
    [[nodiscard]] bool CanStart() const { return canStart_; }

    // The records of one range of the file, in bytes from `offset`; all are named Aac. Each call
    // works with a decoder of its own. `goOn` is asked before each decode and every now and then in
    // between; when it answers false, what was found so far is given. Only the low 32 bits of
    // `length` are read of the file: in a longer range, what lies behind counts as zero. Settled.
    [[nodiscard]] std::vector<CSample> ProbeAacFrames(platform::WindowReader& reader,
                                                      std::uint64_t offset, std::uint64_t length,
                                                      const std::function<bool()>& goOn) const;

  private:
    std::array<std::uint8_t, 2> start_{};
    bool canStart_ = false;
};

}  // namespace clipfix
