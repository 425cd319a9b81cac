#include "Marrowbox/MarrowboxApp/TrayItem.h"

#include <QDBusConnection>

namespace marrowbox {

namespace {

/// A session that has just begun may take this long to bring its panel.
constexpr std::chrono::seconds panelPatience{30};

/// Whether both menus have the same rows, apart from the text of the status line, which changes all the time.
bool differInStatusAlone(std::vector<TrayRow> old, const std::vector<TrayRow>& now) {
    if (old.empty() || now.empty())
        return false;
    old.front().text = now.front().text;
    return old == now;
}

} // namespace

QString menuText(QString text, MenuMark mark) {
    if (mark == MenuMark::ampersand)
        return text.replace(u'&', QStringLiteral("&&"));
    text.replace(u'_', QStringLiteral("__"));
    // On its way to the desktop the first "&" becomes a mark, and no other: so there is one to spare.
    return text.contains(u'&') ? u'&' + text : text;
}

TrayItem::TrayItem(const AppState& state, StoreChanges& changes, Perform perform, MakeIcon makeIcon)
    : state_(state), perform_(std::move(perform)), makeIcon_(std::move(makeIcon)),
      host_(QDBusConnection::sessionBus(), panelPatience), // the one that the toolkit asks
      menu_(std::make_unique<QMenu>()) {
    connect(&changes, &StoreChanges::changed, this, &TrayItem::follow);
    connect(&host_, &TrayHost::found, this,
            [this](bool isThere) { offer(isThere ? MenuMark::underscore : MenuMark::ampersand); });
    showRows();
}

TrayItem::~TrayItem() = default;

bool TrayItem::isReachable() const {
    return icon_ && icon_->isVisible() && QSystemTrayIcon::isSystemTrayAvailable();
}

void TrayItem::offer(MenuMark mark) {
    mark_ = mark;
    makeMenu(shown_);
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
        menu_->actions().front()->setText(menuText(rows.front().text, mark_));
    } else {
        makeMenu(rows);
    }
    shown_ = std::move(rows);
    if (icon_ && symbol_ != traySymbol(state_)) {
        symbol_ = traySymbol(state_);
        icon_->setIcon(makeIcon_(symbol_));
    }
}

void TrayItem::makeMenu(const std::vector<TrayRow>& rows) {
    menu_->clear();
    for (QMenu* const old : menu_->findChildren<QMenu*>(Qt::FindDirectChildrenOnly))
        old->deleteLater(); // the desktop may be asking for it now
    fill(*menu_, rows);
}

void TrayItem::fill(QMenu& menu, const std::vector<TrayRow>& rows) {
    for (const TrayRow& row : rows) {
        if (row.isLine) {
            menu.addSeparator();
        } else if (!row.children.empty()) {
            fill(*menu.addMenu(menuText(row.text, mark_)), row.children);
        } else {
            QAction* const action = menu.addAction(menuText(row.text, mark_));
            action->setEnabled(row.isEnabled);
            if (!row.icon.isEmpty())
                action->setIcon(makeIcon_(row.icon));
            if (row.command)
                connect(action, &QAction::triggered, this, [this, does = *row.command] { perform_(does); });
        }
    }
}

} // namespace marrowbox
