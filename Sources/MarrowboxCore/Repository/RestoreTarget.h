#pragma once

#include "Platform/Descriptor.h"
#include "Platform/Files.h"

namespace marrowbox {

/// The new folder that a snapshot is written into. Others may write to the folder above it and, where the
/// user's umask lets a group in, to the folders inside: whatever they put there while the restore is under
/// way, no link is followed out of it. Each folder is reached from the one that holds it, so a path may be
/// longer than the system takes in one call. Any thread.
class RestoreTarget {
  public:
    /// Makes the folder. Throws BackupError when something is there already, and std::system_error.
    explicit RestoreTarget(fs::path path);

    /// Makes a folder inside, with its missing parents, and opens it for the calls that go on from there; an
    /// existing folder is fine. An empty path is the target itself. Throws std::system_error.
    Descriptor folder(const fs::path& relative) const;
    const fs::path& path() const { return path_; }

  private:
    fs::path path_;
    Descriptor folder_;
};

} // namespace marrowbox
