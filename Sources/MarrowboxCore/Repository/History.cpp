#include "Models/BackupError.h"
#include "Models/BackupPaths.h"
#include "Platform/UnicodeText.h"
#include "Repository/BackupRepository.h"
#include "Repository/ManifestReader.h"
#include "Repository/ObjectLinks.h"
#include "Repository/PlainFile.h"

#include <algorithm>

namespace marrowbox {

namespace {

/// One reading of a repository's manifests. What repeats among them is held once, and each fan-out folder is
/// looked at once.
class HistoryReader {
  public:
    HistoryReader(const BackupRepository& repository, std::span<const SourceEntry> listing)
        : repository_(repository), reader_(listing), links_(repository.objectPaths()) {}

    std::vector<fs::path> manifests() const {
        std::vector<fs::path> files;
        for (const auto& name : directoryNames(repository_.snapshotsFolder()))
            if (pathExtension(name) == "json")
                files.push_back(repository_.snapshotsFolder() / name);
        return files;
    }

    /// Reads and verifies a manifest. What it repeats of those before was verified with them.
    ManifestReader::Reading read(const fs::path& file) {
        rejectSymlink(file);
        ManifestReader::Reading reading = reader_.read(openPlainFile(file), known_);
        Snapshot& snapshot = reading.snapshot;
        if (snapshot.schemaVersion != 1 || snapshot.unitID != repository_.unitID() ||
            withoutPathExtension(file.filename().string()) != snapshot.id.text())
            throw BackupError("An unsupported or mismatched snapshot was found. No history will be removed.");
        if (reading.hasNewPath || !known_.fitTogether())
            BackupPaths::validateEntries(snapshot.entries);
        for (const auto& entry : reading.fresh)
            verifyReference(*entry);
        snapshot.entries.shrink_to_fit(); // many lists of shared entries are held at the same time
        return reading;
    }
    /// What the manifests that come next may repeat.
    KnownEntries& known() { return known_; }

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
    ManifestReader reader_;
    KnownEntries known_;
    ObjectLinks links_;
};

} // namespace

std::vector<Snapshot> BackupRepository::snapshots() const {
    validate();
    HistoryReader reader(*this, {});
    std::vector<Snapshot> history;
    for (const auto& file : reader.manifests()) {
        auto [snapshot, fresh, hasNewPath] = reader.read(file);
        reader.known().add(fresh);
        const auto place =
            std::ranges::upper_bound(history, snapshot.completedAt, {}, &Snapshot::completedAt);
        history.insert(place, std::move(snapshot));
    }
    return history;
}

std::optional<Snapshot> BackupRepository::latestSnapshot(std::span<const SourceEntry> sharedWith) const {
    validate();
    HistoryReader reader(*this, sharedWith);
    const auto files = reader.manifests();
    std::optional<Snapshot> latest;
    for (const auto& file : files) {
        Snapshot snapshot = reader.read(file).snapshot;
        // Of equal dates the one that is read later counts as later.
        if (latest && snapshot.completedAt < latest->completedAt)
            continue;
        latest = std::move(snapshot);
        if (&file == &files.back())
            break;
        reader.known().clear();
        reader.known().add(latest->entries);
    }
    return latest;
}

} // namespace marrowbox
