#pragma once

#include "Platform/Clock.h"

#include <memory>
#include <optional>
#include <string>

namespace marrowbox {

/// Wall-clock fields to look for. A field without a value matches anything.
struct WallClockFields {
    std::optional<int> weekday; ///< 1 is the first of the calendar's weekday names.
    int hour = 0;
    int minute = 0;
    int second = 0;
};

enum class CalendarUnit { minute, hour };

/// A calendar with a time zone and a locale; a value that is cheap to copy. Any thread.
class Calendar {
  public:
    /// The user's calendar, time zone and locale.
    static Calendar current();
    /// A Gregorian calendar with a zone such as "Europe/Berlin" and a locale such as "en_US". Throws
    /// std::invalid_argument for a zone that nobody knows.
    Calendar(const std::string& timeZone, const std::string& locale);

    /// The instant moved forward by elapsed time.
    Date adding(int amount, CalendarUnit unit, Date to) const;
    /// The first instant strictly after the given one whose local fields match. A local time that a gap skips
    /// gives the first valid time after the gap; one that occurs twice gives the first of the two. Absent
    /// when the fields match no time at all, and tens of thousands of years away.
    std::optional<Date> next(Date after, const WallClockFields& fields) const;
    /// The localised name of a day, 1 being the first; clamped into 1...7.
    std::string weekdayName(int weekday) const;

  private:
    struct Implementation;
    explicit Calendar(std::shared_ptr<const Implementation> implementation);
    std::shared_ptr<const Implementation> implementation_;
};

} // namespace marrowbox
