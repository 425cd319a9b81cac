#include "Models/ScheduleCountdown.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace marrowbox {

namespace {

constexpr std::int64_t minute = 60;
constexpr std::int64_t hour = 60 * minute;
constexpr std::int64_t day = 24 * hour;

/// Far more than anybody waits, and far less than an integer holds.
constexpr double longestSpan = 1e15;

std::string count(std::int64_t number, const char* unit) {
    return std::to_string(number) + " " + unit;
}

/// The smaller unit behind the larger one, unless there is none of it.
std::string andRest(std::int64_t number, const char* unit) {
    return number == 0 ? std::string() : " " + count(number, unit);
}

} // namespace

std::optional<std::string> ScheduleCountdown::remaining(Date from, Date to) {
    const double span = std::floor(to - from);
    if (!(span >= 1))
        return std::nullopt;
    const auto seconds = static_cast<std::int64_t>(std::min(span, longestSpan));
    if (seconds < minute)
        return "less than a minute";
    if (seconds < hour)
        return count(seconds / minute, "min");
    if (seconds < day)
        return count(seconds / hour, "hr") + andRest(seconds % hour / minute, "min");
    return count(seconds / day, seconds < 2 * day ? "day" : "days") + andRest(seconds % day / hour, "hr");
}

} // namespace marrowbox
