#pragma once

#include "Platform/Clock.h"

#include <optional>
#include <string>

namespace marrowbox::ScheduleCountdown {

/// The text for a time span, such as "1 day 1 hr"; absent when less than a second remains.
std::optional<std::string> remaining(Date from, Date to);

} // namespace marrowbox::ScheduleCountdown
