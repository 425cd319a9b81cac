#pragma once

#include <QAccessible>
#include <QPoint>
#include <QQuickWindow>
#include <QStringList>
#include <chrono>
#include <functional>

class QQuickItem;

namespace marrowbox::test {

/// A person at the mouse and keyboard of a window, who knows what stands on it by what a screen reader says.
/// Elements are named by their accessible name. A test fails when what it looks for does not come.
class WindowUser {
  public:
    /// Lets the world behind the window do what it has to do.
    using Turn = std::function<void()>;

    /// Someone who waits this long before giving up.
    explicit WindowUser(Turn turn = {}, std::chrono::milliseconds patience = std::chrono::seconds(5));
    /// Turns to this window, which outlives the use of it.
    void sitDownAt(QQuickWindow& window) { window_ = &window; }

    /// The element with this name, and this role where one is given, if it can be seen now; else null.
    QAccessibleInterface* find(const QString& name, QAccessible::Role role = QAccessible::NoRole) const;
    /// Whether such an element can be seen now.
    bool shows(const QString& name) const;
    /// Waits until it can, or no longer can, be seen.
    bool comesToShow(const QString& name);
    bool ceasesToShow(const QString& name);
    /// Waits until this holds.
    bool comesTo(const std::function<bool()>& hold);
    /// What a screen reader says after the name.
    QString description(const QString& name);
    QString textIn(const QString& name);
    QAccessible::Role role(const QString& name);
    bool isChecked(const QString& name);

    void click(const QString& name);
    /// One of several of this name: the one in that row.
    void click(const QString& name, const QString& row);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    void type(const QString& text);
    /// Moves on with the Tab key until the element has the focus; fails when the focus comes round without
    /// it.
    void tabTo(const QString& name);
    QString focused() const;

    /// Everything that can be seen, for the message of a failing test.
    QStringList names() const;

  protected:
    /// Lets what is under way come to rest, and lays out what has come.
    void settle() const;
    /// Waits for the element; null, with a failure, when it does not come.
    QAccessibleInterface* found(const QString& name);

  private:
    void click(QAccessibleInterface& element);
    void scrollTo(const QQuickItem& item);

    Turn turn_;
    int patience_;
    QQuickWindow* window_ = nullptr;
};

} // namespace marrowbox::test
