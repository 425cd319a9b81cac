#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>

namespace marrowbox {

/// Sends a question whose answer is watched. Without a bus the answer is a failure; the library itself would
/// never answer then.
inline QDBusPendingCall ask(const QDBusConnection& bus, const QDBusMessage& question) {
    if (bus.isConnected())
        return bus.asyncCall(question);
    return QDBusPendingCall::fromError(
        QDBusError(QDBusError::Disconnected, QStringLiteral("There is no bus.")));
}

} // namespace marrowbox
