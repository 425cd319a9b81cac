#pragma once

#include "GoogleOAuth/HTTPSession.h"
#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/MarrowboxApp/MainWindow.h"
#include "Marrowbox/MarrowboxApp/Quitting.h"
#include "Marrowbox/MarrowboxApp/RunNotices.h"
#include "Marrowbox/MarrowboxApp/TrayItem.h"
#include "Marrowbox/Platform/DesktopAppearance.h"
#include "Marrowbox/Platform/DesktopNotifications.h"
#include "Marrowbox/Platform/LinuxDesktop.h"

#include <QDBusConnection>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/thread_pool.hpp>
#include <functional>
#include <memory>

namespace marrowbox {

/// The program: all that lives as long as it does, in the order in which one needs the other. On the main
/// thread, which turns a Qt event loop.
class MarrowboxApp : public QObject {
  public:
    MarrowboxApp(QDBusConnection sessionBus, QDBusConnection systemBus, const Environment& environment);
    ~MarrowboxApp() override;

    /// Opens the window, or brings it to the front. The token is what the desktop gave for that; may be
    /// empty.
    void showWindow(const QString& activationToken);

  private:
    std::shared_ptr<AppStore> startStore(const Environment& environment);
    void perform(const TrayCommand::Any& command);
    void awaitSignals();

    asio::thread_pool pool_{4};
    asio::any_io_executor main_;
    HTTPSession session_;
    LinuxDesktop desktop_;
    std::shared_ptr<AppStore> store_;
    Quitting quitting_;
    MainWindow window_;
    DesktopNotifications notifications_;
    RunNotices notices_;
    TrayItem tray_;
    DesktopAppearance appearance_;
    asio::signal_set endings_{main_, SIGTERM, SIGINT};
};

} // namespace marrowbox
