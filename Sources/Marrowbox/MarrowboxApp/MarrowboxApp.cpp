#include "Marrowbox/MarrowboxApp/MarrowboxApp.h"

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

LinuxSurroundings linuxSurroundings(const ProgramSurroundings& program) {
    return {.sessionBus = program.sessionBus,
            .systemBus = program.systemBus,
            .environment = program.process.environment,
            .executable = executable(),
            .chooseJSONFile = program.chooseJSONFile,
            .chooseFolder = program.chooseFolder};
}

template <typename... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};

} // namespace

std::optional<fs::path> installedClient() {
    const fs::path file = executable().parent_path() / "../share/marrowbox/GoogleOAuth.json";
    return fs::exists(file) ? std::optional(file) : std::nullopt;
}

void endEventLoop() {
    QCoreApplication::quit();
}

MarrowboxApp::MarrowboxApp(const ProgramSurroundings& surroundings)
    : main_(MainExecutor::onThisThread(pool_)), session_(surroundings.web),
      desktop_(linuxSurroundings(surroundings)), store_(startStore(surroundings)),
      quitting_(store_, surroundings.end), window_(store_, quitting_, surroundings.screens),
      notifications_(surroundings.sessionBus, [this] { showWindow({}); }),
      notices_(store_->state(), *store_,
               [this](const RunNotice& notice) { notifications_.notify(notice.title, notice.body); }),
      tray_(
          store_->state(), *store_, [this](const TrayCommand::Any& command) { perform(command); },
          [](const QString& symbol) { return MainWindow::trayIcon(symbol); }),
      appearance_(
          surroundings.sessionBus, [this](AppearancePreferences preferences) { window_.follow(preferences); },
          appearancePatience) {
    window_.follow(appearance_.preferences());
    window_.keepReachable([this] { return tray_.isReachable(); });
    awaitSignals();
}

MarrowboxApp::EndOfWork::~EndOfWork() {
    pool_.stop();
    pool_.join();
    main_.close();
}

std::shared_ptr<AppStore> MarrowboxApp::startStore(const ProgramSurroundings& surroundings) {
    return AppStore::start({.desktop = desktop_,
                            .main = main_,
                            .pool = pool_.get_executor(),
                            .http = HTTP(session_, timerWait()),
                            .mountMachine = MountMachine::live(surroundings.process),
                            .makeSource = rcloneSources(surroundings.process),
                            .environment = surroundings.process.environment,
                            .rclone = RcloneDriveSource::locate(),
                            .bundledClient = surroundings.bundledClient,
                            .clock = surroundings.clock});
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
