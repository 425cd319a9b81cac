#pragma once

#include "Platform/Clock.h"

#include <optional>

/// When a unit's daily summary is due.
namespace marrowbox::NotificationDigest {

/// Seconds between two summaries of one unit.
inline constexpr double interval = 86'400;

/// Whether so many seconds have passed since the last one; a first one is always due.
bool isDue(std::optional<Date> lastSentAt, Date now, double seconds = interval);

} // namespace marrowbox::NotificationDigest
