#pragma once

#include "Platform/Clock.h"

#include <ctime>
#include <functional>
#include <string>
#include <string_view>

namespace marrowbox {

/// The fields of a wall clock at an instant, in some time zone. Any thread.
using LocalTime = std::function<std::tm(Date)>;

/// In the system's time zone.
LocalTime systemLocalTime();

/// The name of the volume that shows a snapshot: the program's name, up to 14 plain characters of the unit's
/// name, and when the snapshot was completed.
std::string volumeName(std::string_view unitName, const std::tm& completedAt);

} // namespace marrowbox
