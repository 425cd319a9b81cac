#pragma once

#include "Models/Snapshot.h"
#include "Models/Uuid.h"
#include "Platform/Clock.h"
#include "Repository/BackupRepository.h"

#include <memory>
#include <vector>

namespace marrowbox {

/// All of a repository's snapshots for a pruning, read and verified as BackupRepository::snapshots does it,
/// and with the same failures, but much faster: several manifests at a time, each against the text of one
/// that is most like it. Only what may be retained is kept.
class WholeHistory {
  public:
    struct Item {
        Uuid id;
        Date completedAt;
        /// Empty when it completed before the cutoff and another one did after it.
        std::vector<const SnapshotEntry*> entries;
        std::vector<Shared<SnapshotEntry>> held; ///< Those of them that the reading itself does not hold.
    };

    WholeHistory(const BackupRepository& repository, Date cutoff);
    ~WholeHistory();

    /// Oldest first.
    const std::vector<Item>& items() const { return items_; }

  private:
    class Part;

    std::vector<std::unique_ptr<Part>> parts_; ///< They hold the entries.
    std::vector<Item> items_;
};

} // namespace marrowbox
