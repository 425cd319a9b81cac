#include "Marrowbox/MarrowboxApp/TrayHost.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>

namespace marrowbox {

namespace {

// What a desktop calls the service that knows of all items, and of who shows them.
const QString service = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString path = QStringLiteral("/StatusNotifierWatcher");
const QString hostProperty = QStringLiteral("IsStatusNotifierHostRegistered");

} // namespace

TrayHost::TrayHost(const QDBusConnection& bus, std::chrono::milliseconds patience, QObject* parent)
    : QObject(parent), bus_(bus), watcher_(service, bus_, QDBusServiceWatcher::WatchForRegistration) {
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, &TrayHost::ask);
    bus_.connect(service, path, service, QStringLiteral("StatusNotifierHostRegistered"), this, SLOT(ask()));
    const auto delay = bus_.isConnected() ? patience : std::chrono::milliseconds::zero();
    QTimer::singleShot(delay, this, [this] { tell(false); });
    ask();
}

void TrayHost::ask() {
    if (isTold_ || !bus_.isConnected())
        return;
    QDBusMessage question = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question.setAutoStartService(false);
    question << service << hostProperty;
    auto* const answer = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
        const QDBusPendingReply<QDBusVariant> reply = *call;
        call->deleteLater();
        if (reply.isValid() && reply.value().variant().toBool())
            tell(true);
    });
}

void TrayHost::tell(bool isThere) {
    if (isTold_)
        return;
    isTold_ = true;
    emit found(isThere);
}

} // namespace marrowbox
