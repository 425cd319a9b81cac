#pragma once

#include "Support/ScratchFolder.h"

#include <QDBusConnection>
#include <QObject>
#include <QProcess>
#include <QThread>
#include <functional>
#include <vector>

namespace marrowbox::test {

/// A message bus of the test's own, on which nobody else is and no service starts by itself.
class PrivateBus {
  public:
    PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    /// Another participant each time.
    QDBusConnection connect();
    /// Where another process finds it.
    const QString& address() const { return address_; }

  private:
    ScratchFolder folder_;
    QProcess daemon_;
    QString address_;
    QStringList names_;
};

/// A connection to no bus at all.
QDBusConnection withoutBus();

/// Services that answer on a thread of their own, so that the test's thread may wait for them.
class ServiceThread {
  public:
    ServiceThread() { thread_.start(); }
    ServiceThread(const ServiceThread&) = delete;
    ServiceThread& operator=(const ServiceThread&) = delete;
    ~ServiceThread();

    /// Offers all slots and signals of an object under a name of its own on the bus. The object is used on
    /// the thread until this one ends, which it outlives.
    void offer(QObject& service, QDBusConnection bus, const QString& name, const QString& path);

  private:
    struct Service {
        QObject* object;
        QDBusConnection bus;
        QString path;
    };
    void runOnThread(QObject& object, const std::function<void()>& work);

    QThread thread_;
    std::vector<Service> services_;
};

} // namespace marrowbox::test
