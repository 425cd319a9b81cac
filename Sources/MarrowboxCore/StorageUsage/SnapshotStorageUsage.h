#pragma once

#include <cstdint>

namespace marrowbox {

/// What one snapshot costs, in bytes.
struct SnapshotStorageUsage {
    std::int64_t logicalBytes = 0;     ///< All its files: its size when restored.
    std::int64_t incrementalBytes = 0; ///< The objects that no earlier snapshot refers to, each counted once.
    bool isBaseline = false;           ///< Whether it is the oldest one.

    friend bool operator==(const SnapshotStorageUsage&, const SnapshotStorageUsage&) = default;
};

} // namespace marrowbox
