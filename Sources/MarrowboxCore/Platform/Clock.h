#pragma once

#include <compare>
#include <functional>

namespace marrowbox {

/// An instant, in seconds (fractions included) since 2001-01-01 00:00:00 UTC. This is the number that every
/// record stores.
struct Date {
    double secondsSinceReference = 0;

    friend auto operator<=>(const Date&, const Date&) = default;
    friend Date operator+(Date date, double seconds) { return {date.secondsSinceReference + seconds}; }
    friend Date operator-(Date date, double seconds) { return {date.secondsSinceReference - seconds}; }
    friend double operator-(Date later, Date earlier) {
        return later.secondsSinceReference - earlier.secondsSinceReference;
    }
};

/// Seconds between 1970-01-01 and 2001-01-01, both at 00:00:00 UTC.
inline constexpr double referenceDateSince1970 = 978'307'200.0;

/// Tells the time. Handed to whatever needs it, so that a test can bring its own. Callable from any thread.
using Clock = std::function<Date()>;

/// The machine's clock.
Clock systemClock();

} // namespace marrowbox
