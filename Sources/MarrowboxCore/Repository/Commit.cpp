#include "Models/BackupError.h"
#include "Models/BackupPaths.h"
#include "Models/JSONWriter.h"
#include "Repository/BackupRepository.h"
#include "Repository/ObjectStatus.h"

namespace marrowbox {

namespace {

void requireObjects(const Snapshot& snapshot, ObjectStatus objects) {
    for (const auto& entry : snapshot.entries)
        if (!objects.hasObject(*entry))
            throw BackupError("A backup file is missing. The snapshot was not published.");
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
    requireObjects(snapshot, ObjectStatus(objectPaths()));
    const fs::path manifest = this->manifest(snapshot.id);
    if (fs::exists(fs::symlink_status(manifest)))
        throw BackupError("Snapshot already exists.");
    publish(snapshot, manifest);
}

} // namespace marrowbox
