#include "Platform/Calendar.h"

#include "Platform/HostTimeZone.h"
#include "Platform/UserLocale.h"

#include <array>
#include <cmath>
#include <stdexcept>
#include <unicode/basictz.h>
#include <unicode/dtfmtsym.h>
#include <unicode/tztrans.h>

namespace marrowbox {

namespace {

constexpr double secondsADay = 86'400;
constexpr int daysAWeek = 7;

/// Beyond some thirty thousand years no zone has rules, and numbers lose their seconds.
constexpr double farthestDate = 1e12;

void requireSuccess(UErrorCode status) {
    if (U_FAILURE(status))
        throw std::runtime_error(std::string("Calendar support failed: ") + u_errorName(status));
}

using Zone = std::unique_ptr<icu::BasicTimeZone>;

Zone adopt(icu::TimeZone* made) {
    std::unique_ptr<icu::TimeZone> owned(made);
    auto* zone = dynamic_cast<icu::BasicTimeZone*>(owned.get());
    if (zone == nullptr || *zone == icu::TimeZone::getUnknown())
        throw std::invalid_argument("The time zone is unknown.");
    owned.release();
    return Zone(zone);
}

std::array<std::string, daysAWeek> weekdayNames(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::DateFormatSymbols symbols(locale, status);
    requireSuccess(status);
    std::int32_t count = 0;
    const icu::UnicodeString* names = symbols.getWeekdays(count); // from index 1 on
    std::array<std::string, daysAWeek> texts;
    for (int day = 1; day < count && day <= daysAWeek; ++day)
        names[day].toUTF8String(texts[static_cast<std::size_t>(day - 1)]);
    return texts;
}

/// Local time less universal time, in milliseconds, at an instant in milliseconds since 1970.
double offsetAt(const icu::BasicTimeZone& zone, double milliseconds) {
    std::int32_t raw = 0;
    std::int32_t saving = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone.getOffset(milliseconds, false, raw, saving, status);
    requireSuccess(status);
    return double(raw) + double(saving);
}

/// The instant at which the wall clock first shows a time, or, when it skips that time, the one at which it
/// has skipped it. Both sides in milliseconds since 1970.
double instantOf(const icu::BasicTimeZone& zone, double wallClock) {
    std::int32_t raw = 0;
    std::int32_t saving = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone.getOffsetFromLocal(wallClock, UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_FORMER, raw, saving, status);
    requireSuccess(status);
    const double instant = wallClock - raw - saving;
    if (instant + offsetAt(zone, instant) == wallClock)
        return instant;
    icu::TimeZoneTransition skipped;
    return zone.getPreviousTransition(instant, true, skipped) ? skipped.getTime() : instant;
}

/// 1 is Sunday; days count from 1970-01-01, a Thursday.
int weekdayOf(double day) {
    const double sinceSunday = std::fmod(day + 4, daysAWeek);
    return static_cast<int>(sinceSunday < 0 ? sinceSunday + daysAWeek : sinceSunday) + 1;
}

bool isOnAClock(const WallClockFields& fields) {
    const auto isWithin = [](int value, int first, int last) { return value >= first && value <= last; };
    return isWithin(fields.hour, 0, 23) && isWithin(fields.minute, 0, 59) && isWithin(fields.second, 0, 59) &&
           isWithin(fields.weekday.value_or(1), 1, daysAWeek);
}

} // namespace

struct Calendar::Implementation {
    Zone zone;
    std::array<std::string, daysAWeek> weekdayNames;
};

Calendar::Calendar(std::shared_ptr<const Implementation> implementation)
    : implementation_(std::move(implementation)) {
}

Calendar::Calendar(const std::string& timeZone, const std::string& locale)
    : implementation_(std::make_shared<const Implementation>(
          adopt(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(timeZone))),
          weekdayNames(icu::Locale::createFromName(locale.c_str())))) {
}

Calendar Calendar::current() {
    return Calendar(std::make_shared<const Implementation>(
        adopt(hostTimeZone().release()), weekdayNames(icu::Locale::createFromName(userLocale().c_str()))));
}

Date Calendar::adding(int amount, CalendarUnit unit, Date to) const {
    const double seconds = unit == CalendarUnit::hour ? 3600 : 60;
    return to + amount * seconds;
}

std::optional<Date> Calendar::next(Date after, const WallClockFields& fields) const {
    if (!isOnAClock(fields) || !(std::abs(after.secondsSinceReference) < farthestDate))
        return std::nullopt;
    const icu::BasicTimeZone& zone = *implementation_->zone;
    const double instant = std::floor(after.secondsSinceReference) + referenceDateSince1970;
    const double local = instant + offsetAt(zone, instant * 1000) / 1000;
    const double today = std::floor(local / secondsADay);
    const double secondOfDay = fields.hour * 3600.0 + fields.minute * 60.0 + fields.second;
    // A week from today has each weekday, and today's once more in case its time has passed.
    for (double day = today; day <= today + daysAWeek; ++day) {
        if (fields.weekday && weekdayOf(day) != *fields.weekday)
            continue;
        const double found = instantOf(zone, (day * secondsADay + secondOfDay) * 1000) / 1000;
        const Date date{found - referenceDateSince1970};
        if (date > after)
            return date;
    }
    return std::nullopt;
}

std::string Calendar::weekdayName(int weekday) const {
    const auto index = static_cast<std::size_t>(std::clamp(weekday, 1, daysAWeek) - 1);
    return implementation_->weekdayNames[index];
}

} // namespace marrowbox
