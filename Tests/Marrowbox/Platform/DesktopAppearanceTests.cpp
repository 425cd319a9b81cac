#include "AppSupport/EventLoop.h"
#include "AppSupport/PrivateBus.h"
#include "Marrowbox/Platform/DesktopAppearance.h"

#include <QDBusArgument>
#include <QDBusContext>
#include <QDBusMetaType>
#include <gmock/gmock.h>

namespace marrowbox::test {

using Settings = QMap<QString, QVariantMap>;

class StandInPortal : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

  public:
    Settings settings;

    void change(const QString& space, const QString& key, const QVariant& value) {
        QMetaObject::invokeMethod(
            this, [=, this] { Q_EMIT SettingChanged(space, key, QDBusVariant(value)); },
            Qt::QueuedConnection);
    }

  public Q_SLOTS:
    QMap<QString, QVariantMap> ReadAll(const QStringList& spaces) {
        Settings answer;
        for (const QString& space : spaces)
            if (settings.contains(space))
                answer[space] = settings[space];
        return answer;
    }

  Q_SIGNALS:
    void SettingChanged(const QString& space, const QString& key, const QDBusVariant& value);
};

namespace {

const QString common = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString kde = QStringLiteral("org.kde.kdeglobals.KDE");
constexpr std::chrono::seconds plenty = std::chrono::seconds(20);

class Portals : public WithEventLoop {
  protected:
    Portals() { qDBusRegisterMetaType<Settings>(); }
    void start() {
        thread.offer(portal, bus.connect(), QStringLiteral("org.freedesktop.portal.Desktop"),
                     QStringLiteral("/org/freedesktop/portal/desktop"));
    }
    AppearancePreferences preferencesFor(const Settings& settings) {
        portal.settings = settings;
        start();
        return DesktopAppearance(bus.connect(), nullptr, plenty).preferences();
    }

    StandInPortal portal;
    PrivateBus bus;
    ServiceThread thread;
};

} // namespace

TEST_F(Portals, tellWhatTheUserPrefersBeforeTheFirstFrame) {
    EXPECT_EQ(preferencesFor({{common, {{"color-scheme", 1U}}}, {gnome, {{"enable-animations", false}}}}),
              (AppearancePreferences{.colorScheme = ColorScheme::dark, .reducesMotion = true}));
}

TEST_F(Portals, speakForOtherDesktopsToo) {
    EXPECT_EQ(preferencesFor({{common, {{"color-scheme", 2U}}}, {kde, {{"AnimationDurationFactor", "0"}}}}),
              (AppearancePreferences{.colorScheme = ColorScheme::light, .reducesMotion = true}));
}

TEST_F(Portals, tellTheNewerWordForReducedMotion) {
    EXPECT_EQ(preferencesFor({{common, {{"reduced-motion", 1U}}}, {gnome, {{"enable-animations", true}}}}),
              (AppearancePreferences{.reducesMotion = true}));
}

TEST_F(Portals, areNotMisunderstood) {
    EXPECT_EQ(preferencesFor({{common, {{"color-scheme", "purple"}, {"reduced-motion", QStringList("x")}}},
                              {gnome, {{"enable-animations", true}}},
                              {kde, {{"AnimationDurationFactor", "fast"}}}}),
              AppearancePreferences());
}

TEST_F(Portals, tellOfChanges) {
    portal.settings = {{gnome, {{"enable-animations", false}}}};
    start();
    std::vector<AppearancePreferences> heard;
    const DesktopAppearance appearance(
        bus.connect(), [&](AppearancePreferences now) { heard.push_back(now); }, plenty);
    portal.change(common, "color-scheme", 1U);
    portal.change(common, "color-scheme", 1U);
    portal.change("org.example", "color-scheme", 2U);
    portal.change(gnome, "enable-animations", true);
    ASSERT_TRUE(turnUntil([&] { return heard.size() >= 2; }));
    EXPECT_THAT(heard, testing::ElementsAre(
                           AppearancePreferences{.colorScheme = ColorScheme::dark, .reducesMotion = true},
                           AppearancePreferences{.colorScheme = ColorScheme::dark}));
    EXPECT_EQ(appearance.preferences(), heard.back());
}

TEST_F(Portals, areHeardWhenTheyStartLaterThanTheProgram) {
    std::vector<AppearancePreferences> heard;
    const DesktopAppearance appearance(
        bus.connect(), [&](AppearancePreferences now) { heard.push_back(now); }, plenty);
    start();
    portal.change(common, "color-scheme", 1U);
    ASSERT_TRUE(turnUntil([&] { return !heard.empty(); }));
    EXPECT_EQ(heard.back(), AppearancePreferences{.colorScheme = ColorScheme::dark});
}

TEST_F(Portals, mayAnswerLate) {
    portal.settings = {{common, {{"color-scheme", 1U}}}};
    auto service = bus.connect();
    service.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal,
                           QDBusConnection::ExportAllContents);
    service.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
    // The portal is on this thread, and cannot answer while the first answer is waited for.
    const DesktopAppearance appearance(bus.connect(), nullptr, std::chrono::milliseconds(1));
    EXPECT_EQ(appearance.preferences(), AppearancePreferences());
    EXPECT_TRUE(turnUntil([&] { return appearance.preferences().colorScheme == ColorScheme::dark; }));
}

TEST_F(Portals, mayBeMissing) {
    EXPECT_EQ(DesktopAppearance(bus.connect(), nullptr, plenty).preferences(), AppearancePreferences());
    EXPECT_EQ(DesktopAppearance(withoutBus(), nullptr, plenty).preferences(), AppearancePreferences());
}

} // namespace marrowbox::test

#include "DesktopAppearanceTests.moc"
