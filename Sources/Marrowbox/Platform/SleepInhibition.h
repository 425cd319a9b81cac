#pragma once

#include "Marrowbox/Platform/Desktop.h"

#include <QDBusConnection>
#include <memory>
#include <string>

namespace marrowbox {

/// Asks the session manager of the machine not to sleep, by itself or at a key, until the activity ends. The
/// answer is not waited for, and a machine without such a manager simply goes on. The thread of an event
/// loop.
std::unique_ptr<Activity> inhibitSleep(const QDBusConnection& systemBus, const std::string& reason);

} // namespace marrowbox
