#include "Models/BackupPaths.h"
#include "Platform/PlainFile.h"
#include "Repository/BackupRepository.h"
#include "Repository/ManifestChecks.h"
#include "Repository/ManifestReader.h"
#include "Repository/WholeHistory.h"

#include <algorithm>
#include <limits>

namespace marrowbox {

namespace {

using EntryList = std::vector<Shared<SnapshotEntry>>;

/// Nothing completes as late.
constexpr Date never{std::numeric_limits<double>::infinity()};

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

/// One reading of a repository's manifests. What repeats among them is held once.
class HistoryReader {
  public:
    HistoryReader(const BackupRepository& repository, std::span<const SourceEntry> listing)
        : checks_(repository), reader_(listing) {}

    /// Reads a manifest, which probably repeats most of the given entries.
    Snapshot read(const fs::path& file, std::span<const Shared<SnapshotEntry>> likely) {
        rejectSymlink(file);
        reader_.expect(likely);
        Snapshot snapshot = reader_.read(openPlainFile(file));
        checks_.requireIdentity(snapshot, file);
        BackupPaths::validateEntries(snapshot.entries);
        for (const auto& entry : snapshot.entries)
            checks_.requireReference(*entry);
        snapshot.entries.shrink_to_fit(); // many lists of shared entries are held at the same time
        return snapshot;
    }

  private:
    ManifestChecks checks_;
    ManifestReader reader_;
};

} // namespace

std::vector<Snapshot> BackupRepository::snapshots() const {
    validate();
    HistoryReader reader(*this, {});
    EntryList known;
    std::vector<Snapshot> history;
    for (const auto& file : manifestFiles(*this)) {
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
    std::vector<fs::path> files = manifestFilesByDate(*this);
    if (files.empty())
        return std::nullopt;
    HistoryReader reader(*this, sharedWith);
    const fs::path last = std::move(files.back());
    files.pop_back();
    Snapshot latest = reader.read(last, {});
    // Of the others only the dates are of use, and that nothing is wrong with any of them.
    const WholeHistory others(*this, never, files, latest.entries);
    const auto& items = others.items();
    if (!items.empty() && items.back().completedAt > latest.completedAt)
        latest = reader.read(manifest(items.back().id), latest.entries);
    return latest;
}

} // namespace marrowbox
