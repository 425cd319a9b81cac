#pragma once

#include "SnapshotMount/DiskImageTool.h"
#include "SnapshotMount/MountPointFolder.h"
#include "SnapshotMount/SnapshotMountSystem.h"

#include <chrono>
#include <memory>
#include <string_view>

namespace marrowbox {

/// The disk images of Linux, with no administrator rights: an uncompressed squashfs image that a FUSE server
/// shows on a folder of the user's own. The source of the mount is the path of the image, so the list of
/// mounts is the inventory. No state of its own; used on one executor at a time.
class SquashfsTool final : public DiskImageTool {
  public:
    /// serverEndLimit: how long a detach waits for the server of the mount to end.
    SquashfsTool(std::shared_ptr<SnapshotMountSystem> machine, MountPointFolder mountPoints,
                 std::chrono::milliseconds serverEndLimit = std::chrono::seconds(10))
        : machine_(std::move(machine)), mountPoints_(std::move(mountPoints)),
          serverEndLimit_(serverEndLimit) {}

    OperatingSystem system() const override { return OperatingSystem::linux; }
    asio::awaitable<bool> create(fs::path folder, std::string volumeName, fs::path image,
                                 std::stop_token stop) override;
    /// Also throws LockBusyError while another process makes a mount point.
    asio::awaitable<std::optional<fs::path>> attach(fs::path image, std::string volumeName,
                                                    std::stop_token stop) override;
    asio::awaitable<std::vector<Attachment>> attached(std::stop_token stop) override;
    /// Returns when the server of the mount has ended too, since it holds the image open, or when the limit
    /// has passed; the image then counts as in use. Removes the mount point.
    asio::awaitable<bool> detach(Attachment attachment, std::stop_token stop) override;
    ToolCommand openFilesQuery(const fs::path& folder) const override;

    /// The FUSE mounts of a user in findmnt's list, whole or not at all. Throws BackupError.
    static std::vector<Attachment> inventory(std::string_view output, uid_t user);

  private:
    asio::awaitable<bool> serve(fs::path image, fs::path mountPoint, std::stop_token stop);

    std::shared_ptr<SnapshotMountSystem> machine_;
    MountPointFolder mountPoints_;
    std::chrono::milliseconds serverEndLimit_;
};

} // namespace marrowbox
