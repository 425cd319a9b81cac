#pragma once

#include "Models/Snapshot.h"
#include "Repository/BackupRepository.h"
#include "Repository/ObjectLinks.h"

#include <vector>

namespace marrowbox {

/// The manifests of a repository, in the order of its file system.
std::vector<fs::path> manifestFiles(const BackupRepository& repository);
/// The same in the order in which their runs completed, in which each is most like the one before; those of
/// one moment as they come. What cannot be read, and what this program has not written, stands anywhere.
std::vector<fs::path> manifestFilesByDate(const BackupRepository& repository);

/// What every manifest has to stand, its paths apart. Each fan-out folder is looked at once. It lives for one
/// reading of a history; the repository must outlive it. Not safe to share between threads.
class ManifestChecks {
  public:
    explicit ManifestChecks(const BackupRepository& repository)
        : repository_(repository), links_(repository.objectPaths()) {}

    /// Throws BackupError for a manifest of another version, of another unit, or under another name.
    void requireIdentity(const Snapshot& snapshot, const fs::path& file) const;
    /// Throws BackupError for a file without a valid object, and for a link at the object's path.
    void requireReference(const SnapshotEntry& entry);

  private:
    const BackupRepository& repository_;
    ObjectLinks links_;
};

} // namespace marrowbox
