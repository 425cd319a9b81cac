#include "AppSupport/StandInNotifications.h"

namespace marrowbox::test {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");

} // namespace

void StandInNotifications::offerOn(QDBusConnection bus) {
    bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                       QDBusConnection::ExportAllContents);
    bus.registerService(service);
}

void StandInNotifications::withdrawFrom(QDBusConnection bus) {
    bus.unregisterService(service);
}

QStringList StandInNotifications::GetCapabilities() {
    ++asked;
    return abilities;
}

uint StandInNotifications::Notify(const QString& program, uint /*replaces*/, const QString& /*icon*/,
                                  const QString& title, const QString& body, const QStringList& /*actions*/,
                                  const QVariantMap& /*hints*/, int /*milliseconds*/) {
    shown += program + QLatin1Char('|') + title + QLatin1Char('|') + body;
    return static_cast<uint>(shown.size());
}

} // namespace marrowbox::test
