#include "Models/BackupError.h"
#include "Platform/UnicodeText.h"
#include "Repository/BackupRepository.h"
#include "Repository/ObjectStatus.h"
#include "Repository/ParallelWork.h"
#include "Repository/WholeHistory.h"

#include <boost/unordered/unordered_flat_set.hpp>

namespace marrowbox {

namespace {

using ObjectSet = boost::unordered_flat_set<ObjectHash, std::hash<ObjectHash>>;

/// The objects that have to stay, each seen in place.
ObjectSet provenObjects(const std::vector<const SnapshotEntry*>& retained, const ObjectPaths& paths,
                        ParallelWork& workers) {
    ObjectStatus status(paths);
    const auto failed = workers.forEachPiece(retained.size(), [&](std::size_t begin, std::size_t end) {
        for (std::size_t index = begin; index < end; ++index)
            if (!status.hasObject(*retained[index]))
                throw BackupError("History cleanup paused because a retained file is missing.");
    });
    if (failed)
        std::rethrow_exception(failed->failure);
    ObjectSet objects;
    for (const SnapshotEntry* entry : retained)
        if (entry->objectHash)
            objects.insert(*entry->objectHash);
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

/// Refuses what this program would not have put into a fan-out folder.
void requireObject(const ObjectPaths& paths, const std::string& folder, const FolderHandle::Item& item) {
    const ObjectHash hash(item.name);
    requireValid(hash);
    const bool isInPlace = item.name.starts_with(folder);
    if (!isInPlace) {
        rejectSymlink(paths.fanOut(hash));
        rejectSymlink(paths.object(hash));
        throw BackupError("Unexpected object layout; cleanup paused.");
    }
    if (item.isLink)
        refuseSymlink();
}

void sweepFanOut(const ObjectPaths& paths, const std::string& name, const ObjectSet& kept) {
    rejectSymlink(paths.objects / name);
    if (!hasTwoCharacters(name))
        return;
    const auto folder = FolderHandle::open(paths.objects / name);
    if (!folder)
        throwSystemError("open folder", paths.objects / name);
    for (const auto& item : folder->items()) {
        requireObject(paths, name, item);
        if (!kept.contains(ObjectHash(item.name)))
            folder->removeFile(item.name.c_str());
    }
}

/// Removes what no retained snapshot names, and stops at anything that this program would not have put there.
/// Several folders are swept at a time, since the system takes its time for each removal.
void sweep(const ObjectPaths& paths, const ObjectSet& kept, ParallelWork& workers) {
    const std::vector<std::string> names = directoryNames(paths.objects);
    const auto failed =
        workers.forEach(names.size(), [&](std::size_t index) { sweepFanOut(paths, names[index], kept); });
    if (failed)
        std::rethrow_exception(failed->failure);
}

} // namespace

void BackupRepository::prune(Date olderThan) const {
    validate();
    const WholeHistory history(*this, olderThan);
    if (history.items().empty())
        return;
    ParallelWork workers;
    const ObjectSet kept = provenObjects(history.retainedEntries(), objectPaths(), workers);
    // A run that was killed may have left a manifest whose name does not last yet. It must not be lost when
    // the ones that it outdates are gone.
    synchronizeFolder(snapshotsFolder());
    for (const auto& item : history.items())
        if (!history.isRetained(item))
            removeFile(manifest(item.id));
    // No object goes before the manifests that name it are gone for good, those as well that a pruning which
    // did not come so far has removed.
    synchronizeFolder(snapshotsFolder());
    sweep(objectPaths(), kept, workers);
}

} // namespace marrowbox
