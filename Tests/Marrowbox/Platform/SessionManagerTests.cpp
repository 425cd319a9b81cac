#include "AppSupport/EventLoop.h"
#include "AppSupport/PrivateBus.h"
#include "Marrowbox/Platform/SessionManager.h"
#include "Marrowbox/Platform/SleepInhibition.h"
#include "Marrowbox/Platform/WakeWatch.h"
#include "Platform/Descriptor.h"
#include "Platform/Files.h"

#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <array>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <unistd.h>

namespace marrowbox::test {

/// Hands out the writing ends of pipes, and sees by the reading ends whether they are still held.
class StandInSessionManager : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

  public:
    QStringList requests;
    bool refuses = false;

    std::size_t held() const {
        std::size_t count = 0;
        for (const Descriptor& lock : locks_) {
            pollfd end{.fd = lock.number(), .events = POLLIN, .revents = 0};
            if (::poll(&end, 1, 0) == 0) // no end-of-file: somebody holds the other end
                ++count;
        }
        return count;
    }

  public Q_SLOTS:
    QDBusUnixFileDescriptor Inhibit(const QString& what, const QString& who, const QString& why,
                                    const QString& mode) {
        requests += QStringList{what, who, why, mode}.join(QLatin1Char('|'));
        if (refuses) {
            sendErrorReply(QDBusError::AccessDenied, QStringLiteral("Not you."));
            return {};
        }
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            return {};
        locks_.emplace_back(ends[0]);
        const Descriptor given(ends[1]);
        return QDBusUnixFileDescriptor(given.number());
    }

  Q_SIGNALS:
    void PrepareForSleep(bool isAboutToSleep);

  private:
    std::vector<Descriptor> locks_;
};

namespace {

/// Those that a child would have too.
std::vector<std::string> inheritedDescriptors() {
    auto names = directoryNames("/proc/self/fd");
    std::erase_if(names, [](const std::string& name) {
        const int flags = ::fcntl(std::stoi(name), F_GETFD);
        return flags < 0 || (flags & FD_CLOEXEC) != 0;
    });
    return names;
}

class SessionManagers : public WithEventLoop {
  protected:
    SessionManagers() {
        service.registerObject(sessionManager::path, &manager, QDBusConnection::ExportAllContents);
        service.registerService(sessionManager::service);
    }

    /// Until the manager has answered all that it was asked: answers come in order.
    void receiveAnswers() {
        const QDBusPendingCallWatcher last(ours.asyncCall(QDBusMessage::createMethodCall(
            sessionManager::service, sessionManager::path, "org.freedesktop.DBus.Peer", "Ping")));
        EXPECT_TRUE(turnUntil([&] { return last.isFinished(); }));
    }

    StandInSessionManager manager;
    PrivateBus bus;
    QDBusConnection service = bus.connect();
    QDBusConnection ours = bus.connect();
};

} // namespace

TEST_F(SessionManagers, areAskedToHoldSleepOffWhileAnActivityLives) {
    auto activity = inhibitSleep(ours, "Finishing a Google Drive backup");
    EXPECT_TRUE(turnUntil([&] { return manager.requests.size() == 1; }));
    EXPECT_EQ(manager.requests[0], "sleep:idle|Marrowbox|Finishing a Google Drive backup|block");
    EXPECT_EQ(manager.held(), 1U);
    const auto second = inhibitSleep(ours, "More");
    EXPECT_TRUE(turnUntil([&] { return manager.held() == 2; }));
    activity.reset();
    EXPECT_TRUE(turnUntil([&] { return manager.held() == 1; }));
}

TEST_F(SessionManagers, areNotHeldUpByAnActivityThatEndsBeforeTheirAnswer) {
    auto activity = inhibitSleep(ours, "Short");
    activity.reset();
    EXPECT_TRUE(turnUntil([&] { return manager.requests.size() == 1; }));
    receiveAnswers();
    EXPECT_EQ(manager.held(), 0U);
}

TEST_F(SessionManagers, giveDescriptorsThatNoChildInherits) {
    const auto before = inheritedDescriptors();
    const auto activity = inhibitSleep(ours, "Working");
    EXPECT_TRUE(turnUntil([&] { return manager.requests.size() == 1; }));
    receiveAnswers();
    EXPECT_EQ(manager.held(), 1U);
    EXPECT_EQ(inheritedDescriptors(), before);
}

TEST_F(SessionManagers, mayRefuse) {
    manager.refuses = true;
    const auto activity = inhibitSleep(ours, "Working");
    EXPECT_TRUE(turnUntil([&] { return manager.requests.size() == 1; }));
    EXPECT_EQ(manager.held(), 0U);
}

TEST_F(SessionManagers, tellWhenTheMachineHasWoken) {
    int woken = 0;
    const WakeWatch watch(ours, [&] { ++woken; });
    Q_EMIT manager.PrepareForSleep(true);
    Q_EMIT manager.PrepareForSleep(false);
    EXPECT_TRUE(turnUntil([&] { return woken > 0; }));
    Q_EMIT manager.PrepareForSleep(false);
    EXPECT_TRUE(turnUntil([&] { return woken > 1; }));
    EXPECT_EQ(woken, 2);
}

TEST_F(SessionManagers, mayBeMissing) {
    service.unregisterService(sessionManager::service);
    const auto nobody = inhibitSleep(ours, "Working");
    const auto nothing = inhibitSleep(withoutBus(), "Working");
    const WakeWatch watch(withoutBus(), [] { FAIL(); });
    EXPECT_TRUE(nobody);
    EXPECT_TRUE(nothing);
}

} // namespace marrowbox::test

#include "SessionManagerTests.moc"
