#include "player/time_text.h"

#include <algorithm>

namespace clipfix {

namespace {

constexpr qint64 kMinute = 60;
constexpr qint64 kHour = 3600;
constexpr double kLongest = 1e9;  // seconds; a broken file may claim more

QString TwoDigits(qint64 number) {
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

}  // namespace

QString TimeText(double seconds, double duration) {
    // A comparison with what is no number fails, and so it counts as zero.
    const auto whole = static_cast<qint64>(seconds > 0 ? std::min(seconds, kLongest) : 0);
    const QString rest = QLatin1Char(':') + TwoDigits(whole % kMinute);
    if (whole < kHour && !(duration >= static_cast<double>(kHour))) {
        return QString::number(whole / kMinute) + rest;
    }
    return QString::number(whole / kHour) + QLatin1Char(':') + TwoDigits(whole % kHour / kMinute) +
           rest;
}

}  // namespace clipfix
