#pragma once

#include <QString>

/// The names under which the machine's session manager answers on the system bus.
namespace marrowbox::sessionManager {

inline const QString service = QStringLiteral("org.freedesktop.login1");
inline const QString path = QStringLiteral("/org/freedesktop/login1");
inline const QString interface = QStringLiteral("org.freedesktop.login1.Manager");

} // namespace marrowbox::sessionManager
