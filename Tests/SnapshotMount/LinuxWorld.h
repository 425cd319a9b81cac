#pragma once

#include "BackedUpUnit.h"
#include "SnapshotMount/SnapshotMount.h"
#include "SnapshotMount/SquashfsTool.h"
#include "Support/Coroutine.h"
#include "Support/ScratchFolder.h"

#include <boost/asio/thread_pool.hpp>
#include <memory>
#include <optional>
#include <string>

namespace marrowbox::test {

/// Why this machine cannot show volumes; absent where it can.
std::optional<std::string> reasonForNoVolumes();

/// A repository with one snapshot of many kinds of files, and mounts on the machine as it is. What a test
/// leaves mounted is taken away at the end.
class LinuxWorld {
  public:
    LinuxWorld();
    LinuxWorld(const LinuxWorld&) = delete;
    LinuxWorld& operator=(const LinuxWorld&) = delete;
    ~LinuxWorld();

    const ScratchFolder scratch;
    /// Blanks, commas and letters of other scripts are part of many a path.
    fs::path directory = fs::canonical(scratch.path()) / "Data, größer" / "MountedSnapshots";
    const fs::path runtime = fs::canonical(scratch.path()) / "runtime";
    std::shared_ptr<SnapshotMountSystem> machine;
    BackedUpUnit backup{fs::canonical(scratch.path()) / "Backup disk"};

    /// The mounts of a program that was just started. There are no threads before the first one.
    std::unique_ptr<SnapshotMount> start() { return start(executor(), machine); }
    std::unique_ptr<SnapshotMount> start(const asio::any_io_executor& executor,
                                         std::shared_ptr<SnapshotMountSystem> system,
                                         std::chrono::milliseconds serverEndLimit = std::chrono::seconds(10));

    SnapshotMount::Mounted mount(SnapshotMount& mounts) {
        return await(mounts.mount(backup.snapshot, backup.unit, backup.destination, {}));
    }
    MountRegistryFolder folder() const { return {directory, machine}; }
    fs::path workRoot() const { return directory / "MountWork"; }
    bool hasNoWork() const;
    /// Unmounts as the user's file browser does, and waits for the mount's server to end.
    void unmountBehindTheBack(const SnapshotMount::Mounted& mounted);
    /// Waits until no process has such an argument any more.
    void awaitEndOfProcesses(const std::string& argument);
    /// Waits until the image is mounted.
    void awaitMount(const fs::path& image);
    asio::any_io_executor executor();
    ProcessRunner::Result runTool(fs::path executable, std::vector<std::string> arguments);

  private:
    std::optional<asio::thread_pool> pool_;
};

} // namespace marrowbox::test
