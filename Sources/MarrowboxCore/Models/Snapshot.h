#pragma once

#include "Models/RunSummary.h"
#include "Models/Shared.h"
#include "Models/SnapshotEntry.h"
#include "Models/Uuid.h"
#include "Platform/Clock.h"

#include <boost/describe/class.hpp>
#include <vector>

namespace marrowbox {

/// One published point in a backup's history. Its entries are shared records, since most of them repeat from
/// one snapshot to the next.
struct Snapshot {
    std::int64_t schemaVersion = 1; ///< Always 1.
    Uuid id;
    Uuid unitID;
    Date startedAt;
    Date completedAt;                           ///< History is ordered by this.
    std::vector<Shared<SnapshotEntry>> entries; ///< Ascending by path.
    RunSummary summary;

    friend bool operator==(const Snapshot&, const Snapshot&) = default;
};

BOOST_DESCRIBE_STRUCT(Snapshot, (), (schemaVersion, id, unitID, startedAt, completedAt, entries, summary))

} // namespace marrowbox
