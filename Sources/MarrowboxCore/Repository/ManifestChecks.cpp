#include "Repository/ManifestChecks.h"

#include "Models/BackupError.h"
#include "Platform/UnicodeText.h"

namespace marrowbox {

std::vector<fs::path> manifestFiles(const BackupRepository& repository) {
    std::vector<fs::path> files;
    for (const auto& name : directoryNames(repository.snapshotsFolder()))
        if (pathExtension(name) == "json")
            files.push_back(repository.snapshotsFolder() / name);
    return files;
}

void ManifestChecks::requireIdentity(const Snapshot& snapshot, const fs::path& file) const {
    if (snapshot.schemaVersion != 1 || snapshot.unitID != repository_.unitID() ||
        withoutPathExtension(file.filename().string()) != snapshot.id.text())
        throw BackupError("An unsupported or mismatched snapshot was found. No history will be removed.");
}

void ManifestChecks::requireReference(const SnapshotEntry& entry) {
    if (entry.source.isDirectory)
        return;
    if (!entry.objectHash)
        throw BackupError("A snapshot is missing a file reference.");
    requireValid(*entry.objectHash);
    links_.reject(*entry.objectHash);
}

} // namespace marrowbox
