#pragma once

#include "Repository/RepositoryLock.h"
#include "SnapshotMount/MountRecords.h"
#include "SnapshotMount/SnapshotMountSystem.h"

#include <filesystem>
#include <memory>
#include <string_view>

namespace marrowbox {

/// Whether a check asks for the marker: it does when the work folder has to be there.
enum class MarkerCheck { required, notRequired };

/// The folder that holds the mount registry and all work folders, and the checks without which nothing in it
/// is believed: a registry or a folder could have been edited, replaced by a link, or left by a crash. A
/// failed check changes nothing on disk. Deliberate refusals are BackupErrors; failures to read, decode or
/// write pass through.
class MountRegistryFolder {
  public:
    static constexpr std::string_view markerName = ".marrowbox-mount.json";
    static constexpr std::string_view imageName = "Snapshot.dmg";
    static constexpr std::string_view filesName = "Files";

    /// Standardizes the path and touches no file.
    MountRegistryFolder(const fs::path& directory, std::shared_ptr<SnapshotMountSystem> machine);

    const fs::path& directory() const { return directory_; }
    const fs::path& workRoot() const { return workRoot_; }
    const fs::path& registryFile() const { return registryFile_; }

    /// Makes the folders where they are missing, and proves that they and the registry file are the user's
    /// own and no links.
    void ensureDirectories() const;
    /// Takes mounts.lock without waiting. Throws LockBusyError.
    RepositoryLock lock() const;

    /// The registry as it stands on disk; an empty one when there is none.
    MountRegistry load() const;
    /// Replaces the registry in one rename, and brings it to stable storage.
    void save(const MountRegistry& registry) const;
    /// Writes the marker of a new work folder the same way.
    void writeMarker(const MountEntry& entry) const;
    MountEntry readMarker(const fs::path& workFolder) const;

    /// Proves that an entry points into this folder's own tree.
    void validate(const MountEntry& entry, MarkerCheck markerCheck) const;
    /// The same; the marker is needed when something stands at the work folder. Says whether it does.
    bool validateWhereItStands(const MountEntry& entry) const;
    /// Removes the entries with this entry's id and work folder.
    void forget(const MountEntry& entry) const;

    /// Whether a file system is mounted at or below the folder; not knowing counts as mounted.
    bool hasNestedMount(const fs::path& folder) const;

  private:
    bool isOwnedByCurrentUser(const fs::path& path) const;
    bool isInFolderOfAnother(const fs::path& path) const;
    void refuseUnsafeRoot(const fs::path& path) const;
    void refuseForeignData(const fs::path& path) const;
    void refuseMarkerOfAnother(const MountEntry& entry) const;

    fs::path directory_;
    fs::path workRoot_;
    fs::path registryFile_;
    std::shared_ptr<SnapshotMountSystem> machine_;
};

} // namespace marrowbox
