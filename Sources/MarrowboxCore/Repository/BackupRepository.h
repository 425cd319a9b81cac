#pragma once

#include "Models/Snapshot.h"
#include "Models/Uuid.h"
#include "Platform/Clock.h"
#include "Repository/FileDigest.h"
#include "Repository/ObjectPaths.h"
#include "Repository/RepositoryLock.h"

#include <filesystem>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

namespace marrowbox {

namespace fs = std::filesystem;

/// The store of one backup unit at a destination: objects named by their content, and one manifest a
/// snapshot. The folder may go away or be swapped at any moment and is not ours, so every operation proves
/// what it relies on. A small value; making one touches nothing. Deliberate refusals are BackupError,
/// everything else passes through as the system reports it; nothing that an earlier step made is removed. Any
/// thread; jobs on one repository are kept apart by its lock, which a job takes after validate() and holds to
/// its end.
class BackupRepository {
  public:
    BackupRepository(const fs::path& destination, const Uuid& unitID);

    const fs::path& root() const { return root_; }
    const Uuid& unitID() const { return unitID_; }
    fs::path snapshotsFolder() const { return root_ / "Snapshots"; }
    fs::path manifest(const Uuid& id) const { return snapshotsFolder() / (id.text() + ".json"); }
    ObjectPaths objectPaths() const { return {root_ / "Objects"}; }

    /// Makes a new repository in an existing folder, or validates the one that is there.
    void initialize() const;
    /// Proves identity and layout.
    void validate() const;
    /// Validates, and takes the repository's lock. Throws LockBusyError when another job holds it.
    RepositoryLock lock() const;

    /// All snapshots, each verified, oldest first. The first failure fails the whole call. Entries that
    /// repeat are held once.
    std::vector<Snapshot> snapshots() const;
    /// The last of snapshots(), absent when there is none. Verifies all of them alike, with room for about
    /// one in memory. What it reads shares the texts of the given items.
    std::optional<Snapshot> latestSnapshot(std::span<const SourceEntry> sharedWith) const;

    /// Where an object lies. Neither makes nor requires it.
    fs::path objectURL(const ObjectHash& hash) const;
    /// Whether an entry's object is present with its size. Reads metadata only.
    bool hasObject(const SnapshotEntry& entry) const;

    /// Makes the work folder of a run and gives its path. An existing one is a failure.
    fs::path staging(const Uuid& id) const;
    /// Verifies a downloaded file against its source entry and moves it into the store, unless the same
    /// content is there already. The object is on stable storage afterwards. CancellationError inside the
    /// digests.
    SnapshotEntry importFile(const fs::path& file, const SourceEntry& source, std::stop_token stop) const;
    /// Publishes a snapshot: its manifest appears whole or not at all, after every object was seen in place.
    void commit(const Snapshot& snapshot) const;

    /// Removes the manifests of snapshots that completed before the cutoff, the latest excepted, and then
    /// every object that no remaining one names. Nothing goes before all that stays is proven to be there.
    /// The caller holds the lock.
    void prune(Date olderThan) const;
    /// Writes a snapshot out as files and folders in a new folder. Each object is proven against its hash
    /// before it is copied; several are under way at a time. Of several failures the first in the snapshot's
    /// order is thrown; all files before it are restored then, and whatever was restored stays.
    /// CancellationError inside the digests. The caller holds the lock.
    void restore(const Snapshot& snapshot, const fs::path& target, std::stop_token stop) const;

    static void rejectSymlink(const fs::path& path) { marrowbox::rejectSymlink(path); }
    /// Both digests of a file in one pass. CancellationError between chunks.
    static FileDigest digest(const fs::path& path, std::stop_token stop);

  private:
    fs::path root_;
    Uuid unitID_;
};

} // namespace marrowbox
