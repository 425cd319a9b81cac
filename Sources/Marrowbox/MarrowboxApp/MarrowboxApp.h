#pragma once

#include "GoogleOAuth/HTTPSession.h"
#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/MarrowboxApp/MainWindow.h"
#include "Marrowbox/MarrowboxApp/ProgramSurroundings.h"
#include "Marrowbox/MarrowboxApp/Quitting.h"
#include "Marrowbox/MarrowboxApp/RunNotices.h"
#include "Marrowbox/MarrowboxApp/TrayItem.h"
#include "Marrowbox/Platform/DesktopAppearance.h"
#include "Marrowbox/Platform/DesktopNotifications.h"
#include "Marrowbox/Platform/LinuxDesktop.h"
#include "Marrowbox/Platform/MainExecutor.h"

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
    /// Throws std::runtime_error when the screens cannot be loaded.
    explicit MarrowboxApp(const ProgramSurroundings& surroundings);

    /// Opens the window, or brings it to the front. The token is what the desktop gave for that; may be
    /// empty.
    void showWindow(const QString& activationToken);
    QQuickWindow* window() const { return window_.window(); }

  private:
    /// Ends all work while what it uses is still there, the store and the desktop: no thread of the pool runs
    /// any more after it, and what was on its way to the main thread is dropped.
    class EndOfWork {
      public:
        EndOfWork(asio::thread_pool& pool, const MainExecutor& main) : pool_(pool), main_(main) {}
        EndOfWork(const EndOfWork&) = delete;
        EndOfWork& operator=(const EndOfWork&) = delete;
        ~EndOfWork();

      private:
        asio::thread_pool& pool_;
        const MainExecutor& main_;
    };

    std::shared_ptr<AppStore> startStore(const ProgramSurroundings& surroundings);
    void perform(const TrayCommand::Any& command);
    void awaitSignals();

    asio::thread_pool pool_{4};
    MainExecutor main_;
    HTTPSession session_;
    LinuxDesktop desktop_;
    std::shared_ptr<AppStore> store_;
    EndOfWork endOfWork_{pool_, main_};
    Quitting quitting_;
    MainWindow window_;
    DesktopNotifications notifications_;
    RunNotices notices_;
    TrayItem tray_;
    DesktopAppearance appearance_;
    asio::signal_set endings_{main_, SIGTERM, SIGINT};
};

} // namespace marrowbox
