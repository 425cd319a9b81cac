#pragma once

#include <QString>
#include <QStringList>

class QAction;
class QMenu;

namespace marrowbox::test {

/// A person at the program's menu in the tray. A test fails when what it looks for is not there.
class TrayUser {
  public:
    /// The texts from top to bottom; "-" for a line.
    QStringList rows() const;
    bool isEnabled(const QString& row) const;
    /// Opens the menu and clicks the row; in a menu of that row, when there is one, the row with the second
    /// name.
    void click(const QString& row, const QString& rowOfItsMenu = {}) const;

  private:
    static QMenu* menu();
    static QAction* found(const QMenu* menu, const QString& row);
};

} // namespace marrowbox::test
