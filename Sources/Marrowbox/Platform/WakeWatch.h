#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>

namespace marrowbox {

/// Tells when the machine has woken from sleep, as the session manager on the system bus announces it. Tells
/// nothing where there is none. The thread of an event loop.
class WakeWatch : public QObject {
    Q_OBJECT

  public:
    WakeWatch(QDBusConnection systemBus, std::function<void()> woke);

  private Q_SLOTS:
    void prepareForSleep(bool isAboutToSleep);

  private:
    std::function<void()> woke_;
};

} // namespace marrowbox
