#include "Models/BackupSchedule.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace marrowbox {

namespace {

/// A stored number may be anything; one that no clock shows stays one that no clock shows.
int clockField(std::int64_t stored) {
    return static_cast<int>(std::clamp<std::int64_t>(stored, -1, 99));
}

std::string timeText(std::int64_t hour, std::int64_t minute) {
    std::array<char, 48> text{};
    const int length = std::snprintf(text.data(), text.size(), "%02lld:%02lld", static_cast<long long>(hour),
                                     static_cast<long long>(minute));
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace

std::string title(ScheduleFrequency frequency) {
    switch (frequency) {
    case ScheduleFrequency::manual:
        return "Manual";
    case ScheduleFrequency::tenMinutes:
        return "Every 10 minutes";
    case ScheduleFrequency::hourly:
        return "Hourly";
    case ScheduleFrequency::daily:
        return "Daily";
    case ScheduleFrequency::weekly:
        return "Weekly";
    }
    return {};
}

std::optional<Date> BackupSchedule::next(Date after, const Calendar& calendar) const {
    WallClockFields fields{
        .weekday = {}, .hour = clockField(hour), .minute = clockField(minute), .second = 0};
    switch (frequency) {
    case ScheduleFrequency::manual:
        return std::nullopt;
    case ScheduleFrequency::tenMinutes:
        return calendar.adding(10, CalendarUnit::minute, after);
    case ScheduleFrequency::hourly:
        return calendar.adding(1, CalendarUnit::hour, after);
    case ScheduleFrequency::weekly:
        fields.weekday = clockField(weekday);
        [[fallthrough]];
    case ScheduleFrequency::daily:
        return calendar.next(after, fields);
    }
    return std::nullopt;
}

std::int64_t BackupSchedule::missedOccurrences(Date scheduledFor, Date now, double grace,
                                               const Calendar& calendar, std::int64_t limit) const {
    if (frequency == ScheduleFrequency::manual || !(now - scheduledFor > grace))
        return 0;
    std::int64_t count = 1;
    Date cursor = scheduledFor;
    while (count < limit) {
        const auto candidate = next(cursor, calendar);
        // A calendar that makes no progress must not keep us here for ever.
        if (!candidate || !(*candidate > cursor) || now < *candidate)
            return count;
        ++count;
        cursor = *candidate;
    }
    return count;
}

std::string BackupSchedule::summary(const Calendar& calendar) const {
    switch (frequency) {
    case ScheduleFrequency::manual:
        return "On demand";
    case ScheduleFrequency::tenMinutes:
        return "Every 10 minutes";
    case ScheduleFrequency::hourly:
        return "Every hour";
    case ScheduleFrequency::daily:
        return "Daily at " + timeText(hour, minute);
    case ScheduleFrequency::weekly:
        return calendar.weekdayName(clockField(weekday)) + " at " + timeText(hour, minute);
    }
    return {};
}

} // namespace marrowbox
