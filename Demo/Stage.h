#pragma once

#include "Demo/StageDesktop.h"
#include "GoogleOAuth/HTTPSession.h"
#include "Marrowbox/AppStore/AppStore.h"
#include "Sandbox/SandboxServer.h"

#include <atomic>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

namespace marrowbox::demo {

/// The program without its window, on a computer of its own: the simulated Google services, a disk, a clock
/// that can be moved on, and the store wired as the application wires it. Everything lies in one folder. Its
/// operations are what a person does; each waits for what comes of it and runs on the stage's executor. They
/// throw BackupError with the store's words for what went wrong, and CancellationError once everything that
/// was under way has wound down.
class Stage {
  public:
    /// Makes its folders below this one, which must exist and be empty. Its clock begins so many days ago, so
    /// that after as many days of sleep it shows the time of day.
    Stage(const fs::path& folder, int daysAgo);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    /// After windDown().
    ~Stage();

    sandbox::SandboxServer& sandbox() { return sandbox_; }
    asio::any_io_executor executor() { return main_; }

    /// What a program is given that is to take the simulated services for Google's.
    const ProcessSurroundings& surroundingsOfPrograms() const { return surroundings_; }

    /// Gives the store the client file that a person would download, and connects the account of the
    /// simulated Drive by a sign-in with a browser. Gives the page that the browser shows at the end.
    asio::awaitable<std::string> signIn(std::stop_token stop);
    const GoogleAccount& account() const { return store_->state().configuration->accounts.front(); }

    /// Adds a daily backup of this place and waits for its first snapshot.
    asio::awaitable<SyncUnit> addUnit(std::string name, DriveLocation source, std::stop_token stop);
    fs::path repository(const SyncUnit& unit) const;
    /// The computer sleeps for some days and wakes.
    void sleep(int days);
    /// Lets the schedule do its next step, and waits for the backup of this unit, which must be due.
    asio::awaitable<RunRecord> scheduledBackup(SyncUnit unit, std::stop_token stop);
    /// The unit's snapshots, newest first.
    asio::awaitable<SnapshotList> history(SyncUnit unit, std::stop_token stop);
    void keepHistory(const SyncUnit& unit, std::int64_t days);

    /// Restores a snapshot into a new folder, and gives the folder.
    asio::awaitable<fs::path> restore(Snapshot snapshot, SyncUnit unit, std::stop_token stop);
    asio::awaitable<MountedSnapshot> mount(Snapshot snapshot, SyncUnit unit, std::stop_token stop);
    asio::awaitable<void> eject(MountedSnapshot mounted, std::stop_token stop);
    /// The subjects of the mails that the simulated Gmail has taken.
    std::vector<std::string> mailSubjects() const;

    /// Ends the program: cancels what is under way and waits for it. What it made may then be used by another
    /// one. Simulated sign-ins are consented to from now on without a page.
    asio::awaitable<void> windDown();

  private:
    AppSurroundings surroundings();
    asio::awaitable<void> importClient(std::stop_token stop);
    /// Waits until this holds, which is asked after every change of the store.
    asio::awaitable<void> until(std::function<bool()> holds, std::stop_token stop);
    void cancelAll();
    const RunRecord* lastRun(const Uuid& unitID) const;
    asio::awaitable<RunRecord> finishedRun(Uuid unitID, std::optional<Uuid> before, std::stop_token stop);
    void throwError();

    fs::path folder_;
    sandbox::SandboxServer sandbox_;
    fs::path authority_;
    fs::path destination_;
    ProcessSurroundings surroundings_;
    std::atomic<double> ahead_; ///< Seconds that the clock is ahead of the machine's.
    asio::thread_pool pool_{2};
    asio::any_io_executor main_;
    HTTPSession session_;
    StageDesktop desktop_;
    std::shared_ptr<AppStore> store_;
};

} // namespace marrowbox::demo
