#include "Platform/Clock.h"

#include <chrono>
#include <gtest/gtest.h>

namespace marrowbox {

TEST(Clock, countsFromTheStartOf2001) {
    using namespace std::chrono;
    const sys_days reference = year(2001) / January / 1;
    EXPECT_EQ(referenceDateSince1970,
              static_cast<double>(duration_cast<seconds>(reference.time_since_epoch()).count()));
}

TEST(Clock, tellsTheMachinesTime) {
    const auto machine = [] {
        const auto since1970 = std::chrono::system_clock::now().time_since_epoch();
        return std::chrono::duration<double>(since1970).count() - referenceDateSince1970;
    };
    const double before = machine();
    const Date told = systemClock()();
    const double after = machine();
    EXPECT_LE(before, told.secondsSinceReference);
    EXPECT_LE(told.secondsSinceReference, after);
}

TEST(Date, isMovedAndMeasuredInSeconds) {
    const Date date{100.5};
    EXPECT_EQ(date + 10, Date{110.5});
    EXPECT_EQ(date - 10, Date{90.5});
    EXPECT_EQ(date - Date{100}, 0.5);
    EXPECT_LT(date, date + 1e-6);
}

} // namespace marrowbox
