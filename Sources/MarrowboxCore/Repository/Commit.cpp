#include "Models/BackupError.h"
#include "Models/BackupPaths.h"
#include "Models/JSONWriter.h"
#include "Repository/BackupRepository.h"
#include "Repository/ObjectStatus.h"
#include "Repository/ParallelWork.h"

#include <exception>
#include <span>

namespace marrowbox {

namespace {

void requireObjects(const Snapshot& snapshot, const ObjectPaths& paths) {
    ObjectStatus objects(paths);
    ParallelWork workers;
    const auto failed =
        workers.forEachPiece(snapshot.entries.size(), [&](std::size_t begin, std::size_t end) {
            for (const auto& entry : std::span(snapshot.entries).subspan(begin, end - begin))
                if (!objects.hasObject(*entry))
                    throw BackupError("A backup file is missing. The snapshot was not published.");
        });
    if (failed)
        std::rethrow_exception(failed->failure);
}

/// The bytes are on stable storage before the name is, so that no moment of a power cut leaves a manifest
/// that cannot be read; then the name is made to last as well.
void publish(const Snapshot& snapshot, const fs::path& manifest) {
    AtomicFile file(manifest);
    encodeJSON(snapshot, JSONStyle::pretty, file.descriptor());
    synchronize(file.descriptor(), manifest);
    file.publish();
    synchronizeFile(manifest);
    synchronizeFolder(manifest.parent_path());
}

} // namespace

void BackupRepository::commit(const Snapshot& snapshot) const {
    validate();
    if (snapshot.unitID != unitID_)
        throw BackupError("Snapshot belongs to another backup unit.");
    BackupPaths::validateEntries(snapshot.entries);
    requireObjects(snapshot, objectPaths());
    const fs::path manifest = this->manifest(snapshot.id);
    if (fs::exists(fs::symlink_status(manifest)))
        throw BackupError("Snapshot already exists.");
    publish(snapshot, manifest);
}

} // namespace marrowbox
