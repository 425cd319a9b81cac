#pragma once

#include <memory>
#include <unicode/timezone.h>

namespace marrowbox {

/// The zone of the machine as it is now, which changes when a traveller's clock does; UTC where the machine
/// has none. Any thread.
std::unique_ptr<icu::TimeZone> hostTimeZone();

} // namespace marrowbox
