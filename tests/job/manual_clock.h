#pragma once

#include <atomic>
#include <ctime>
#include <string>

#include "job/driver/job_clock.h"
#include "support/job_log.h"

namespace clipfix::test {

// A clock that stands until the test moves it. Its place keeps UTC. It sleeps in no time, and
// writes down how long it was asked to.
class ManualClock final : public JobClock {
  public:
    explicit ManualClock(JobLog& log) : log_(log) {}

    void MoveTo(std::int64_t seconds) { now_ = seconds; }
    void Advance(std::int64_t seconds) { now_ += seconds; }

    [[nodiscard]] std::int64_t Now() override { return now_; }
    [[nodiscard]] LocalTime ToLocalTime(std::int64_t seconds) override {
        const auto moment = static_cast<std::time_t>(seconds);
        std::tm parts{};
        ::gmtime_r(&moment, &parts);
        return {parts.tm_mday, parts.tm_mon + 1, parts.tm_year + 1900,
                parts.tm_hour, parts.tm_min,     parts.tm_sec};
    }
    void Sleep(int milliseconds) override {
        log_.Add("sleep " + std::to_string(milliseconds) + " ms");
    }

  private:
    JobLog& log_;
    std::atomic<std::int64_t> now_{0};
};

}  // namespace clipfix::test
