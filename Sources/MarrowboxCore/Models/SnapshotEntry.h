#pragma once

#include "Models/ObjectHash.h"
#include "Models/SourceEntry.h"

#include <boost/describe/class.hpp>
#include <cstdint>
#include <optional>

namespace marrowbox {

/// One item of a published snapshot.
struct SnapshotEntry {
    SourceEntry source;                   ///< The item as the source described it in that snapshot's run.
    std::optional<ObjectHash> objectHash; ///< The stored content; absent for folders.
    std::int64_t storedSize = 0;          ///< Bytes of the stored object; 0 for folders.

    friend bool operator==(const SnapshotEntry&, const SnapshotEntry&) = default;
};

BOOST_DESCRIBE_STRUCT(SnapshotEntry, (), (source, objectHash, storedSize))

} // namespace marrowbox
