#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <chrono>
#include <functional>

class QDBusMessage;

namespace marrowbox {

enum class ColorScheme { noPreference, dark, light };

/// What the user prefers of all programs.
struct AppearancePreferences {
    ColorScheme colorScheme = ColorScheme::noPreference;
    bool reducesMotion = false;

    friend bool operator==(const AppearancePreferences&, const AppearancePreferences&) = default;
};

/// The user's preferences as the desktop's settings portal tells them, now and after each change. A desktop
/// without a portal has none. The thread of an event loop.
class DesktopAppearance : public QObject {
    Q_OBJECT

  public:
    /// Asks at once and waits at most this long for the answer, so that a first window is drawn in the right
    /// colours; a later answer is a change like any other.
    DesktopAppearance(QDBusConnection sessionBus, std::function<void(AppearancePreferences)> changed,
                      std::chrono::milliseconds patience);

    const AppearancePreferences& preferences() const { return preferences_; }

  private Q_SLOTS:
    void settingChanged(const QString& space, const QString& key, const QDBusVariant& value);

  private:
    void askAgain();
    bool take(const QDBusMessage& answer);
    void update();

    QDBusConnection bus_;
    std::function<void(AppearancePreferences)> changed_;
    QMap<QString, QVariantMap> settings_; ///< As the portal has told them.
    AppearancePreferences preferences_;
};

} // namespace marrowbox
