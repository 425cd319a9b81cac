#pragma once

#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/MarrowboxApp/Quitting.h"
#include "Marrowbox/MarrowboxApp/SpareTime.h"
#include "Marrowbox/Platform/DesktopAppearance.h"

#include <QIcon>
#include <QObject>
#include <QQmlApplicationEngine>
#include <functional>
#include <memory>

class QQuickWindow;

namespace marrowbox {

/// The one window, with the view models behind it. Closing it leaves the program running. On the main thread.
class MainWindow : public QObject {
  public:
    /// Loads the screens; shows nothing yet. The quitting outlives the window. Throws std::runtime_error when
    /// they cannot be loaded.
    MainWindow(std::shared_ptr<AppStore> store, Quitting& quitting, const QUrl& screens);
    ~MainWindow() override;

    /// Opens it, or brings it to the front.
    void show(const QString& activationToken);
    void follow(const AppearancePreferences& preferences);
    /// Closing minimises the window while the program cannot be reached otherwise.
    void keepReachable(std::function<bool()> isReachableElsewhere);

    QQuickWindow* window() const { return window_; }
    /// A symbol as the tray draws it.
    static QIcon trayIcon(const QString& symbol);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Models;

    std::unique_ptr<Models> models_;
    SpareTime spareTime_;
    std::unique_ptr<QQmlApplicationEngine> engine_;
    QQuickWindow* window_ = nullptr; ///< The engine's.
    std::function<bool()> isReachableElsewhere_;
};

} // namespace marrowbox
