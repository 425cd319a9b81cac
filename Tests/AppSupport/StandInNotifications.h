#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace marrowbox::test {

/// A desktop's service for notifications, which keeps what it is asked to show. It answers on the event loop
/// of its thread.
class StandInNotifications : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

  public:
    void offerOn(QDBusConnection bus);
    void withdrawFrom(QDBusConnection bus);

    QStringList abilities;
    QStringList shown; ///< "Program|Title|Text", each with the number of its place, from 1, as its name.
    int asked = 0;     ///< How often for the abilities.

  public Q_SLOTS:
    QStringList GetCapabilities();
    uint Notify(const QString& program, uint replaces, const QString& icon, const QString& title,
                const QString& body, const QStringList& actions, const QVariantMap& hints, int milliseconds);

  Q_SIGNALS:
    void ActionInvoked(uint id, const QString& action);
    void NotificationClosed(uint id, uint reason);
};

} // namespace marrowbox::test
