#pragma once

#include "Life/ChangingTree.h"
#include "Repository/BackupEngine.h"
#include "Repository/BackupRepository.h"

#include <boost/asio/thread_pool.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace marrowbox::test {

/// A backup that runs for a long time, on a clock of its own: after each run its history is pruned, as the
/// program does it, and then people go on working. One engine serves all of it, in one process.
class LongLife {
  public:
    struct Terms {
        std::size_t files = 0;
        std::size_t runsPerDay = 0;
        std::size_t retentionDays = 0;
    };
    /// What there is of a backup at one time.
    struct Footprint {
        std::size_t snapshots = 0;
        std::size_t objects = 0;
        std::uintmax_t bytes = 0;    ///< Of all files of the repository.
        std::uintmax_t disk = 0;     ///< What the file system gives for them and for the folders.
        std::size_t descriptors = 0; ///< That this process has open.
    };

    /// A new backup to an existing folder.
    LongLife(const fs::path& destination, const Terms& terms);

    /// Throws what stops a run or a pruning.
    void liveOneDay();
    std::size_t runs() const { return runs_; }
    Footprint footprint() const;
    /// Snapshots that the retention keeps: those of its days, with both ends.
    std::size_t retainedSnapshots() const;
    /// Proves all that is there: the snapshots are those of the window, each says what the tree held at its
    /// time, every object that one of them names lies there with its bytes, nothing else does, and the
    /// oldest comes back into the given new folder bit by bit. Gives the first thing that is not so, or an
    /// empty text.
    std::string fault(const fs::path& restored);

  private:
    void runOnce();
    std::string faultOfListings(const std::vector<Snapshot>& history) const;
    std::string faultOfObjects(const std::vector<Snapshot>& history) const;
    std::string faultOfRestoring(const Snapshot& snapshot, const fs::path& restored);

    Terms terms_;
    fs::path destination_;
    BackupRepository repository_;
    SyncUnit unit_;
    std::shared_ptr<ChangingTree> tree_;
    Date now_{796953600};
    std::size_t runs_ = 0;
    asio::thread_pool threads_{2};
    BackupEngine engine_;
};

} // namespace marrowbox::test
