#include "Marrowbox/Platform/DesktopAppearance.h"

#include "Marrowbox/Platform/BusCall.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <utility>

namespace marrowbox {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString common = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString kde = QStringLiteral("org.kde.kdeglobals.KDE");

QDBusMessage question() {
    auto request = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    request << QStringList{common, gnome, kde};
    return request;
}

ColorScheme colorScheme(const QVariant& value) {
    switch (value.toUInt()) {
    case 1:
        return ColorScheme::dark;
    case 2:
        return ColorScheme::light;
    default:
        return ColorScheme::noPreference;
    }
}

/// Each desktop says it in its own way.
bool reducesMotion(const QMap<QString, QVariantMap>& settings) {
    if (settings[common].value(QStringLiteral("reduced-motion")).toUInt() == 1)
        return true;
    const QVariant animations = settings[gnome].value(QStringLiteral("enable-animations"));
    if (animations.isValid() && !animations.toBool())
        return true;
    bool isNumber = false;
    const QVariant factor = settings[kde].value(QStringLiteral("AnimationDurationFactor"));
    return factor.toDouble(&isNumber) == 0 && isNumber;
}

AppearancePreferences preferencesOf(const QMap<QString, QVariantMap>& settings) {
    return {.colorScheme = colorScheme(settings[common].value(QStringLiteral("color-scheme"))),
            .reducesMotion = reducesMotion(settings)};
}

} // namespace

DesktopAppearance::DesktopAppearance(QDBusConnection sessionBus,
                                     std::function<void(AppearancePreferences)> changed,
                                     std::chrono::milliseconds patience)
    : bus_(std::move(sessionBus)) {
    qRegisterMetaType<QDBusVariant>(); // the bus library finds the slot by the names of its types
    bus_.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                 SLOT(settingChanged(QString, QString, QDBusVariant)));
    if (!take(bus_.call(question(), QDBus::Block, static_cast<int>(patience.count()))))
        askAgain();
    changed_ = std::move(changed); // told of changes only, not of the first answer
}

void DesktopAppearance::askAgain() {
    auto* const answer = new QDBusPendingCallWatcher(ask(bus_, question()), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        take(answer->reply());
        answer->deleteLater();
    });
}

bool DesktopAppearance::take(const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != QStringLiteral("a{sa{sv}}"))
        return false;
    answer.arguments().constFirst().value<QDBusArgument>() >> settings_;
    update();
    return true;
}

void DesktopAppearance::settingChanged(const QString& space, const QString& key, const QDBusVariant& value) {
    settings_[space][key] = value.variant();
    update();
}

void DesktopAppearance::update() {
    const AppearancePreferences now = preferencesOf(settings_);
    if (std::exchange(preferences_, now) != now && changed_)
        changed_(now);
}

} // namespace marrowbox
