#pragma once

#include "Models/Snapshot.h"
#include "Models/Uuid.h"
#include "StorageUsage/SnapshotStorageUsage.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>

namespace marrowbox {

/// What a backup costs on disk. The default value stands for figures that are unknown or not yet measured.
struct BackupStorageUsage {
    std::optional<std::int64_t> totalRetainedBytes;  ///< All distinct objects of the history.
    std::optional<std::int64_t> latestSnapshotBytes; ///< The newest snapshot; absent too when there is none.
    std::map<Uuid, SnapshotStorageUsage> bySnapshot; ///< By the snapshot's identifier.

    friend bool operator==(const BackupStorageUsage&, const BackupStorageUsage&) = default;

    /// Measures snapshots in any order, from their manifests alone. Unknown as a whole when a file has no
    /// usable size or hash, when one hash has two sizes, or when a sum overflows. An entry that consecutive
    /// snapshots share costs one comparison of pointers. Any thread.
    static BackupStorageUsage measure(std::span<const Snapshot> snapshots);
};

} // namespace marrowbox
