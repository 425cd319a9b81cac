#include "AppSupport/EventLoop.h"
#include "AppSupport/PrivateBus.h"
#include "Marrowbox/Platform/DesktopNotifications.h"

#include <QVariantMap>
#include <gmock/gmock.h>

namespace marrowbox::test {

class StandInNotifications : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

  public:
    QStringList abilities;
    QStringList shown;
    int asked = 0;

  public Q_SLOTS:
    QStringList GetCapabilities() {
        ++asked;
        return abilities;
    }
    uint Notify(const QString& program, uint /*replaces*/, const QString& /*icon*/, const QString& title,
                const QString& body, const QStringList& /*actions*/, const QVariantMap& /*hints*/,
                int /*milliseconds*/) {
        shown += program + QLatin1Char('|') + title + QLatin1Char('|') + body;
        return static_cast<uint>(shown.size());
    }

  Q_SIGNALS:
    void ActionInvoked(uint id, const QString& action);
    void NotificationClosed(uint id, uint reason);
};

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");

class NotificationServices : public WithEventLoop {
  protected:
    NotificationServices() {
        theirs.registerObject(QStringLiteral("/org/freedesktop/Notifications"), &desktop,
                              QDBusConnection::ExportAllContents);
        theirs.registerService(service);
    }
    bool show(int count) {
        return turnUntil([&] { return desktop.shown.size() == count; });
    }

    StandInNotifications desktop;
    PrivateBus bus;
    QDBusConnection theirs = bus.connect();
    int activations = 0;
    DesktopNotifications notifications{bus.connect(), [this] { ++activations; }};
};

} // namespace

TEST_F(NotificationServices, showWhatTheProgramSays) {
    notifications.notify("Backup failed", "a < b & c");
    notifications.notify("Second", "");
    EXPECT_TRUE(show(2));
    EXPECT_EQ(desktop.shown, (QStringList{"Marrowbox|Backup failed|a < b & c", "Marrowbox|Second|"}));
    EXPECT_EQ(desktop.asked, 1);
}

TEST_F(NotificationServices, takeNoTextForMarkup) {
    desktop.abilities = QStringList{"body", "body-markup"};
    notifications.notify("<b>Title</b>", "<b> & \"");
    EXPECT_TRUE(show(1));
    EXPECT_EQ(desktop.shown, QStringList("Marrowbox|<b>Title</b>|&lt;b&gt; &amp; &quot;"));
}

TEST_F(NotificationServices, tellOfAClickOnOurOwnMessagesAlone) {
    notifications.notify("One", "");
    EXPECT_TRUE(show(1));
    Q_EMIT desktop.ActionInvoked(77, QStringLiteral("default"));
    Q_EMIT desktop.ActionInvoked(1, QStringLiteral("something-else"));
    Q_EMIT desktop.ActionInvoked(1, QStringLiteral("default"));
    EXPECT_TRUE(turnUntil([&] { return activations > 0; }));
    Q_EMIT desktop.NotificationClosed(1, 2);
    Q_EMIT desktop.ActionInvoked(1, QStringLiteral("default"));
    notifications.notify("Two", "");
    EXPECT_TRUE(show(2));
    Q_EMIT desktop.ActionInvoked(2, QStringLiteral("default"));
    EXPECT_TRUE(turnUntil([&] { return activations > 1; }));
    EXPECT_EQ(activations, 2);
}

TEST_F(NotificationServices, mayComeLater) {
    theirs.unregisterService(service);
    notifications.notify("Lost", "");
    DesktopNotifications withoutAny(withoutBus(), nullptr);
    withoutAny.notify("Lost", "");
    QCoreApplication::processEvents();
    theirs.registerService(service);
    EXPECT_TRUE(turnUntil([&] {
        notifications.notify("Seen", "");
        QCoreApplication::processEvents();
        return !desktop.shown.isEmpty();
    }));
}

} // namespace marrowbox::test

#include "DesktopNotificationsTests.moc"
