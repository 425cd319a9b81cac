#pragma once

#include "DriveAPI/DriveAPI.h"
#include "GoogleOAuth/GoogleAuth.h"
#include "GoogleOAuth/HTTPSession.h"
#include "Models/SyncUnit.h"
#include "Processes/ProcessSurroundings.h"
#include "Repository/BackupEngine.h"
#include "Sandbox/SandboxServer.h"
#include "SnapshotMount/SnapshotMount.h"

#include <boost/asio/thread_pool.hpp>
#include <filesystem>
#include <memory>
#include <stop_token>
#include <string>

namespace marrowbox::demo {

/// What the demonstration needs around it: the simulated Google services, a destination, and the core's
/// objects wired as the application wires them. Everything lies in one folder.
class Stage {
  public:
    /// Makes its folders below this one, which must exist and be empty.
    explicit Stage(const fs::path& folder);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    ~Stage();

    sandbox::SandboxServer& sandbox() { return sandbox_; }
    asio::any_io_executor executor() { return pool_.get_executor(); }

    /// Connects the account of the simulated Drive by a sign-in with a browser and keeps its token.
    asio::awaitable<GoogleAccount> signIn(std::stop_token stop);

    /// A unit that backs up this place of the account, with a new repository at the destination.
    SyncUnit addUnit(const GoogleAccount& account, const std::string& name, DriveLocation source);
    fs::path repository(const SyncUnit& unit) const;

    /// One backup of the unit as its source is now.
    asio::awaitable<Snapshot> backUp(SyncUnit unit, Progress progress, std::stop_token stop);
    /// Writes a snapshot out into a new folder of this name, and gives the folder.
    asio::awaitable<fs::path> restore(Snapshot snapshot, SyncUnit unit, std::string name,
                                      std::stop_token stop);
    asio::awaitable<MountedSnapshot> mount(Snapshot snapshot, SyncUnit unit, std::stop_token stop);
    asio::awaitable<void> eject(MountedSnapshot mounted, std::stop_token stop);

    /// Ejects all volumes below the folder of a stage, whichever run of the demonstration left them, and
    /// waits for what was stopped in the middle. Gives the reason when something stays.
    static asio::awaitable<std::optional<std::string>> clearVolumes(fs::path folder);

  private:
    fs::path folder_;
    sandbox::SandboxServer sandbox_;
    fs::path authority_;
    fs::path destination_;
    ProcessSurroundings surroundings_;
    asio::thread_pool pool_;
    HTTPSession session_;
    HTTP http_;
    std::shared_ptr<const GoogleAuth> auth_;
    fs::path rclone_;
    BackupEngine engine_;
    SnapshotMount mounts_;
};

} // namespace marrowbox::demo
