// When a daily or weekly backup comes next, beside a calendar that tries one minute after the other.
#include "Models/BackupSchedule.h"
#include "Require.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <tuple>

namespace {

using namespace marrowbox;

constexpr std::array zones = {"UTC",
                              "Europe/Berlin",
                              "America/New_York",
                              "America/St_Johns",
                              "Australia/Lord_Howe",
                              "Pacific/Chatham",
                              "Asia/Kolkata",
                              "Europe/London"};
constexpr std::time_t referenceDate = 978'307'200;
constexpr std::time_t day = 86'400;

struct Question {
    std::uint32_t minuteOfTime; ///< Since 2007.
    std::uint8_t second;
    std::uint8_t zone;
    std::uint8_t hour;
    std::uint8_t minute;
    std::uint8_t weekday; ///< 0 asks for any day.
};

using LocalMinute = std::tuple<int, int, int, int>; ///< Year, day of the year, hour, minute.

std::tm localTime(std::time_t instant) {
    std::tm local{};
    ::localtime_r(&instant, &local);
    return local;
}

LocalMinute localMinute(const std::tm& local) {
    return {local.tm_year, local.tm_yday, local.tm_hour, local.tm_min};
}

/// The first minute at which the clocks of the zone have reached that time of that day.
std::time_t firstReach(const LocalMinute& wanted, std::time_t somewhereInTheDay) {
    std::time_t instant = (somewhereInTheDay - 2 * day) / 60 * 60;
    // Hours first: no clock goes back by more than one.
    while (localMinute(localTime(instant + 7200)) < wanted)
        instant += 3600;
    while (localMinute(localTime(instant)) < wanted)
        instant += 60;
    return instant;
}

std::time_t expected(const Question& asked, std::time_t after) {
    // Half a day at a time, since a whole one could step over a day that lacks an hour.
    for (std::time_t within = after - 2 * day;; within += day / 2) {
        const std::tm local = localTime(within);
        if (asked.weekday != 0 && local.tm_wday != asked.weekday - 1)
            continue;
        const std::time_t reached =
            firstReach({local.tm_year, local.tm_yday, asked.hour, asked.minute}, within);
        if (reached > after)
            return reached;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    if (count < 9)
        return 0;
    Question asked{};
    std::memcpy(&asked.minuteOfTime, bytes, 4);
    asked.minuteOfTime %= 60 * 24 * 365 * 23; // up to 2030
    asked.second = static_cast<std::uint8_t>(bytes[4]) % 60;
    asked.zone = static_cast<std::uint8_t>(bytes[5]) % zones.size();
    asked.hour = static_cast<std::uint8_t>(bytes[6]) % 24;
    asked.minute = static_cast<std::uint8_t>(bytes[7]) % 60;
    asked.weekday = static_cast<std::uint8_t>(bytes[8]) % 8;
    ::setenv("TZ", zones[asked.zone], 1);
    ::tzset();

    const std::time_t after =
        referenceDate + 6 * 365 * day + static_cast<std::time_t>(asked.minuteOfTime) * 60 + asked.second;
    const BackupSchedule schedule{.frequency = asked.weekday == 0 ? ScheduleFrequency::daily
                                                                  : ScheduleFrequency::weekly,
                                  .hour = asked.hour,
                                  .minute = asked.minute,
                                  .weekday = asked.weekday};
    const Calendar calendar(zones[asked.zone], "en_US");
    const auto next = schedule.next(Date{static_cast<double>(after - referenceDate)}, calendar);
    fuzz::require(next.has_value());
    fuzz::require(next->secondsSinceReference == static_cast<double>(expected(asked, after) - referenceDate));
    return 0;
}
