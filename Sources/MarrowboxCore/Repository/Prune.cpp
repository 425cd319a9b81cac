#include "Models/BackupError.h"
#include "Platform/UnicodeText.h"
#include "Repository/BackupRepository.h"
#include "Repository/ObjectLinks.h"
#include "Repository/ObjectStatus.h"

#include <boost/unordered/unordered_flat_set.hpp>

namespace marrowbox {

namespace {

using ObjectSet = boost::unordered_flat_set<ObjectHash, std::hash<ObjectHash>>;

struct History {
    std::vector<Snapshot> expired;  ///< Oldest first.
    std::vector<Snapshot> retained; ///< Never empty.
};

/// The newest snapshot stays however old it is.
History divide(std::vector<Snapshot> snapshots, Date cutoff) {
    History history;
    for (auto& snapshot : snapshots) {
        const bool isRetained = &snapshot == &snapshots.back() || snapshot.completedAt >= cutoff;
        (isRetained ? history.retained : history.expired).push_back(std::move(snapshot));
    }
    return history;
}

/// The objects that have to stay, each seen in place. An entry that many snapshots share is looked at once.
ObjectSet provenObjects(const std::vector<Snapshot>& retained, const ObjectPaths& paths) {
    ObjectStatus status(paths);
    ObjectSet objects;
    boost::unordered_flat_set<const SnapshotEntry*> proven;
    for (const auto& snapshot : retained) {
        for (const auto& entry : snapshot.entries) {
            if (!proven.insert(&*entry).second)
                continue;
            if (!status.hasObject(*entry))
                throw BackupError("History cleanup paused because a retained file is missing.");
            if (entry->objectHash)
                objects.insert(*entry->objectHash);
        }
    }
    return objects;
}

void removeFile(const fs::path& path) {
    if (::unlink(path.c_str()) != 0)
        throwSystemError("remove", path);
}

bool hasTwoCharacters(std::string_view name) {
    int count = 0;
    forEachScalar(name, [&](char32_t, std::string_view) { ++count; });
    return count == 2;
}

void sweepFanOut(const ObjectPaths& paths, const std::string& name, const ObjectSet& kept,
                 ObjectLinks& links) {
    for (const auto& file : directoryNames(paths.objects / name)) {
        const ObjectHash hash(file);
        requireValid(hash);
        links.reject(hash);
        if (!file.starts_with(name))
            throw BackupError("Unexpected object layout; cleanup paused.");
        if (!kept.contains(hash))
            removeFile(paths.objects / name / file);
    }
}

/// Removes what no retained snapshot names, and stops at anything that this program would not have put there.
void sweep(const ObjectPaths& paths, const ObjectSet& kept) {
    ObjectLinks links(paths);
    for (const auto& name : directoryNames(paths.objects)) {
        rejectSymlink(paths.objects / name);
        if (hasTwoCharacters(name))
            sweepFanOut(paths, name, kept, links);
    }
}

} // namespace

void BackupRepository::prune(Date olderThan) const {
    auto snapshots = this->snapshots();
    if (snapshots.empty())
        return;
    const History history = divide(std::move(snapshots), olderThan);
    const ObjectSet kept = provenObjects(history.retained, objectPaths());
    for (const auto& snapshot : history.expired)
        removeFile(manifest(snapshot.id));
    // No object goes before the manifests that name it are gone for good, those as well that a pruning which
    // did not come so far has removed.
    synchronizeFolder(snapshotsFolder());
    sweep(objectPaths(), kept);
}

} // namespace marrowbox
