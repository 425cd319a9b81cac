#include "Platform/Calendar.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <stdexcept>
#include <thread>
#include <unicode/timezone.h>
#include <vector>

namespace marrowbox {

namespace {

constexpr double minute = 60;
constexpr double hour = 3600;
constexpr double day = 86'400;

Date since1970(double seconds) {
    return Date{seconds - referenceDateSince1970};
}

/// Midnight, universal time.
Date midnight(int year, unsigned month, unsigned dayOfMonth) {
    using namespace std::chrono;
    const sys_days date = std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(dayOfMonth);
    return since1970(static_cast<double>(date.time_since_epoch().count()) * day);
}

/// The wall clock of a zone, in minutes since 1970.
class WallClock {
  public:
    explicit WallClock(const char* zone) : zone_(icu::TimeZone::createTimeZone(zone)) {}
    std::int64_t at(Date date) const {
        std::int32_t raw = 0;
        std::int32_t saving = 0;
        UErrorCode status = U_ZERO_ERROR;
        const double instant = date.secondsSinceReference + referenceDateSince1970;
        zone_->getOffset(instant * 1000, false, raw, saving, status);
        return static_cast<std::int64_t>(instant / minute) + (raw + saving) / 60'000;
    }

  private:
    std::unique_ptr<icu::TimeZone> zone_;
};

bool shows(std::int64_t clock, const WallClockFields& fields) {
    return clock % 1440 == fields.hour * 60 + fields.minute &&
           (!fields.weekday || (clock / 1440 + 4) % 7 + 1 == *fields.weekday);
}

using Dates = std::vector<Date>;

/// All times at which a wall clock comes to show, or skips, what is looked for: found by looking at the clock
/// each minute. A clock that has been set back shows nothing new until it is past where it was.
std::vector<Dates> walk(const char* zone, Date from, Date to, const std::vector<WallClockFields>& wanted) {
    const WallClock clock(zone);
    std::vector<Dates> found(wanted.size());
    std::int64_t furthest = clock.at(from);
    for (Date date = from + minute; date <= to; date = date + minute) {
        for (const std::int64_t shown = clock.at(date); furthest < shown;) {
            ++furthest;
            for (std::size_t index = 0; index < wanted.size(); ++index)
                if (shows(furthest, wanted[index]) && (found[index].empty() || found[index].back() != date))
                    found[index].push_back(date);
        }
    }
    return found;
}

/// Goes through a span by asking for the next time again and again.
Dates ask(const Calendar& calendar, Date from, Date to, const WallClockFields& fields) {
    Dates found;
    for (auto next = calendar.next(from, fields); next && *next <= to; next = calendar.next(*next, fields))
        found.push_back(*next);
    return found;
}

void expectTheWalk(const char* zone, int firstYear, int years,
                   const std::vector<std::pair<int, int>>& times) {
    std::vector<WallClockFields> wanted;
    for (const auto& [hours, minutes] : times) {
        wanted.push_back({.weekday = {}, .hour = hours, .minute = minutes});
        wanted.push_back({.weekday = 1, .hour = hours, .minute = minutes});
    }
    const Date from = midnight(firstYear, 1, 3);
    const Date to = midnight(firstYear + years, 1, 3);
    const auto walked = walk(zone, from, to, wanted);
    const Calendar calendar(zone, "en_US");
    for (std::size_t index = 0; index < wanted.size(); ++index)
        ASSERT_EQ(ask(calendar, from, to, wanted[index]), walked[index])
            << zone << " " << wanted[index].hour << ":" << wanted[index].minute;
}

} // namespace

TEST(Calendar, agreesWithAWalkThroughEachMinuteInBerlin) {
    expectTheWalk("Europe/Berlin", 2022, 3, {{2, 30}, {2, 0}, {3, 0}, {1, 59}, {12, 0}});
}

TEST(Calendar, agreesWithAWalkThroughEachMinuteInNewYork) {
    expectTheWalk("America/New_York", 2005, 3, {{2, 30}, {1, 30}, {0, 0}, {23, 59}});
}

TEST(Calendar, agreesWithAWalkWhereClocksShiftByHalfAnHour) {
    expectTheWalk("Australia/Lord_Howe", 2022, 3, {{2, 15}, {1, 45}, {2, 0}, {2, 30}, {1, 30}});
}

TEST(Calendar, agreesWithAWalkWhereMidnightIsSkipped) {
    expectTheWalk("America/Sao_Paulo", 2015, 5, {{0, 0}, {0, 30}, {23, 30}, {1, 0}});
}

TEST(Calendar, agreesWithAWalkWhereSavingTimeIsNegative) {
    expectTheWalk("Europe/Dublin", 2022, 2, {{1, 30}, {2, 0}, {1, 0}});
}

TEST(Calendar, agreesWithAWalkWhereAWholeDayIsSkipped) {
    expectTheWalk("Pacific/Apia", 2010, 3, {{9, 0}, {0, 0}, {23, 59}, {3, 30}});
}

TEST(Calendar, agreesWithAWalkWhereTheZoneItselfMoves) {
    expectTheWalk("Asia/Pyongyang", 2015, 4, {{23, 45}, {0, 0}, {0, 15}});
    expectTheWalk("Europe/Volgograd", 2014, 8, {{2, 30}, {1, 30}});
}

TEST(Calendar, findsTheFirstTimeBehindAGap) {
    const Calendar berlin("Europe/Berlin", "de_DE");
    const Date change = midnight(2024, 3, 31) + hour; // 02:00 becomes 03:00
    for (const int minutes : {0, 1, 30, 59})
        EXPECT_EQ(berlin.next(change - hour, {.weekday = {}, .hour = 2, .minute = minutes}), change)
            << minutes;
    EXPECT_EQ(berlin.next(change - hour, {.weekday = {}, .hour = 3}), change);
    EXPECT_EQ(berlin.next(change - minute, {.weekday = 1, .hour = 2, .minute = 30}), change);
}

TEST(Calendar, findsTheFirstOfTwo) {
    const Calendar berlin("Europe/Berlin", "de_DE");
    const WallClockFields halfPastTwo{.weekday = {}, .hour = 2, .minute = 30};
    const Date first = midnight(2024, 10, 27) + 0.5 * hour;
    EXPECT_EQ(berlin.next(first - minute, halfPastTwo), first);
    EXPECT_EQ(berlin.next(first, halfPastTwo), first + day + hour);
    EXPECT_EQ(berlin.next(first + 0.75 * hour, halfPastTwo), first + day + hour);
}

TEST(Calendar, looksStrictlyAfterTheInstant) {
    const Calendar universal("Etc/UTC", "en_US");
    const Date nine = midnight(2024, 5, 1) + 9 * hour;
    EXPECT_EQ(universal.next(nine, {.weekday = {}, .hour = 9}), nine + day);
    EXPECT_EQ(universal.next(nine - 1e-3, {.weekday = {}, .hour = 9}), nine);
    EXPECT_EQ(universal.next(nine, {.weekday = {}, .hour = 9, .minute = 0, .second = 1}), nine + 1);
}

TEST(Calendar, worksBeforeTheReferenceDateAndBefore1970) {
    const Calendar universal("Etc/UTC", "en_US");
    // 1960-02-29 was a Monday.
    const Date leapDay = midnight(1960, 2, 29);
    EXPECT_EQ(universal.next(leapDay - 0.5, {.weekday = 2}), leapDay);
    EXPECT_EQ(universal.next(leapDay, {.weekday = 1, .hour = 1}), leapDay + 6 * day + hour);
}

TEST(Calendar, findsNothingForFieldsThatNoClockShows) {
    const Calendar universal("Etc/UTC", "en_US");
    for (const WallClockFields& fields :
         {WallClockFields{.weekday = {}, .hour = 24}, WallClockFields{.weekday = {}, .hour = -1},
          WallClockFields{.weekday = {}, .minute = 60}, WallClockFields{.weekday = {}, .second = 60},
          WallClockFields{.weekday = 0}, WallClockFields{.weekday = 8}})
        EXPECT_EQ(universal.next({}, fields), std::nullopt);
}

TEST(Calendar, findsNothingAtTheEndOfTime) {
    const Calendar berlin("Europe/Berlin", "de_DE");
    for (const double far :
         {1e13, -1e13, 1e300, std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(berlin.next(Date{far}, {}), std::nullopt) << far;
    EXPECT_TRUE(berlin.next(Date{1e10}, {}));
}

TEST(Calendar, addsElapsedTimeAcrossAClockChange) {
    const Calendar berlin("Europe/Berlin", "de_DE");
    const Date beforeTheGap = midnight(2024, 3, 31) + 0.75 * hour;
    EXPECT_EQ(berlin.adding(1, CalendarUnit::hour, beforeTheGap), beforeTheGap + hour);
    EXPECT_EQ(berlin.adding(10, CalendarUnit::minute, beforeTheGap + 0.5), beforeTheGap + 600.5);
    EXPECT_EQ(berlin.adding(-2, CalendarUnit::hour, beforeTheGap), beforeTheGap - 2 * hour);
}

TEST(Calendar, namesTheDaysFromSundayOn) {
    const Calendar english("Etc/UTC", "en_US");
    EXPECT_EQ(english.weekdayName(1), "Sunday");
    EXPECT_EQ(english.weekdayName(7), "Saturday");
    EXPECT_EQ(Calendar("Etc/UTC", "de_DE").weekdayName(4), "Mittwoch");
    EXPECT_EQ(english.weekdayName(std::numeric_limits<int>::min()), "Sunday");
    EXPECT_EQ(english.weekdayName(99), "Saturday");
}

TEST(Calendar, refusesAnUnknownZone) {
    EXPECT_THROW(Calendar("Europe/Nowhere", "en_US"), std::invalid_argument);
    EXPECT_THROW(Calendar("", "en_US"), std::invalid_argument);
}

TEST(Calendar, knowsTheUsersOwn) {
    const Calendar own = Calendar::current();
    const auto next = own.next(midnight(2024, 5, 1), {.weekday = {}, .hour = 12});
    ASSERT_TRUE(next);
    EXPECT_LE(*next - midnight(2024, 5, 1), day);
    EXPECT_FALSE(own.weekdayName(1).empty());
}

TEST(Calendar, isOneValueForManyThreads) {
    const Calendar shared("America/Sao_Paulo", "pt_BR");
    const WallClockFields atMidnight{.weekday = {}, .hour = 0};
    const auto expected = ask(shared, midnight(2015, 1, 1), midnight(2019, 1, 1), atMidnight);
    std::vector<Dates> found(4);
    {
        std::vector<std::jthread> threads;
        for (auto& mine : found)
            threads.emplace_back([shared, &mine, atMidnight] {
                const Calendar alsoCurrent = Calendar::current();
                mine = ask(shared, midnight(2015, 1, 1), midnight(2019, 1, 1), atMidnight);
            });
    }
    for (const auto& mine : found)
        EXPECT_EQ(mine, expected);
}

} // namespace marrowbox
