#include "TrayUser.h"

#include <QApplication>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>

namespace marrowbox::test {

QMenu* TrayUser::menu() {
    for (QWidget* const widget : QApplication::topLevelWidgets())
        if (auto* const menu = qobject_cast<QMenu*>(widget); menu && !menu->parentWidget())
            return menu;
    ADD_FAILURE() << "The program has no menu in the tray.";
    return nullptr;
}

QAction* TrayUser::found(const QMenu* menu, const QString& row) {
    if (!menu)
        return nullptr;
    for (QAction* const action : menu->actions())
        if (action->text() == row)
            return action;
    ADD_FAILURE() << "There is no row " << row.toStdString() << " in the tray’s menu.";
    return nullptr;
}

QStringList TrayUser::rows() const {
    QStringList rows;
    if (const QMenu* const shown = menu())
        for (const QAction* const action : shown->actions())
            rows.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    return rows;
}

bool TrayUser::isEnabled(const QString& row) const {
    const QAction* const action = found(menu(), row);
    return action && action->isEnabled();
}

void TrayUser::click(const QString& row, const QString& rowOfItsMenu) const {
    QMenu* shown = menu();
    QAction* action = found(shown, row);
    if (action && !rowOfItsMenu.isEmpty()) {
        shown = action->menu();
        action = found(shown, rowOfItsMenu);
    }
    if (!action)
        return;
    shown->popup(QPoint());
    EXPECT_TRUE(QTest::qWaitForWindowExposed(shown));
    QTest::mouseClick(shown, Qt::LeftButton, {}, shown->actionGeometry(action).center());
}

} // namespace marrowbox::test
