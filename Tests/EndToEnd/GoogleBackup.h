#pragma once

#include "GoogleOAuth/GoogleAuth.h"
#include "Models/Snapshot.h"
#include "Models/SyncUnit.h"
#include "Processes/RcloneDriveSource.h"
#include "Repository/BackupEngine.h"
#include "Repository/BackupRepository.h"
#include "Sandbox/SandboxServer.h"
#include "Support/ScratchFolder.h"

#include <boost/asio/thread_pool.hpp>
#include <future>
#include <map>
#include <memory>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

namespace marrowbox::test {

/// A backup of a folder in a simulated Drive. Everything on our side is real: the connections, the engine,
/// the repository, and rclone as the system installs it.
class GoogleBackup {
  public:
    /// With a source folder "Source" in My Drive and a token that lasts an hour.
    GoogleBackup();
    GoogleBackup(const GoogleBackup&) = delete;
    GoogleBackup& operator=(const GoogleBackup&) = delete;

    /// Keeps a token that ends in so many seconds.
    void connect(std::chrono::seconds lifetime);
    /// Shifts the clock by which our side judges a token.
    void shiftClock(double seconds) { *clockShift_ = seconds; }

    /// Adds a folder of each name with a file of the same name in it. Gives the paths under which a backup
    /// holds them, as each name stands beside what becomes of it in a path.
    std::vector<std::string> addFoldersNamed(const std::vector<std::pair<std::string, std::string>>& names);

    std::future<Snapshot> start(std::stop_token stop = {});
    /// Runs to the end and gives the snapshot, or throws what stopped the run.
    Snapshot run() { return start().get(); }
    /// The sentence that stops the run. Fails the test unless the repository and the machine are as they
    /// were.
    std::string refusal();

    /// Fails the test unless the snapshot has exactly these paths, folders included, and each file's object
    /// holds the bytes that the Drive holds now.
    void expectHolds(const Snapshot& snapshot, std::vector<std::string> paths) const;
    /// Fails the test when a run has left a child, a scratch or work folder, a held lock, or a snapshot more
    /// or less than so many.
    void expectSettled(std::size_t snapshots) const;

    /// How many calls of rclone fetched something from My Drive.
    std::size_t rcloneCalls();
    const std::vector<std::string>& progress() const { return *progress_; }
    /// The folder of all that the backup may write: its destination, credentials, temporary files and home.
    const fs::path& place() const { return scratch_.path(); }
    /// What nobody else may learn: the tokens that are kept now, and the secret of the client.
    std::vector<std::string> secrets() const;

    sandbox::SandboxServer sandbox;
    sandbox::Drive& drive = sandbox.drive();
    std::string folder = drive.addFolder("root", "Source");
    DriveLocation location{folder, "Source", {}};

  private:
    ProcessSurroundings surroundings() const;
    sandbox::Content contentOf(const SnapshotEntry& entry) const;

    ScratchFolder scratch_;
    SyncUnit unit_;
    BackupRepository repository_;
    std::shared_ptr<std::vector<std::string>> progress_ = std::make_shared<std::vector<std::string>>();
    std::shared_ptr<double> clockShift_ = std::make_shared<double>(0);
    AppCredentials credentials_;
    asio::thread_pool pool_{2}; // outlives the session, whose thread posts to it
    HTTPSession session_;
    std::shared_ptr<GoogleAuth> auth_;
    BackupEngine engine_;
};

} // namespace marrowbox::test
