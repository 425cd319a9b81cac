#include "AppSupport/EventLoop.h"
#include "AppSupport/PrivateBus.h"
#include "Marrowbox/Platform/SingleInstance.h"

#include <future>
#include <gmock/gmock.h>
#include <optional>
#include <thread>

namespace marrowbox::test {

using Role = SingleInstance::Role;

namespace {

const QString name = QStringLiteral("net.marrowbox.Test");
constexpr std::chrono::seconds plenty = std::chrono::seconds(20);

class Instances : public WithEventLoop {
  protected:
    /// Starts the program again while the first one's event loop turns.
    Role startAgain(const QString& token) {
        std::promise<Role> role;
        auto future = role.get_future();
        std::thread other([&, connection = bus.connect()] {
            SingleInstance second(connection, name, nullptr);
            role.set_value(second.claim(token, plenty));
            QMetaObject::invokeMethod(qApp, [] {}, Qt::QueuedConnection); // wakes the loop
        });
        turnUntil([&] { return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
        other.join();
        return future.get();
    }

    PrivateBus bus;
    QStringList tokens;
    std::optional<SingleInstance> first{std::in_place, bus.connect(), name,
                                        [this](const QString& token) { tokens += token; }};
};

} // namespace

TEST_F(Instances, areToldOfLaterStarts) {
    EXPECT_EQ(first->claim({}, plenty), Role::first);
    EXPECT_EQ(startAgain("let-me-in"), Role::second);
    EXPECT_EQ(startAgain({}), Role::second);
    EXPECT_EQ(tokens, (QStringList{"let-me-in", ""}));
}

TEST_F(Instances, leaveTheirNameToTheNextStart) {
    EXPECT_EQ(first->claim({}, plenty), Role::first);
    first.reset();
    EXPECT_EQ(startAgain({}), Role::first);
}

TEST_F(Instances, areUnreachableWhenTheyDoNotAnswer) {
    EXPECT_EQ(first->claim({}, plenty), Role::first);
    SingleInstance second(bus.connect(), name, nullptr);
    // The first one's event loop does not turn meanwhile.
    EXPECT_EQ(second.claim({}, std::chrono::milliseconds(1)), Role::unreachable);
    EXPECT_TRUE(turnUntil([&] { return tokens.size() == 1; }));
}

TEST_F(Instances, areUnreachableWithoutABus) {
    SingleInstance alone(withoutBus(), name, nullptr);
    EXPECT_EQ(alone.claim({}, plenty), Role::unreachable);
}

TEST(InstanceName, belongsToTheDataFolder) {
    EXPECT_EQ(instanceName({{"HOME", "/home/someone"}}), "net.marrowbox.Marrowbox");
    const auto elsewhere = instanceName({{"MARROW_DATA_DIR", "/elsewhere"}});
    EXPECT_EQ(elsewhere, "net.marrowbox.Marrowbox.Atb660bf8d645bba04");
    EXPECT_EQ(instanceName({{"MARROW_DATA_DIR", "/tmp/../elsewhere"}}), elsewhere);
    EXPECT_NE(instanceName({{"MARROW_DATA_DIR", "/another"}}), elsewhere);
}

} // namespace marrowbox::test
