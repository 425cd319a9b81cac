#include "Marrowbox/MarrowboxApp/TrayItem.h"

#include <QDBusConnection>

namespace marrowbox {

namespace {

/// What a desktop calls the service that shows trays' items.
constexpr const char* trayService = "org.kde.StatusNotifierWatcher";

/// Whether both menus have the same rows, apart from the text of the status line, which changes all the time.
bool differInStatusAlone(std::vector<TrayRow> old, const std::vector<TrayRow>& now) {
    if (old.empty() || now.empty())
        return false;
    old.front().text = now.front().text;
    return old == now;
}

} // namespace

TrayItem::TrayItem(const AppState& state, StoreChanges& changes, Perform perform, MakeIcon makeIcon)
    : state_(state), perform_(std::move(perform)), makeIcon_(std::move(makeIcon)),
      watcher_(trayService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForRegistration),
      menu_(std::make_unique<QMenu>()) {
    connect(&changes, &StoreChanges::changed, this, &TrayItem::follow);
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, &TrayItem::offer);
    showRows();
    offer();
}

TrayItem::~TrayItem() = default;

bool TrayItem::isReachable() const {
    return icon_ && icon_->isVisible() && QSystemTrayIcon::isSystemTrayAvailable();
}

void TrayItem::offer() {
    // An icon that was shown before the desktop had a tray stays invisible, so a fresh one is offered.
    symbol_ = traySymbol(state_);
    icon_ = std::make_unique<QSystemTrayIcon>(makeIcon_(symbol_));
    icon_->setToolTip("Marrowbox");
    icon_->setContextMenu(menu_.get());
    connect(icon_.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger)
            perform_(TrayCommand::OpenWindow{});
    });
    icon_->show();
}

void TrayItem::follow(StoreField field) {
    switch (field) {
    case StoreField::configuration:
    case StoreField::activeUnitID:
    case StoreField::progress:
    case StoreField::mounted:
        return showRows();
    default:
        return;
    }
}

void TrayItem::showRows() {
    std::vector<TrayRow> rows = trayRows(state_);
    if (rows == shown_)
        return;
    if (differInStatusAlone(shown_, rows)) {
        menu_->actions().front()->setText(rows.front().text);
    } else {
        menu_->clear();
        fill(*menu_, rows);
    }
    shown_ = std::move(rows);
    if (icon_ && symbol_ != traySymbol(state_)) {
        symbol_ = traySymbol(state_);
        icon_->setIcon(makeIcon_(symbol_));
    }
}

void TrayItem::fill(QMenu& menu, const std::vector<TrayRow>& rows) {
    for (const TrayRow& row : rows) {
        if (row.isLine) {
            menu.addSeparator();
        } else if (!row.children.empty()) {
            fill(*menu.addMenu(row.text), row.children);
        } else {
            QAction* const action = menu.addAction(row.text);
            action->setEnabled(row.isEnabled);
            if (!row.icon.isEmpty())
                action->setIcon(makeIcon_(row.icon));
            if (row.command)
                connect(action, &QAction::triggered, this, [this, does = *row.command] { perform_(does); });
        }
    }
}

} // namespace marrowbox
