#include "Marrowbox/Platform/DesktopNotifications.h"

#include "Marrowbox/Platform/BusCall.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariantMap>
#include <utility>

namespace marrowbox {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString interface = QStringLiteral("org.freedesktop.Notifications");
const QString defaultAction = QStringLiteral("default"); // a click on the message itself

} // namespace

DesktopNotifications::DesktopNotifications(QDBusConnection sessionBus, std::function<void()> activated)
    : bus_(std::move(sessionBus)), activated_(std::move(activated)) {
    bus_.connect(service, path, interface, QStringLiteral("ActionInvoked"), this,
                 SLOT(actionInvoked(uint, QString)));
    bus_.connect(service, path, interface, QStringLiteral("NotificationClosed"), this,
                 SLOT(notificationClosed(uint, uint)));
}

void DesktopNotifications::notify(const QString& title, const QString& body) {
    waiting_.push_back({.title = title, .body = body});
    if (readsMarkup_)
        sendWaiting();
    else
        learnAbilities();
}

void DesktopNotifications::learnAbilities() {
    if (std::exchange(isAsking_, true))
        return;
    const auto request =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("GetCapabilities"));
    auto* const answer = new QDBusPendingCallWatcher(ask(bus_, request), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QStringList> abilities = *answer;
        answer->deleteLater();
        isAsking_ = false;
        if (abilities.isValid()) {
            readsMarkup_ = abilities.value().contains(QStringLiteral("body-markup"));
            sendWaiting();
        }
        waiting_.clear(); // without a service there is nobody to show them to
    });
}

void DesktopNotifications::sendWaiting() {
    for (const Message& message : std::exchange(waiting_, {}))
        send(message);
}

void DesktopNotifications::send(const Message& message) {
    auto request = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Notify"));
    const uint replacesNone = 0;
    const int asLongAsTheDesktopLikes = -1;
    request << QStringLiteral("Marrowbox") << replacesNone << QStringLiteral("marrowbox") << message.title
            << (*readsMarkup_ ? message.body.toHtmlEscaped() : message.body)
            << QStringList{defaultAction, tr("Open Marrowbox")}
            << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("marrowbox")}}
            << asLongAsTheDesktopLikes;
    auto* const answer = new QDBusPendingCallWatcher(ask(bus_, request), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<uint> id = *answer;
        answer->deleteLater();
        if (id.isValid())
            shown_.insert(id.value());
    });
}

void DesktopNotifications::actionInvoked(uint id, const QString& action) {
    if (shown_.contains(id) && action == defaultAction && activated_)
        activated_();
}

void DesktopNotifications::notificationClosed(uint id, uint /*reason*/) {
    shown_.remove(id);
}

} // namespace marrowbox
