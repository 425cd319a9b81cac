#include "AppSupport/EventLoop.h"
#include "AppSupport/PrivateBus.h"
#include "AppSupport/StandInNotifications.h"
#include "Marrowbox/Platform/DesktopNotifications.h"

#include <gmock/gmock.h>

namespace marrowbox::test {

namespace {

class NotificationServices : public WithEventLoop {
  protected:
    NotificationServices() { desktop.offerOn(theirs); }
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
    desktop.withdrawFrom(theirs);
    notifications.notify("Lost", "");
    DesktopNotifications withoutAny(withoutBus(), nullptr);
    withoutAny.notify("Lost", "");
    QCoreApplication::processEvents();
    desktop.offerOn(theirs);
    EXPECT_TRUE(turnUntil([&] {
        notifications.notify("Seen", "");
        QCoreApplication::processEvents();
        return !desktop.shown.isEmpty();
    }));
}

} // namespace marrowbox::test
