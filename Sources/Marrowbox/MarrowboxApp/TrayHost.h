#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <chrono>

namespace marrowbox {

/// Finds out, once, whether the desktop shows the items of trays. At the start of a session the program may
/// be there before its panel, and the toolkit asks once only: an item that is offered too early never
/// appears. Main thread.
class TrayHost : public QObject {
    Q_OBJECT
  public:
    /// Waits this long for a desktop that does not show items yet.
    TrayHost(const QDBusConnection& bus, std::chrono::milliseconds patience, QObject* parent = nullptr);

  signals:
    /// The desktop shows items on its bus and draws their menus, or does not; told once, not before the event
    /// loop turns.
    void found(bool isThere);

  private slots:
    void ask();

  private:
    void tell(bool isThere);

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    bool isTold_ = false;
};

} // namespace marrowbox
