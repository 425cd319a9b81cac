#include "Marrowbox/MarrowboxApp/TrayHost.h"

#include "AppSupport/PrivateBus.h"
#include "Desktopless.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QTest>
#include <gtest/gtest.h>
#include <optional>

namespace marrowbox {

namespace {

const QString service = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString path = QStringLiteral("/StatusNotifierWatcher");

/// What a desktop offers for trays, with a panel that shows them or not.
class StandInWatcher : public QDBusVirtualObject {
  public:
    explicit StandInWatcher(const QDBusConnection& bus) : bus_(bus) {}

    void appear() {
        bus_.registerVirtualObject(path, this);
        bus_.registerService(service);
    }
    void showPanel() {
        hasPanel_ = true;
        bus_.send(QDBusMessage::createSignal(path, service, "StatusNotifierHostRegistered"));
    }
    bool comesToBeAsked() const {
        return QTest::qWaitFor([this] { return questions_ > 0; });
    }
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        ++questions_;
        return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(hasPanel_))));
    }

  private:
    QDBusConnection bus_;
    bool hasPanel_ = false;
    int questions_ = 0;
};

struct Desktop : testing::Test {
    Desktop() { test::startDesktoplessApplication(); }

    void wait(std::chrono::milliseconds patience = std::chrono::minutes(1)) {
        host.emplace(bus.connect(), patience);
        QObject::connect(&*host, &TrayHost::found, [this](bool isThere) { told.push_back(isThere); });
    }
    bool comesToTell() const {
        return QTest::qWaitFor([this] { return !told.empty(); });
    }

    test::PrivateBus bus;
    StandInWatcher watcher{bus.connect()};
    std::vector<bool> told;
    std::optional<TrayHost> host;
};

} // namespace

TEST_F(Desktop, thatShowsTraysIsFoundAtOnce) {
    watcher.appear();
    watcher.showPanel();
    wait();
    ASSERT_TRUE(comesToTell());
    EXPECT_EQ(told, std::vector{true});
}

TEST_F(Desktop, whosePanelComesLaterIsWaitedFor) {
    watcher.appear();
    wait();
    EXPECT_TRUE(watcher.comesToBeAsked());
    EXPECT_TRUE(told.empty());
    watcher.showPanel();
    ASSERT_TRUE(comesToTell());
    EXPECT_EQ(told, std::vector{true});
}

TEST_F(Desktop, thatComesAfterTheProgramIsWaitedFor) {
    wait();
    watcher.appear();
    watcher.showPanel();
    ASSERT_TRUE(comesToTell());
    EXPECT_EQ(told, std::vector{true});
}

TEST_F(Desktop, thatNeverShowsTraysIsNotWaitedForForever) {
    wait(std::chrono::milliseconds(1));
    ASSERT_TRUE(comesToTell());
    EXPECT_EQ(told, std::vector{false});
}

TEST_F(Desktop, withoutABusIsNotWaitedForAtAll) {
    host.emplace(test::withoutBus(), std::chrono::minutes(1));
    QObject::connect(&*host, &TrayHost::found, [this](bool isThere) { told.push_back(isThere); });
    ASSERT_TRUE(comesToTell());
    EXPECT_EQ(told, std::vector{false});
}

} // namespace marrowbox
