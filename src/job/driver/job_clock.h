#pragma once

#include <cstdint>
#include <string>

namespace clipfix {

// Date and time of day of the user's place.
struct LocalTime {
    int day = 1;
    int month = 1;
    int year = 1970;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// The clock of the job flow. Tests move one by hand.
class JobClock {
  public:
    virtual ~JobClock() = default;
    // Whole seconds since the epoch.
    [[nodiscard]] virtual std::int64_t Now() = 0;
    [[nodiscard]] virtual LocalTime ToLocalTime(std::int64_t seconds) = 0;
    virtual void Sleep(int milliseconds) = 0;
};

class SystemClock final : public JobClock {
  public:
    [[nodiscard]] std::int64_t Now() override;
    [[nodiscard]] LocalTime ToLocalTime(std::int64_t seconds) override;
    void Sleep(int milliseconds) override;
};

// " %H:%M:%S" of a time of day; it begins with a blank.
[[nodiscard]] std::string FormatClock(const LocalTime& time);

// " %H:%M:%S" of a span of seconds. The hours are those within a day, so a job of a day or more
// shows a wrapped value. That is meant.
[[nodiscard]] std::string FormatSpan(std::int64_t seconds);

}  // namespace clipfix
