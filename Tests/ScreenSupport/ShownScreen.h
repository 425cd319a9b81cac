#pragma once

#include <QAccessible>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>
#include <functional>
#include <memory>

namespace marrowbox::test {

/// A screen in a window that nobody sees, and a person at its mouse and keyboard who knows what stands on it
/// by what a screen reader says. Elements are named by their accessible name. A test fails when the screen
/// makes QML warn, and when what it looks for does not come.
class ShownScreen {
  public:
    /// Registers the modules that the screen imports.
    using Install = std::function<void(QQmlEngine&)>;
    /// Lets the world behind the screen do what it has to do.
    using Turn = std::function<void()>;

    ShownScreen(const QUrl& component, const QVariantMap& properties, const Install& install, Turn turn);
    ShownScreen(const ShownScreen&) = delete;
    ShownScreen& operator=(const ShownScreen&) = delete;
    ~ShownScreen();

    /// Whether such an element can be seen now.
    bool shows(const QString& name) const;
    /// Waits until it can, or no longer can, be seen.
    bool comesToShow(const QString& name);
    bool ceasesToShow(const QString& name);
    /// What a screen reader says after the name.
    QString description(const QString& name);
    QString textIn(const QString& name);
    bool isChecked(const QString& name);

    void click(const QString& name);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    void type(const QString& text);
    /// Moves on with the Tab key until the element has the focus; fails when the focus comes round without
    /// it.
    void tabTo(const QString& name);
    QString focused() const;

    /// Everything that can be seen, for the message of a failing test.
    QStringList names() const;

  private:
    QAccessibleInterface* find(const QString& name) const;
    QAccessibleInterface* found(const QString& name);
    void settle() const;

    Turn turn_;
    QQmlEngine engine_;
    std::unique_ptr<QQuickWindow> window_;
};

} // namespace marrowbox::test
