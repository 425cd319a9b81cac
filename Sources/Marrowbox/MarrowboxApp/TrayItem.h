#pragma once

#include "Marrowbox/MarrowboxApp/TrayRows.h"

#include <QDBusServiceWatcher>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <functional>
#include <memory>

namespace marrowbox {

/// The program's item in the desktop's tray, with its menu. It appears as soon as the desktop has a tray, and
/// follows the store. On the main thread.
class TrayItem : public QObject {
    Q_OBJECT
  public:
    using Perform = std::function<void(const TrayCommand::Any&)>;
    using MakeIcon = std::function<QIcon(const QString& symbol)>;

    /// The state and its announcer outlive the item.
    TrayItem(const AppState& state, StoreChanges& changes, Perform perform, MakeIcon makeIcon);
    ~TrayItem() override;

    /// Whether a person can reach the program through it now.
    bool isReachable() const;

  private:
    void offer();
    void follow(StoreField field);
    void showRows();
    void fill(QMenu& menu, const std::vector<TrayRow>& rows);

    const AppState& state_;
    Perform perform_;
    MakeIcon makeIcon_;
    QDBusServiceWatcher watcher_;
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    std::vector<TrayRow> shown_;
    QString symbol_;
};

} // namespace marrowbox
