#pragma once

#include "ScreenSupport/WindowUser.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QUrl>
#include <QVariantMap>
#include <functional>
#include <memory>

class QGuiApplication;

namespace marrowbox::test {

/// A screen in a window that nobody sees, and the person who uses it. A test fails when QML warns. One at a
/// time.
class Screen : public WindowUser {
  public:
    /// Registers the modules that a screen imports.
    using Install = std::function<void(QQmlEngine&)>;

    /// A component with these properties, in the smallest window that the program has.
    Screen(const QUrl& component, const QVariantMap& properties, const Install& install, Turn turn);
    /// The text of a QML file below the usual imports; its root item fills the window.
    explicit Screen(const QString& body, QSize size = {600, 480});
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    QQmlEngine& engine() { return engine_; }
    QQuickItem& root() { return *root_; }
    /// A property of the root item.
    QVariant value(const char* name) const;
    /// The item behind an element. Throws std::runtime_error when there is none.
    QQuickItem* item(const QString& name);
    /// The words of the tool tip that is shown; none without one. It is no element of its own.
    QString toolTip() const;

    void clickAt(QPoint place);
    void hover(const QString& name);
    /// Presses as a screen reader does it.
    void activate(const QString& name);
    void focus(const QString& name);

  private:
    /// Throws std::runtime_error when the component cannot be made or the window not be used.
    void show(QQmlComponent& component, const QVariantMap& properties, QSize size);

    QGuiApplication& application_; // before the engine, which needs it
    QQmlEngine engine_;
    std::unique_ptr<QQuickWindow> window_;
    QQuickItem* root_ = nullptr;
    QtMessageHandler previousHandler_;
};

} // namespace marrowbox::test
