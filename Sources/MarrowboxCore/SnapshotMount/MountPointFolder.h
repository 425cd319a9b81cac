#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <sys/types.h>

namespace marrowbox {

namespace fs = std::filesystem;

/// The private folder in which volumes appear on a system that does not make mount points itself. It belongs
/// to the user alone, and a volume's folder in it has the volume's name. Any thread; several processes may
/// share it.
class MountPointFolder {
  public:
    /// The place for a user: "marrowbox" in the session's runtime folder (XDG_RUNTIME_DIR), or
    /// "/tmp/marrowbox-{uid}" where the session has none, or one that is not the user's alone.
    static fs::path place(const std::map<std::string, std::string>& environment, uid_t user);

    MountPointFolder(fs::path path, uid_t user) : path_(std::move(path)), user_(user) {}

    const fs::path& path() const { return path_; }

    /// Makes the private folder where it is missing, and proves that it is a folder of the user's own that
    /// nobody else can enter. Throws BackupError when it is anything else, and std::system_error.
    void prepare() const;

    /// A lock file in the folder: whoever makes or removes a mount point holds it until something is mounted
    /// there.
    fs::path lockFile() const { return path_ / ".lock"; }

    /// Makes a new empty folder for a volume; a name that is taken gets a number behind it. An empty folder
    /// that an earlier volume left is used again. The caller holds the lock.
    fs::path makeMountPoint(const std::string& volumeName) const;

    /// Removes a mount point that this folder made and where nothing is mounted any more. Whatever else
    /// stands at the path stays, and a failure is ignored.
    void removeMountPoint(const fs::path& mountPoint) const;

  private:
    fs::path path_;
    uid_t user_;
};

} // namespace marrowbox
