#include "Marrowbox/MarrowboxApp/MarrowboxApp.h"

#include "Marrowbox/MarrowboxApp/FileChoosers.h"
#include "Marrowbox/Platform/MainExecutor.h"
#include "Processes/RcloneDriveSource.h"

#include <QCoreApplication>
#include <csignal>

namespace marrowbox {

namespace {

/// How long the first window may wait to be drawn in the colours that the desktop prefers.
constexpr std::chrono::milliseconds appearancePatience{150};

fs::path executable() {
    return QCoreApplication::applicationFilePath().toStdString();
}

/// The OAuth client file that a build may bring along.
std::optional<fs::path> bundledClient() {
    const fs::path file = executable().parent_path() / "../share/marrowbox/GoogleOAuth.json";
    return fs::exists(file) ? std::optional(file) : std::nullopt;
}

LinuxSurroundings linuxSurroundings(QDBusConnection sessionBus, QDBusConnection systemBus,
                                    const Environment& environment) {
    return {.sessionBus = std::move(sessionBus),
            .systemBus = std::move(systemBus),
            .environment = environment,
            .executable = executable(),
            .chooseJSONFile = FileChoosers::chooseJSONFile,
            .chooseFolder = FileChoosers::chooseFolder};
}

template <typename... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};

} // namespace

MarrowboxApp::MarrowboxApp(QDBusConnection sessionBus, QDBusConnection systemBus,
                           const Environment& environment)
    : main_(MainExecutor::onThisThread(pool_)), session_(HTTPSettings::fromEnvironment()),
      desktop_(linuxSurroundings(sessionBus, systemBus, environment)), store_(startStore(environment)),
      quitting_(store_, &QCoreApplication::quit), window_(store_, quitting_),
      notifications_(sessionBus, [this] { showWindow({}); }),
      notices_(store_->state(), *store_,
               [this](const RunNotice& notice) { notifications_.notify(notice.title, notice.body); }),
      tray_(
          store_->state(), *store_, [this](const TrayCommand::Any& command) { perform(command); },
          [](const QString& symbol) { return MainWindow::trayIcon(symbol); }),
      appearance_(
          sessionBus, [this](AppearancePreferences preferences) { window_.follow(preferences); },
          appearancePatience) {
    window_.follow(appearance_.preferences());
    window_.keepReachable([this] { return tray_.isReachable(); });
    awaitSignals();
}

MarrowboxApp::~MarrowboxApp() {
    // What still runs there may be using the desktop, which would go first.
    pool_.stop();
    pool_.join();
}

std::shared_ptr<AppStore> MarrowboxApp::startStore(const Environment& environment) {
    return AppStore::start({.desktop = desktop_,
                            .main = main_,
                            .pool = pool_.get_executor(),
                            .http = HTTP(session_, timerWait()),
                            .mountMachine = MountMachine::live(ProcessSurroundings::ofThisProcess()),
                            .makeSource = rcloneSources(),
                            .environment = environment,
                            .rclone = RcloneDriveSource::locate(),
                            .bundledClient = bundledClient()});
}

void MarrowboxApp::showWindow(const QString& activationToken) {
    window_.show(activationToken);
}

void MarrowboxApp::perform(const TrayCommand::Any& command) {
    std::visit(Overloaded{
                   [this](const TrayCommand::OpenWindow&) { showWindow({}); },
                   [this](const TrayCommand::BackUp& backUp) {
                       if (const SyncUnit* const unit = store_->state().unit(backUp.unitID))
                           store_->run(*unit, 0);
                   },
                   [this](const TrayCommand::CancelBackup&) { store_->cancelBackup(); },
                   [this](const TrayCommand::OpenMounted& open) { store_->openMounted(open.snapshotID); },
                   [this](const TrayCommand::Eject& eject) { store_->eject(eject.snapshotID); },
                   [this](const TrayCommand::OpenSettings&) {
                       showWindow({});
                       store_->showSettings(true);
                   },
                   [this](const TrayCommand::Quit&) {
                       if (*store_->state().activeUnitID) // there is a question to show
                           showWindow({});
                       quitting_.request();
                   },
               },
               command);
}

void MarrowboxApp::awaitSignals() {
    // The session ends, or a person at a terminal has had enough: no question, but a clean end.
    endings_.async_wait([this](boost::system::error_code failed, int) {
        if (!failed)
            quitting_.windDown();
    });
}

} // namespace marrowbox
