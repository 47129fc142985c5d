#include "job/driver/job_clock.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <thread>

namespace clipfix {

namespace {

std::string FormatTime(int hour, int minute, int second) {
    char text[40];
    std::snprintf(text, sizeof text, " %02d:%02d:%02d", hour, minute, second);
    return text;
}

}  // namespace

std::int64_t SystemClock::Now() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

LocalTime SystemClock::ToLocalTime(std::int64_t seconds) {
    const auto moment = static_cast<std::time_t>(seconds);
    std::tm parts{};
    if (::localtime_r(&moment, &parts) == nullptr) {
        return {};
    }
    constexpr int kFirstYear = 1900;
    return {parts.tm_mday, parts.tm_mon + 1, parts.tm_year + kFirstYear,
            parts.tm_hour, parts.tm_min,     parts.tm_sec};
}

void SystemClock::Sleep(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

std::string FormatClock(const LocalTime& time) {
    return FormatTime(time.hour, time.minute, time.second);
}

std::string FormatSpan(std::int64_t seconds) {
    return FormatTime(static_cast<int>(seconds / 3600 % 24), static_cast<int>(seconds / 60 % 60),
                      static_cast<int>(seconds % 60));
}

}  // namespace clipfix
