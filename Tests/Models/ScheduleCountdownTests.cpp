#include "Models/ScheduleCountdown.h"

#include <gtest/gtest.h>
#include <limits>

namespace marrowbox {

namespace {

std::optional<std::string> remaining(double seconds) {
    const Date from{1000};
    return ScheduleCountdown::remaining(from, from + seconds);
}

} // namespace

TEST(ScheduleCountdown, saysNothingBelowASecond) {
    EXPECT_EQ(remaining(0.9), std::nullopt);
    EXPECT_EQ(remaining(0), std::nullopt);
    EXPECT_EQ(remaining(-5), std::nullopt);
    EXPECT_EQ(remaining(-1e300), std::nullopt);
    EXPECT_EQ(remaining(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
}

TEST(ScheduleCountdown, roundsDown) {
    struct {
        double seconds;
        const char* text;
    } constexpr rows[] = {{1, "less than a minute"},
                          {59.9, "less than a minute"},
                          {60, "1 min"},
                          {119.9, "1 min"},
                          {3599.9, "59 min"},
                          {3600, "1 hr"},
                          {3659, "1 hr"},
                          {3660, "1 hr 1 min"},
                          {86'399, "23 hr 59 min"},
                          {86'400, "1 day"},
                          {89'999, "1 day"},
                          {90'000, "1 day 1 hr"},
                          {172'799, "1 day 23 hr"},
                          {172'800, "2 days"},
                          {2.5 * 86'400, "2 days 12 hr"},
                          {400 * 86'400.0, "400 days"}};
    for (const auto& row : rows)
        EXPECT_EQ(remaining(row.seconds), row.text) << row.seconds;
}

TEST(ScheduleCountdown, survivesAnySpan) {
    EXPECT_TRUE(remaining(1e300));
    EXPECT_TRUE(remaining(std::numeric_limits<double>::infinity()));
}

} // namespace marrowbox
