#pragma once

#include "DriveAPI/DriveAPI.h"
#include "GoogleOAuth/GoogleAuth.h"
#include "GoogleOAuth/HTTPSession.h"
#include "Models/SyncUnit.h"
#include "Processes/ProcessSurroundings.h"
#include "Repository/BackupEngine.h"
#include "Sandbox/SandboxServer.h"

#include <boost/asio/thread_pool.hpp>
#include <filesystem>
#include <memory>
#include <stop_token>
#include <string>

namespace marrowbox::demo {

/// What the demonstration needs around it: the simulated Google services, an account with a stored token, a
/// destination, and the core's objects wired as the application wires them.
class Stage {
  public:
    /// Makes its folders below this one, which must exist and be empty.
    explicit Stage(const fs::path& folder);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    ~Stage();

    sandbox::SandboxServer& sandbox() { return sandbox_; }
    asio::any_io_executor executor() { return pool_.get_executor(); }

    /// A unit that backs up this place, with a new repository at the destination.
    SyncUnit addUnit(const std::string& name, DriveLocation source);
    fs::path repository(const SyncUnit& unit) const;

    /// One backup of the unit as its source is now.
    asio::awaitable<Snapshot> backUp(SyncUnit unit, Progress progress, std::stop_token stop);

  private:
    sandbox::SandboxServer sandbox_;
    fs::path authority_;
    fs::path destination_;
    asio::thread_pool pool_;
    HTTPSession session_;
    std::shared_ptr<const GoogleAuth> auth_;
    std::string accountID_;
    ProcessSurroundings surroundings_;
    fs::path rclone_;
    BackupEngine engine_;
};

} // namespace marrowbox::demo
