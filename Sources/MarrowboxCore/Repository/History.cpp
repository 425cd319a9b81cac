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

using EntryList = std::vector<Shared<SnapshotEntry>>;

bool liesBefore(const Shared<SnapshotEntry>& left, const Shared<SnapshotEntry>& right) {
    return left->source.path < right->source.path;
}

/// Adds what a list, in the order of its paths, does not hold yet.
void addTo(EntryList& known, const EntryList& entries) {
    EntryList added;
    auto place = known.cbegin();
    for (const auto& entry : entries) {
        const auto isPast = [&] { return place == known.cend() || liesBefore(entry, *place); };
        bool isKnown = false;
        for (; !isPast() && !isKnown; ++place)
            isKnown = &**place == &*entry;
        if (!isKnown)
            added.push_back(entry);
    }
    if (added.empty() || !std::ranges::is_sorted(added, liesBefore))
        return;
    EntryList united;
    united.reserve(known.size() + added.size());
    std::ranges::merge(known, added, std::back_inserter(united), liesBefore);
    known = std::move(united);
}

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

    /// Reads a manifest, which probably repeats most of the given entries.
    Snapshot read(const fs::path& file, std::span<const Shared<SnapshotEntry>> likely) {
        rejectSymlink(file);
        reader_.expect(likely);
        Snapshot snapshot = reader_.read(openPlainFile(file));
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
    ManifestReader reader_;
    ObjectLinks links_;
};

} // namespace

std::vector<Snapshot> BackupRepository::snapshots() const {
    validate();
    HistoryReader reader(*this, {});
    EntryList known;
    std::vector<Snapshot> history;
    for (const auto& file : reader.manifests()) {
        Snapshot snapshot = reader.read(file, known);
        addTo(known, snapshot.entries);
        const auto place =
            std::ranges::upper_bound(history, snapshot.completedAt, {}, &Snapshot::completedAt);
        history.insert(place, std::move(snapshot));
    }
    return history;
}

std::optional<Snapshot> BackupRepository::latestSnapshot(std::span<const SourceEntry> sharedWith) const {
    validate();
    HistoryReader reader(*this, sharedWith);
    std::optional<Snapshot> latest;
    for (const auto& file : reader.manifests()) {
        std::span<const Shared<SnapshotEntry>> likely;
        if (latest)
            likely = latest->entries;
        Snapshot snapshot = reader.read(file, likely);
        // Of equal dates the one that is read later counts as later.
        if (!latest || snapshot.completedAt >= latest->completedAt)
            latest = std::move(snapshot);
    }
    return latest;
}

} // namespace marrowbox
