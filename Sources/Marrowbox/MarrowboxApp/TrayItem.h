#pragma once

#include "Marrowbox/MarrowboxApp/TrayHost.h"
#include "Marrowbox/MarrowboxApp/TrayRows.h"

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <functional>
#include <memory>

namespace marrowbox {

/// Which mark in the text of a menu makes the next letter its key.
enum class MenuMark {
    ampersand,  ///< In a menu of the program's own.
    underscore, ///< In one that the desktop draws.
};

/// A text as a menu takes it that shows all of it, the marks as well.
QString menuText(QString text, MenuMark mark);

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
    void offer(MenuMark mark);
    void follow(StoreField field);
    void showRows();
    void makeMenu(const std::vector<TrayRow>& rows);
    void fill(QMenu& menu, const std::vector<TrayRow>& rows);

    const AppState& state_;
    Perform perform_;
    MakeIcon makeIcon_;
    TrayHost host_;
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    MenuMark mark_ = MenuMark::ampersand;
    std::vector<TrayRow> shown_;
    QString symbol_;
};

} // namespace marrowbox
