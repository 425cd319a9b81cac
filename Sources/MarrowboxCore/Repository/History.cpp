#include "Models/BackupError.h"
#include "Models/BackupPaths.h"
#include "Models/JSONReader.h"
#include "Models/JSONSharing.h"
#include "Platform/UnicodeText.h"
#include "Repository/BackupRepository.h"
#include "Repository/ObjectLinks.h"
#include "Repository/PlainFile.h"

#include <algorithm>

namespace marrowbox {

namespace {

/// One reading of a repository's manifests. What repeats among them is held once, and each fan-out folder is
/// looked at once.
class HistoryReader {
  public:
    explicit HistoryReader(const BackupRepository& repository)
        : repository_(repository), links_(repository.objectPaths()) {}

    std::vector<fs::path> manifests() const {
        std::vector<fs::path> files;
        for (const auto& name : directoryNames(repository_.snapshotsFolder()))
            if (pathExtension(name) == "json")
                files.push_back(repository_.snapshotsFolder() / name);
        return files;
    }

    void share(std::span<const SourceEntry> known) {
        for (const auto& entry : known)
            sharing_.adopt(entry);
    }

    Snapshot read(const fs::path& file) {
        rejectSymlink(file);
        auto snapshot = decodeJSON<Snapshot>(openPlainFile(file), &sharing_);
        if (snapshot.schemaVersion != 1 || snapshot.unitID != repository_.unitID() ||
            withoutPathExtension(file.filename().string()) != snapshot.id.text())
            throw BackupError("An unsupported or mismatched snapshot was found. No history will be removed.");
        BackupPaths::validateEntries(snapshot.entries);
        for (const auto& entry : snapshot.entries)
            verifyReference(*entry);
        snapshot.entries.shrink_to_fit(); // many lists of shared entries are held at the same time
        return snapshot;
    }

  private:
    void verifyReference(const SnapshotEntry& entry) {
        if (entry.source.isDirectory)
            return;
        if (!entry.objectHash)
            throw BackupError("A snapshot is missing a file reference.");
        requireValid(*entry.objectHash);
        links_.reject(*entry.objectHash);
    }

    const BackupRepository& repository_;
    JSONSharing sharing_;
    ObjectLinks links_;
};

} // namespace

std::vector<Snapshot> BackupRepository::snapshots() const {
    validate();
    HistoryReader reader(*this);
    std::vector<Snapshot> history;
    for (const auto& file : reader.manifests()) {
        Snapshot snapshot = reader.read(file);
        const auto place =
            std::ranges::upper_bound(history, snapshot.completedAt, {}, &Snapshot::completedAt);
        history.insert(place, std::move(snapshot));
    }
    return history;
}

std::optional<Snapshot> BackupRepository::latestSnapshot(std::span<const SourceEntry> sharedWith) const {
    validate();
    HistoryReader reader(*this);
    const auto files = reader.manifests();
    if (!files.empty())
        reader.share(sharedWith);
    std::optional<Snapshot> latest;
    for (const auto& file : files) {
        Snapshot snapshot = reader.read(file);
        // Of equal dates the one that is read later counts as later.
        if (!latest || snapshot.completedAt >= latest->completedAt)
            latest = std::move(snapshot);
    }
    return latest;
}

} // namespace marrowbox
