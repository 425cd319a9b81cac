#pragma once

#include "ScreenSupport/WindowUser.h"

#include <QQmlEngine>
#include <QQuickWindow>
#include <QUrl>
#include <QVariantMap>
#include <functional>
#include <memory>

namespace marrowbox::test {

/// A screen in a window that nobody sees, and the person who uses it. A test fails when the screen makes QML
/// warn.
class ShownScreen : public WindowUser {
  public:
    /// Registers the modules that the screen imports.
    using Install = std::function<void(QQmlEngine&)>;
    ShownScreen(const QUrl& component, const QVariantMap& properties, const Install& install, Turn turn);
    ShownScreen(const ShownScreen&) = delete;
    ShownScreen& operator=(const ShownScreen&) = delete;
    ~ShownScreen();

  private:
    QQmlEngine engine_;
    std::unique_ptr<QQuickWindow> window_;
};

} // namespace marrowbox::test
