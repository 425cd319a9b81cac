#pragma once

#include <QApplication>

namespace marrowbox::test {

/// The one application of a process of tests, without a display and a desktop.
inline void startDesktoplessApplication() {
    static int count = 1;
    static char name[] = "program-tests";
    static char* values[] = {name, nullptr};
    if (QApplication::instance())
        return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    // Left to the end of the process: what else is static may still belong to it.
    [[maybe_unused]] static auto* const application = new QApplication(count, values);
}

} // namespace marrowbox::test
