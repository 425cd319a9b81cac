#pragma once

#include "Models/Snapshot.h"
#include "Models/Uuid.h"
#include "Platform/Clock.h"
#include "Repository/BackupRepository.h"

#include <memory>
#include <span>
#include <vector>

namespace marrowbox {

/// All of a repository's snapshots, read and verified as BackupRepository::snapshots does it, and with the
/// same failures, but much faster: several manifests at a time, each against the text of one that is most
/// like it. What it holds grows with what changed in the time that is retained, not with the number of
/// snapshots times their files.
class WholeHistory {
  public:
    struct Item {
        Uuid id;
        Date completedAt;
    };

    /// Retained is what completed at the cutoff or later, and the latest however old it is.
    WholeHistory(const BackupRepository& repository, Date cutoff);
    /// The same of the given manifests alone, in the order of manifestFilesByDate. Most of them probably
    /// repeat the likely entries, which are in the order of their paths.
    WholeHistory(const BackupRepository& repository, Date cutoff, std::span<const fs::path> files,
                 std::span<const Shared<SnapshotEntry>> likely);
    ~WholeHistory();

    /// Oldest first.
    const std::vector<Item>& items() const { return items_; }
    bool isRetained(const Item& item) const;
    /// The entries of the retained snapshots, in no order. What many of them say is there once or a few
    /// times.
    const std::vector<const SnapshotEntry*>& retainedEntries() const { return retained_; }

  private:
    class Part;

    Date cutoff_;
    std::vector<std::unique_ptr<Part>> parts_; ///< They hold the entries.
    std::vector<Item> items_;
    std::vector<const SnapshotEntry*> retained_;
};

} // namespace marrowbox
