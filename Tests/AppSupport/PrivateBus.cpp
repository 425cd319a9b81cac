#include "AppSupport/PrivateBus.h"

#include <QFile>
#include <atomic>
#include <semaphore>
#include <stdexcept>

namespace marrowbox::test {

namespace {

const QByteArray configuration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=FOLDER</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

QString freshName() {
    static std::atomic<int> count = 0;
    return QStringLiteral("test-%1").arg(++count);
}

} // namespace

PrivateBus::PrivateBus() {
    const auto path = QString::fromStdString(folder_ / "bus.conf");
    QFile file(path);
    if (!file.open(QFile::WriteOnly))
        throw std::runtime_error("The bus has no configuration.");
    file.write(QByteArray(configuration).replace("FOLDER", folder_.path().string().c_str()));
    file.close();
    // The shell ends the bus when its input ends, which it also does when the test is killed.
    daemon_.setStandardErrorFile(QProcess::nullDevice());
    daemon_.start(QStringLiteral("/bin/sh"),
                  {QStringLiteral("-c"),
                   QStringLiteral("dbus-daemon --config-file=\"$0\" --nofork --nopidfile --print-address & "
                                  "read -r end; kill $!; wait"),
                   path});
    while (!daemon_.canReadLine())
        if (!daemon_.waitForReadyRead(20000))
            throw std::runtime_error("The bus does not start.");
    address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
}

PrivateBus::~PrivateBus() {
    for (const QString& name : names_)
        QDBusConnection::disconnectFromBus(name);
    daemon_.closeWriteChannel();
    daemon_.waitForFinished();
}

QDBusConnection PrivateBus::connect() {
    names_ += freshName();
    auto connection = QDBusConnection::connectToBus(address_, names_.back());
    if (!connection.isConnected())
        throw std::runtime_error("The bus cannot be reached.");
    return connection;
}

QDBusConnection withoutBus() {
    return QDBusConnection(freshName());
}

ServiceThread::~ServiceThread() {
    QThread* const home = QThread::currentThread();
    for (Service& service : services_)
        runOnThread(*service.object, [&] {
            service.bus.unregisterObject(service.path);
            service.object->moveToThread(home);
        });
    thread_.quit();
    thread_.wait();
}

void ServiceThread::runOnThread(QObject& object, const std::function<void()>& work) {
    // Both are seen by the thread sanitizer, as Qt's own ways from thread to thread are not.
    std::binary_semaphore isGiven(0);
    std::binary_semaphore isDone(0);
    const auto doIt = [&] {
        isGiven.acquire();
        work();
        isDone.release();
    };
    isGiven.release();
    QMetaObject::invokeMethod(&object, doIt, Qt::QueuedConnection);
    isDone.acquire();
}

void ServiceThread::offer(QObject& service, QDBusConnection bus, const QString& name, const QString& path) {
    service.moveToThread(&thread_);
    services_.push_back({.object = &service, .bus = bus, .path = path});
    bool isOffered = false;
    runOnThread(service, [&] {
        isOffered = bus.registerObject(path, &service, QDBusConnection::ExportAllContents) &&
                    bus.registerService(name);
    });
    if (!isOffered)
        throw std::runtime_error("The service cannot be offered.");
}

} // namespace marrowbox::test
