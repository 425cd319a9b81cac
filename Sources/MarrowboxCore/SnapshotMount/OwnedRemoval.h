#pragma once

#include "SnapshotMount/DiskImageTool.h"
#include "SnapshotMount/MountRegistryFolder.h"

#include <memory>

namespace marrowbox {

/// The single place where a work folder is deleted and its entry forgotten. It deletes only what it proves to
/// be a work folder of this program that nobody is using; a doubt at any point keeps everything and says so
/// in a BackupError.
class OwnedRemoval {
  public:
    OwnedRemoval(MountRegistryFolder folder, std::shared_ptr<SnapshotMountSystem> machine,
                 std::shared_ptr<DiskImageTool> images)
        : folder_(std::move(folder)), machine_(std::move(machine)), images_(std::move(images)) {}

    /// The caller holds mounts.lock and keeps other operations off the snapshot.
    asio::awaitable<void> remove(MountEntry entry, std::stop_token stop) const;

  private:
    void refuseStrangePath(const MountEntry& entry) const;
    void refuseStrangeFolder(const MountEntry& entry) const;
    asio::awaitable<void> refuseOpenFiles(MountEntry entry, std::stop_token stop) const;
    asio::awaitable<void> refuseRunningTools(MountEntry entry, std::stop_token stop) const;
    void refuseNestedMount(const MountEntry& entry) const;

    MountRegistryFolder folder_;
    std::shared_ptr<SnapshotMountSystem> machine_;
    std::shared_ptr<DiskImageTool> images_;
};

/// The attachment of an entry's image; null when it is not attached. An image that somebody else attached
/// never matches, since the paths are compared as they are on disk.
const Attachment* attachmentOf(const MountEntry& entry, const std::vector<Attachment>& attachments);

} // namespace marrowbox
