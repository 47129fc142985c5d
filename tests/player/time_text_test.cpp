#include "player/time_text.h"

#include <gtest/gtest.h>
#include <limits>

namespace clipfix {
namespace {

std::string Text(double seconds, double duration) {
    return TimeText(seconds, duration).toStdString();
}

TEST(TimeText, CountsMinutesAndSeconds) {
    EXPECT_EQ(Text(0, 60), "0:00");
    EXPECT_EQ(Text(65.99, 90), "1:05");
    EXPECT_EQ(Text(3599, 3599), "59:59");
}

TEST(TimeText, ShowsHoursForAFilmThatHasThem) {
    EXPECT_EQ(Text(65, 3600), "0:01:05");
    EXPECT_EQ(Text(3600, 0), "1:00:00");
    EXPECT_EQ(Text(36061, 40000), "10:01:01");
}

TEST(TimeText, TakesNumbersThatAreNoTimes) {
    EXPECT_EQ(Text(-5, 60), "0:00");
    EXPECT_EQ(Text(std::numeric_limits<double>::quiet_NaN(), 60), "0:00");
    EXPECT_EQ(Text(5, std::numeric_limits<double>::quiet_NaN()), "0:05");
    EXPECT_EQ(Text(std::numeric_limits<double>::infinity(), 1), "277777:46:40");
}

}  // namespace
}  // namespace clipfix
