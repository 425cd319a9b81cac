#pragma once

#include "Platform/Calendar.h"

#include <array>
#include <boost/describe/class.hpp>
#include <boost/describe/enum.hpp>
#include <cstdint>
#include <optional>
#include <string>

namespace marrowbox {

/// How often a unit is backed up, in the order of the picker.
enum class ScheduleFrequency { manual, tenMinutes, hourly, daily, weekly };
BOOST_DESCRIBE_ENUM(ScheduleFrequency, manual, tenMinutes, hourly, daily, weekly)

inline constexpr std::array allScheduleFrequencies = {
    ScheduleFrequency::manual, ScheduleFrequency::tenMinutes, ScheduleFrequency::hourly,
    ScheduleFrequency::daily, ScheduleFrequency::weekly};

/// The text of the picker.
std::string title(ScheduleFrequency frequency);

/// Says when a unit is to run. All fields stay at every frequency, so that a schedule switched to another one
/// and back keeps its time.
struct BackupSchedule {
    ScheduleFrequency frequency = ScheduleFrequency::daily;
    std::int64_t hour = 0;
    std::int64_t minute = 0;
    std::int64_t weekday = 1; ///< 1 is the first of the calendar's weekday names.

    /// The occurrence after an instant; absent for a manual schedule.
    std::optional<Date> next(Date after, const Calendar& calendar) const;
    /// How many occurrences have passed, the scheduled one included; 0 within the grace time (seconds), and
    /// never more than the limit.
    std::int64_t missedOccurrences(Date scheduledFor, Date now, double grace, const Calendar& calendar,
                                   std::int64_t limit) const;
    /// The text of the unit page, such as "Daily at 09:00"; weekday names are the calendar's.
    std::string summary(const Calendar& calendar) const;

    friend bool operator==(const BackupSchedule&, const BackupSchedule&) = default;
};

BOOST_DESCRIBE_STRUCT(BackupSchedule, (), (frequency, hour, minute, weekday))

} // namespace marrowbox
