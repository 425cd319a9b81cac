#include "Marrowbox/Platform/SingleInstance.h"

#include "Platform/Digest.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <utility>

namespace marrowbox {

namespace {

const QString tokenKey = QStringLiteral("activation-token");

/// As desktops derive it from the name.
QString pathOf(const QString& name) {
    return QLatin1Char('/') + QString(name).replace(QLatin1Char('.'), QLatin1Char('/'));
}

} // namespace

QString instanceName(const Environment& environment) {
    const QString name = QStringLiteral("net.marrowbox.Marrowbox");
    if (!environment.contains("MARROW_DATA_DIR"))
        return name;
    const std::string folder = dataDirectory(environment).lexically_normal();
    return name + QStringLiteral(".At") + QString::fromStdString(hexadecimal(sha256(folder))).left(16);
}

SingleInstance::SingleInstance(QDBusConnection sessionBus, QString name,
                               std::function<void(QString token)> activated)
    : bus_(std::move(sessionBus)), name_(std::move(name)), path_(pathOf(name_)),
      activated_(std::move(activated)) {
}

SingleInstance::~SingleInstance() {
    if (!isFirst_)
        return;
    bus_.unregisterService(name_);
    bus_.unregisterObject(path_);
}

SingleInstance::Role SingleInstance::claim(const QString& token, std::chrono::milliseconds patience) {
    if (!bus_.isConnected())
        return Role::unreachable;
    // Before the name is taken, so that nobody can call a first one that does not answer yet.
    bus_.registerObject(path_, this, QDBusConnection::ExportAllSlots);
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> answer =
        bus_.interface()->registerService(name_, QDBusConnectionInterface::DontQueueService,
                                          QDBusConnectionInterface::DontAllowReplacement);
    isFirst_ = answer.isValid() && answer.value() == QDBusConnectionInterface::ServiceRegistered;
    if (isFirst_)
        return Role::first;
    bus_.unregisterObject(path_);
    return answer.isValid() ? activateFirst(token, patience) : Role::unreachable;
}

SingleInstance::Role SingleInstance::activateFirst(const QString& token, std::chrono::milliseconds patience) {
    auto request = QDBusMessage::createMethodCall(name_, path_, QStringLiteral("org.freedesktop.Application"),
                                                  QStringLiteral("Activate"));
    request << (token.isEmpty() ? QVariantMap() : QVariantMap{{tokenKey, token}});
    request.setAutoStartService(false);
    const auto answer = bus_.call(request, QDBus::Block, static_cast<int>(patience.count()));
    return answer.type() == QDBusMessage::ReplyMessage ? Role::second : Role::unreachable;
}

void SingleInstance::Activate(const QVariantMap& platformData) {
    if (activated_)
        activated_(platformData.value(tokenKey).toString());
}

void SingleInstance::Open(const QStringList& /*addresses*/, const QVariantMap& platformData) {
    Activate(platformData); // the program opens no files
}

void SingleInstance::ActivateAction(const QString& /*action*/, const QVariantList& /*parameters*/,
                                    const QVariantMap& platformData) {
    Activate(platformData); // and offers no actions
}

} // namespace marrowbox
