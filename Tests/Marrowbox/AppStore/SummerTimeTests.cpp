#include "StoreWorld.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>

namespace marrowbox {

using test::StoreWorld;
using testing::DoubleEq;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Pointwise;
using testing::SizeIs;

namespace {

using namespace std::chrono;

constexpr Date instant(sys_seconds utc) {
    return {static_cast<double>(utc.time_since_epoch().count()) - referenceDateSince1970};
}

/// Three days of a unit that runs daily, around a change of the clocks or none.
struct Days {
    std::string name;
    std::string zone;
    sys_seconds begin;
    int hour;
    int minute;
    std::vector<double> hours;       ///< From the begin to each of the three runs.
    std::vector<std::string> clocks; ///< What a clock on the wall shows at them, and at the run after them.

    friend std::ostream& operator<<(std::ostream& stream, const Days& days) { return stream << days.name; }
};

const std::vector<Days>& allDays() {
    static const std::vector<Days> days{
        {"BerlinSpring",
         "Europe/Berlin",
         sys_days(2026y / 3 / 28) + 1h,
         2,
         30,
         {0.5, 24, 47.5},
         {"28 Mar 2026, 02:30", "29 Mar 2026, 03:00", "30 Mar 2026, 02:30", "31 Mar 2026, 02:30"}},
        {"BerlinAutumn",
         "Europe/Berlin",
         sys_days(2026y / 10 / 24) + 0h,
         2,
         30,
         {0.5, 24.5, 49.5},
         {"24 Oct 2026, 02:30", "25 Oct 2026, 02:30", "26 Oct 2026, 02:30", "27 Oct 2026, 02:30"}},
        {"NewYorkSpring",
         "America/New_York",
         sys_days(2026y / 3 / 7) + 7h,
         2,
         30,
         {0.5, 24, 47.5},
         {"7 Mar 2026, 02:30", "8 Mar 2026, 03:00", "9 Mar 2026, 02:30", "10 Mar 2026, 02:30"}},
        {"NewYorkAutumn",
         "America/New_York",
         sys_days(2026y / 10 / 31) + 5h,
         1,
         30,
         {0.5, 24.5, 49.5},
         {"31 Oct 2026, 01:30", "1 Nov 2026, 01:30", "2 Nov 2026, 01:30", "3 Nov 2026, 01:30"}},
        {"LordHoweSpring",
         "Australia/Lord_Howe",
         sys_days(2026y / 10 / 2) + 15h + 15min,
         2,
         15,
         {0.5, 24.25, 48},
         {"3 Oct 2026, 02:15", "4 Oct 2026, 02:30", "5 Oct 2026, 02:15", "6 Oct 2026, 02:15"}},
        {"LordHoweAutumn",
         "Australia/Lord_Howe",
         sys_days(2026y / 4 / 3) + 14h + 30min,
         1,
         45,
         {0.25, 24.25, 48.75},
         {"4 Apr 2026, 01:45", "5 Apr 2026, 01:45", "6 Apr 2026, 01:45", "7 Apr 2026, 01:45"}},
        {"KolkataAtAnyTime",
         "Asia/Kolkata",
         sys_days(2026y / 3 / 27) + 20h + 30min,
         2,
         30,
         {0.5, 24.5, 48.5},
         {"28 Mar 2026, 02:30", "29 Mar 2026, 02:30", "30 Mar 2026, 02:30", "31 Mar 2026, 02:30"}},
    };
    return days;
}

void begin(StoreWorld& world, const std::string& zone, sys_seconds at, BackupSchedule schedule) {
    world.zone = zone;
    world.time.jump(instant(at) - world.time.now());
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].schedule = schedule;
    configuration.units[0].nextRun = schedule.next(world.time.now(), Calendar(zone, "en_US"));
    world.startWith(configuration);
}

std::string clockIn(const std::string& zone, Date at) {
    return Formats(zone, "en_GB").dateAndTime(at);
}

/// When the runs began, in hours from an instant, the first one first.
std::vector<double> hoursOfRuns(const StoreWorld& world, sys_seconds since) {
    std::vector<double> hours;
    for (const RunRecord& run : world.configuration().runs)
        hours.insert(hours.begin(), (run.startedAt - instant(since)) / 3600);
    return hours;
}

class SummerTime : public testing::TestWithParam<Days> {};

} // namespace

TEST_P(SummerTime, keepsADailyRunAtItsTimeOnTheWall) {
    const Days& days = GetParam();
    StoreWorld world;
    begin(world, days.zone, days.begin,
          {.frequency = ScheduleFrequency::daily, .hour = days.hour, .minute = days.minute});
    world.time.advance(50 * 3600);
    EXPECT_THAT(hoursOfRuns(world, days.begin), Pointwise(DoubleEq(), days.hours));
    std::vector<std::string> clocks;
    for (const RunRecord& run : world.configuration().runs) {
        EXPECT_EQ(run.outcome, RunOutcome::succeeded);
        EXPECT_FALSE(run.missedRuns) << "it ran on time";
        clocks.insert(clocks.begin(), clockIn(days.zone, run.startedAt));
    }
    clocks.push_back(clockIn(days.zone, *world.unit().nextRun));
    EXPECT_THAT(clocks, ElementsAreArray(days.clocks));
}

TEST_P(SummerTime, countsEveryMissedDayOnce) {
    const Days& days = GetParam();
    StoreWorld world;
    begin(world, days.zone, days.begin,
          {.frequency = ScheduleFrequency::daily, .hour = days.hour, .minute = days.minute});
    // The moment of the third run itself, which counts, and the one before it.
    world.time.jump(days.hours[2] * 3600);
    world.desktop.wake();
    world.time.settle();
    ASSERT_THAT(world.configuration().runs, SizeIs(1));
    EXPECT_EQ(world.lastRun().missedRuns, 3);
    EXPECT_EQ(clockIn(days.zone, *world.unit().nextRun), days.clocks[3]);
}

TEST_P(SummerTime, leavesOutTheDayThatIsStillToCome) {
    const Days& days = GetParam();
    StoreWorld world;
    begin(world, days.zone, days.begin,
          {.frequency = ScheduleFrequency::daily, .hour = days.hour, .minute = days.minute});
    world.time.jump(days.hours[2] * 3600 - 1);
    world.desktop.wake();
    world.time.settle();
    ASSERT_THAT(world.configuration().runs, SizeIs(1));
    EXPECT_EQ(world.lastRun().missedRuns, 2);
    EXPECT_EQ(clockIn(days.zone, *world.unit().nextRun), days.clocks[2]);
}

INSTANTIATE_TEST_SUITE_P(, SummerTime, testing::ValuesIn(allDays()),
                         [](const auto& info) { return info.param.name; });

TEST(ClockChanges, doNotMoveRunsThatCountFromTheLastOne) {
    StoreWorld world;
    const sys_seconds start = sys_days(2026y / 3 / 28) + 23h;
    begin(world, "Europe/Berlin", start, {.frequency = ScheduleFrequency::hourly});
    world.time.advance(5 * 3600);
    EXPECT_THAT(hoursOfRuns(world, start), ElementsAre(1, 2, 3, 4, 5));
}

TEST(ClockChanges, leaveTenMinutesTenMinutes) {
    StoreWorld world;
    const sys_seconds start = sys_days(2026y / 10 / 25) + 0h + 30min;
    begin(world, "Europe/Berlin", start, {.frequency = ScheduleFrequency::tenMinutes});
    world.time.advance(3600);
    EXPECT_THAT(world.configuration().runs, SizeIs(6));
    EXPECT_DOUBLE_EQ(world.lastRun().startedAt - instant(start), 3600);
}

TEST(ClockChanges, leaveAWeeklyRunOnItsDay) {
    StoreWorld world;
    const sys_seconds start = sys_days(2026y / 3 / 29) + 0h;
    begin(world, "Europe/Berlin", start,
          {.frequency = ScheduleFrequency::weekly, .hour = 2, .minute = 30, .weekday = 1});
    world.time.advance(3600);
    ASSERT_THAT(world.configuration().runs, SizeIs(1));
    EXPECT_EQ(clockIn(world.zone, world.lastRun().startedAt), "29 Mar 2026, 03:00");
    EXPECT_EQ(clockIn(world.zone, *world.unit().nextRun), "5 Apr 2026, 02:30");
}

TEST(ClockChanges, doNotKeepAFailingRunFromTryingEveryQuarterOfAnHour) {
    StoreWorld world;
    const sys_seconds start = sys_days(2026y / 10 / 25) + 0h;
    begin(world, "Europe/Berlin", start, {.frequency = ScheduleFrequency::daily, .hour = 2, .minute = 30});
    const fs::path away = world.home / "Away";
    fs::rename(world.disk, away);
    world.time.advance(1.4 * 3600);
    EXPECT_THAT(hoursOfRuns(world, start), ElementsAre(0.5, 0.75, 1, 1.25));
    fs::rename(away, world.disk);
    world.time.advance(3600);
    EXPECT_THAT(hoursOfRuns(world, start), ElementsAre(0.5, 0.75, 1, 1.25, 1.5));
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_FALSE(world.lastRun().missedRuns);
    EXPECT_EQ(clockIn(world.zone, *world.unit().nextRun), "26 Oct 2026, 02:30");
}

} // namespace marrowbox
