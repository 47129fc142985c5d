#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>

#include "job/state/job_front_end.h"

namespace clipfix {

// The percent of an AVI pass: it follows the place in the damaged file, and tells the interface of
// each new value.
class PercentMeter {
  public:
    // `place` follows the place, in bytes, for whoever wants to know more than the percent.
    // `sent` is called with every percent behind its message; it may be empty.
    PercentMeter(const JobContext& job, std::uint64_t fileSize, std::atomic<std::uint64_t>& place,
                 std::function<void(int)> sent)
        : job_(job),
          divisor_((fileSize + kBelowHundred) / 100),
          place_(&place),
          sent_(std::move(sent)) {}

    // The percent step at the file offset `position`. The message is sent synchronously.
    void Step(std::uint64_t position);

    // The first offset above `position` at which a step would do more than set the value that
    // stands: all steps ahead of it may be left out.
    [[nodiscard]] std::uint64_t NextChange(std::uint64_t position) const;

  private:
    // Keeps the value a little below 100 at the file's end, and the divisor above zero.
    static constexpr std::uint64_t kBelowHundred = 2048;

    [[nodiscard]] std::uint32_t ValueAt(std::uint64_t position) const {
        return static_cast<std::uint32_t>(position / divisor_);
    }

    JobContext job_;
    std::uint64_t divisor_;
    std::atomic<std::uint64_t>* place_;
    std::uint32_t lastSent_ = 0;  // so a first value of 0 is not sent
    std::function<void(int)> sent_;
};

}  // namespace clipfix
