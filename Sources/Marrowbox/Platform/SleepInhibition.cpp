#include "Marrowbox/Platform/SleepInhibition.h"

#include "Marrowbox/Platform/BusCall.h"
#include "Marrowbox/Platform/SessionManager.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>

namespace marrowbox {

namespace {

/// Sleep is held off as long as the descriptor is open. It is close-on-exec, so that no child keeps the
/// machine awake. When the activity ends before the answer, the bus library closes what arrives later.
class SleepInhibition : public Activity {
  public:
    explicit SleepInhibition(const QDBusPendingCall& call) : answer_(call) {
        QObject::connect(&answer_, &QDBusPendingCallWatcher::finished, &answer_, [this] { keep(); });
    }

  private:
    void keep() {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = answer_;
        if (reply.isValid())
            descriptor_ = reply.value();
    }

    QDBusUnixFileDescriptor descriptor_;
    QDBusPendingCallWatcher answer_;
};

} // namespace

std::unique_ptr<Activity> inhibitSleep(const QDBusConnection& systemBus, const std::string& reason) {
    auto request = QDBusMessage::createMethodCall(sessionManager::service, sessionManager::path,
                                                  sessionManager::interface, QStringLiteral("Inhibit"));
    request << QStringLiteral("sleep:idle") << QStringLiteral("Marrowbox") << QString::fromStdString(reason)
            << QStringLiteral("block");
    return std::make_unique<SleepInhibition>(ask(systemBus, request));
}

} // namespace marrowbox
