#include "Models/BackupSchedule.h"

#include <gtest/gtest.h>
#include <limits>

namespace marrowbox {

namespace {

constexpr double minute = 60;
constexpr double hour = 3600;
constexpr double day = 86'400;

/// 2001-01-01 00:00:00 UTC, a Monday.
constexpr Date monday{};

Calendar universalCalendar() {
    return Calendar("Etc/UTC", "en_US");
}
BackupSchedule tenMinutes() {
    return {.frequency = ScheduleFrequency::tenMinutes};
}
BackupSchedule dailyAt(std::int64_t hours, std::int64_t minutes = 0) {
    return {.frequency = ScheduleFrequency::daily, .hour = hours, .minute = minutes};
}
BackupSchedule weeklyOn(std::int64_t weekday, std::int64_t hours, std::int64_t minutes = 0) {
    return {.frequency = ScheduleFrequency::weekly, .hour = hours, .minute = minutes, .weekday = weekday};
}

std::int64_t missed(const BackupSchedule& schedule, Date scheduledFor, Date now, std::int64_t limit = 1000) {
    return schedule.missedOccurrences(scheduledFor, now, 300, universalCalendar(), limit);
}

} // namespace

TEST(ScheduleFrequency, hasATitleForEachInTheOrderOfThePicker) {
    std::vector<std::string> titles;
    for (const auto frequency : allScheduleFrequencies)
        titles.push_back(title(frequency));
    EXPECT_EQ(titles, (std::vector<std::string>{"Manual", "Every 10 minutes", "Hourly", "Daily", "Weekly"}));
}

TEST(BackupSchedule, neverRunsByItselfWhenManual) {
    const BackupSchedule manual{.frequency = ScheduleFrequency::manual, .hour = 9};
    EXPECT_FALSE(manual.next(monday, universalCalendar()));
    EXPECT_FALSE(manual.next(monday + 9 * hour - 1, universalCalendar()));
    EXPECT_EQ(missed(manual, monday, monday + 10'000 * day), 0);
}

TEST(BackupSchedule, countsTenMinutesAndAnHourFromTheInstantItself) {
    const Date after = monday + 12 * hour + 7 * minute + 3.25;
    EXPECT_EQ(tenMinutes().next(after, universalCalendar()), after + 10 * minute);
    const BackupSchedule hourly{.frequency = ScheduleFrequency::hourly, .hour = 5, .minute = 5};
    EXPECT_EQ(hourly.next(after, universalCalendar()), after + hour);
}

TEST(BackupSchedule, anchorsDaysToTheWallClock) {
    const Date nine = monday + 9 * hour;
    EXPECT_EQ(dailyAt(9).next(nine - 1, universalCalendar()), nine);
    EXPECT_EQ(dailyAt(9).next(nine - 0.001, universalCalendar()), nine);
    EXPECT_EQ(dailyAt(9).next(nine, universalCalendar()), nine + day);
    EXPECT_EQ(dailyAt(9).next(nine + 0.001, universalCalendar()), nine + day);
}

TEST(BackupSchedule, anchorsWeeksToTheirWeekday) {
    EXPECT_EQ(weeklyOn(2, 9).next(monday, universalCalendar()), monday + 9 * hour);
    EXPECT_EQ(weeklyOn(2, 9).next(monday + 9 * hour, universalCalendar()), monday + 9 * hour + 7 * day);
    EXPECT_EQ(weeklyOn(1, 23, 59).next(monday, universalCalendar()), monday + 7 * day - minute);
}

TEST(BackupSchedule, waitsBehindAGapAndTakesTheFirstOfTwo) {
    const Calendar berlin("Europe/Berlin", "de_DE");
    const BackupSchedule schedule = dailyAt(2, 30);
    // 2024-03-31: 02:00 becomes 03:00, at 01:00 UTC. 2024-10-27: 03:00 becomes 02:00, at 01:00 UTC.
    const Date gap{733'539'600};
    EXPECT_EQ(schedule.next(gap - hour, berlin), gap);
    EXPECT_EQ(schedule.next(gap, berlin), gap + 23.5 * hour);
    const Date back{751'683'600};
    EXPECT_EQ(schedule.next(back - hour, berlin), back - 0.5 * hour);
    EXPECT_EQ(schedule.next(back - 0.5 * hour, berlin), back + 24.5 * hour);
}

TEST(BackupSchedule, neverComesDueAtATimeThatNoClockShows) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    for (const auto& schedule : {dailyAt(24), dailyAt(-1), dailyAt(9, 60), dailyAt(9, -1), dailyAt(most),
                                 dailyAt(1LL << 32), weeklyOn(0, 9), weeklyOn(8, 9), weeklyOn(least, 9)}) {
        EXPECT_FALSE(schedule.next(monday, universalCalendar()));
        EXPECT_EQ(missed(schedule, monday, monday + 30 * day), 1);
    }
}

TEST(BackupSchedule, forgivesTheGraceTimeAndNoMore) {
    const Date noon = monday + 12 * hour;
    EXPECT_EQ(missed(tenMinutes(), noon, noon - 10 * hour), 0);
    EXPECT_EQ(missed(tenMinutes(), noon, noon + 5 * minute), 0);
    EXPECT_EQ(missed(tenMinutes(), noon, noon + 5 * minute + 1), 1);
}

TEST(BackupSchedule, countsTheOccurrenceThatFallsOnTheMoment) {
    const Date noon = monday + 12 * hour;
    EXPECT_EQ(missed(tenMinutes(), noon, noon + 25 * minute), 3);
    EXPECT_EQ(missed(tenMinutes(), noon, noon + 20 * minute), 3);
    EXPECT_EQ(missed(tenMinutes(), noon, noon + 20 * minute - 1), 2);
    const Date nine = monday + 9 * hour;
    EXPECT_EQ(missed(dailyAt(9), nine, nine + 2 * day), 3);
    EXPECT_EQ(missed(dailyAt(9), nine, nine + 2 * day + hour), 3);
    EXPECT_EQ(missed(weeklyOn(2, 9), nine, nine + 21 * day - 1), 3);
}

TEST(BackupSchedule, stopsCountingAtTheLimit) {
    EXPECT_EQ(missed(tenMinutes(), monday, monday + 30 * day), 1000);
    EXPECT_EQ(missed(tenMinutes(), monday, monday + 30 * day, 1), 1);
    EXPECT_EQ(missed(tenMinutes(), monday, monday + 30 * day, 0), 1);
    EXPECT_EQ(missed(tenMinutes(), monday, monday + 30 * day, -5), 1);
    EXPECT_EQ(missed(tenMinutes(), monday, monday + minute, 0), 0);
}

TEST(BackupSchedule, stopsCountingWhereTimeMakesNoProgress) {
    // Ten minutes are nothing beside such a number of seconds.
    EXPECT_EQ(missed(tenMinutes(), Date{-1e300}, monday), 1);
    EXPECT_EQ(missed(dailyAt(9), Date{-1e300}, monday), 1);
    EXPECT_EQ(missed(tenMinutes(), Date{-std::numeric_limits<double>::infinity()}, monday), 1);
}

TEST(BackupSchedule, saysWhenItRuns) {
    const Calendar english = universalCalendar();
    EXPECT_EQ(BackupSchedule{.frequency = ScheduleFrequency::manual}.summary(english), "On demand");
    EXPECT_EQ(tenMinutes().summary(english), "Every 10 minutes");
    EXPECT_EQ(BackupSchedule{.frequency = ScheduleFrequency::hourly}.summary(english), "Every hour");
    EXPECT_EQ(dailyAt(9, 5).summary(english), "Daily at 09:05");
    EXPECT_EQ(weeklyOn(1, 7, 5).summary(english), "Sunday at 07:05");
    EXPECT_EQ(weeklyOn(7, 23, 59).summary(Calendar("Etc/UTC", "de_DE")), "Samstag at 23:59");
}

TEST(BackupSchedule, saysSomeDayForAnyStoredWeekday) {
    EXPECT_EQ(weeklyOn(0, 9).summary(universalCalendar()), "Sunday at 09:00");
    EXPECT_EQ(weeklyOn(99, 9).summary(universalCalendar()), "Saturday at 09:00");
    EXPECT_EQ(weeklyOn(std::numeric_limits<std::int64_t>::min(), 9).summary(universalCalendar()),
              "Sunday at 09:00");
}

TEST(BackupSchedule, differsByFieldsThatItsFrequencyDoesNotRead) {
    BackupSchedule other = dailyAt(9);
    EXPECT_EQ(other, dailyAt(9));
    other.weekday = 4;
    EXPECT_NE(other, dailyAt(9));
}

} // namespace marrowbox
