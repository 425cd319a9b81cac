#pragma once

#include "Models/RunSummary.h"
#include "Models/Shared.h"
#include "Models/SnapshotEntry.h"
#include "Models/SourceEntry.h"

#include <functional>
#include <span>
#include <vector>

namespace marrowbox {

/// What a run does with a listing.
struct RunPlan {
    std::vector<Shared<SnapshotEntry>> entries; ///< Folders, and files whose stored object is used again.
    std::vector<SourceEntry> downloads;         ///< Files to fetch, in the order of the listing.
    RunSummary summary;                         ///< Added, updated, removed and unchanged are complete.

    friend bool operator==(const RunPlan&, const RunPlan&) = default;
};

/// Whether the object of an entry of the previous snapshot is there to be used again. Asked on several
/// threads at a time.
using ObjectPresence = std::function<bool(const SnapshotEntry&)>;

/// Decides for each item of a listing, whose paths are unique, whether the content that the previous snapshot
/// has stored is used again. Content is known by its fingerprint wherever it lies; the new entry always says
/// what the listing says now. Linear in the number of items; passes on what the presence throws.
RunPlan planRun(std::vector<SourceEntry> listing, std::span<const Shared<SnapshotEntry>> previous,
                const ObjectPresence& hasObject);

/// Whether a second listing, in any order, holds the same items as the entries do, whose paths are unique.
bool holdsSameItems(std::span<const Shared<SnapshotEntry>> entries, std::span<const SourceEntry> listing);

} // namespace marrowbox
