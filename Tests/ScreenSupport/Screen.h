#pragma once

#include <QAccessible>
#include <QGuiApplication>
#include <QPoint>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>

namespace marrowbox::test {

/// The program's graphical application, without a screen, made on first use and the same from then on.
QGuiApplication& offscreenApplication();

/// QML in a real window without a screen, found and used as a person does it: by what assistive technology
/// reads, with clicks and keys. A QML warning fails the test.
class Screen {
  public:
    /// The text of a QML file below the usual imports; its root item fills the window.
    explicit Screen(const QString& body, QSize size = {600, 480});
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    QQmlEngine& engine() { return engine_; }
    QQuickWindow& window() { return *window_; }
    QQuickItem& root() { return *root_; }
    /// A property of the root item.
    QVariant value(const char* name) const;

    /// The element with this accessible name (and this role), anywhere in the window; null when there is
    /// none.
    QAccessibleInterface* find(const QString& name, QAccessible::Role role = QAccessible::NoRole);
    /// Whether a text with these words can be seen, also one that is no element, as a tool tip.
    bool shows(const QString& words);
    QString descriptionOf(const QString& name);
    bool hasFocus(const QString& name);

    /// Each throws std::runtime_error when there is no such element.
    void click(const QString& name);
    void clickAt(QPoint place);
    void hover(const QString& name);
    /// As a screen reader does it.
    void press(const QString& name);
    void focus(const QString& name);

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const QString& text);
    /// Turns the event loop until this holds; false when it does not within five seconds.
    bool waitUntil(const std::function<bool()>& holds);

    /// All elements, a line each: what to look at when one is not found.
    QString tree();
    /// The item behind an element.
    QQuickItem* item(const QString& name);

  private:
    QAccessibleInterface& mustFind(const QString& name);
    QPoint centreOf(const QString& name);

    QGuiApplication& application_ = offscreenApplication(); // before the engine, which needs it
    QQmlEngine engine_;
    std::unique_ptr<QQuickWindow> window_;
    QQuickItem* root_ = nullptr;
};

} // namespace marrowbox::test
