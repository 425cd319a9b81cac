#pragma once

#include "Models/SnapshotEntry.h"
#include "Models/SourceEntry.h"
#include "Repository/BackupRepository.h"
#include "Repository/ParallelWork.h"

#include <bitset>
#include <span>
#include <stop_token>
#include <vector>

namespace marrowbox {

/// Moves the downloads of one run into a repository's objects. The files of a batch are digested and put on
/// stable storage side by side, and take their places one after another in the order of the batch. An object
/// has all its bytes on stable storage before it has its name, so that a power cut cannot leave a damaged
/// one. The caller holds the repository's lock. Not safe to share between threads.
class ObjectImport {
  public:
    explicit ObjectImport(const BackupRepository& repository) : objects_(repository.objectPaths()) {}

    /// Imports folder / entry.path of each entry. The result has the order of the batch. Of several failures
    /// the first in that order is thrown; the files before it are in the store by then, and none behind it.
    std::vector<SnapshotEntry> importFiles(std::span<const SourceEntry> batch, const fs::path& folder,
                                           std::stop_token stop);
    /// Imports one file on the calling thread.
    SnapshotEntry importFile(const fs::path& file, const SourceEntry& source, std::stop_token stop);

    /// Makes the names of all imported objects last. A snapshot that names them may be published then.
    void synchronizeFolders();

  private:
    SnapshotEntry place(const fs::path& file, const SourceEntry& source, const FileDigest& digest,
                        bool isProvenThere, const std::stop_token& stop);

    ObjectPaths objects_;
    std::bitset<fanOutCount> touched_;
    ParallelWork workers_;
};

} // namespace marrowbox
