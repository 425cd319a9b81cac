#include "Repository/RunPlan.h"

#include "Repository/IndexTable.h"
#include "Repository/ParallelWork.h"

#include <algorithm>
#include <array>
#include <optional>

namespace marrowbox {

namespace {

using EntrySpan = std::span<const Shared<SnapshotEntry>>;

/// The entries of a snapshot by their paths.
class PathIndex {
  public:
    explicit PathIndex(EntrySpan entries) : entries_(entries), table_(entries.size()) {
        for (std::uint32_t position = 0; position < entries.size(); ++position)
            table_.insert(hashOf(entries[position]->source.path), position,
                          [](std::uint32_t) { return false; });
    }

    std::uint32_t find(const SharedText& path) const {
        return table_.lookUp(hashOf(path),
                             [&](std::uint32_t position) { return entries_[position]->source.path == path; });
    }

  private:
    static std::size_t hashOf(const SharedText& path) { return SharedTextHash()(path); }

    EntrySpan entries_;
    IndexTable table_;
};

/// The positions of entries by their paths. A listing goes through them in their own order nearly always, so
/// that the next one is looked at first, and the table is made when that fails.
class PathWalk {
  public:
    explicit PathWalk(EntrySpan entries) : entries_(entries) {}

    std::uint32_t find(const SharedText& path) {
        const bool isNext = next_ < entries_.size() && entries_[next_]->source.path == path;
        const std::uint32_t found = isNext ? next_ : lookUp(path);
        if (found != IndexTable::none)
            next_ = found + 1;
        return found;
    }

  private:
    std::uint32_t lookUp(const SharedText& path) {
        if (!index_)
            index_.emplace(entries_);
        return index_->find(path);
    }

    EntrySpan entries_;
    std::uint32_t next_ = 0;
    std::optional<PathIndex> index_;
};

/// The entries of a snapshot by their fingerprints; of equal ones the first.
class FingerprintIndex {
    auto isLike(const SourceEntry& item) const {
        return [this, &item](std::uint32_t position) {
            return entries_[position]->source.hasFingerprintOf(item);
        };
    }

  public:
    explicit FingerprintIndex(EntrySpan entries)
        : entries_(entries), table_(entries.size()), first_(entries.size()) {
        const auto count = static_cast<std::uint32_t>(entries.size());
        for (std::uint32_t position = 0; position < count + lookahead; ++position) {
            if (position >= lookahead)
                enter(position - lookahead);
            if (position < count)
                prepare(position);
        }
    }

    std::uint32_t find(const SourceEntry& item) const {
        return table_.lookUp(item.fingerprintHash(), isLike(item));
    }
    /// What find gives for the entry at a position.
    std::uint32_t firstLike(std::uint32_t position) const { return first_[position]; }

  private:
    /// How far the table's memory is asked for ahead of its use; a power of two.
    static constexpr std::uint32_t lookahead = 16;

    void prepare(std::uint32_t position) {
        const std::size_t hash = entries_[position]->source.fingerprintHash();
        hashes_[position % lookahead] = hash;
        table_.prefetch(hash);
    }
    void enter(std::uint32_t position) {
        first_[position] =
            table_.insert(hashes_[position % lookahead], position, isLike(entries_[position]->source));
    }

    EntrySpan entries_;
    IndexTable table_;
    std::vector<std::uint32_t> first_;
    std::array<std::size_t, lookahead> hashes_{};
};

/// Where a listed item stands in the previous snapshot.
struct Match {
    std::uint32_t atPath = IndexTable::none;
    std::uint32_t sameContent = IndexTable::none; ///< The first entry with a file's fingerprint.
    bool isStored = false;                        ///< The content's object is there to be used again.
};

std::vector<Match> matchItems(std::span<const SourceEntry> listing, EntrySpan previous) {
    PathWalk byPath(previous);
    const FingerprintIndex byFingerprint(previous);
    std::vector<Match> matches;
    matches.reserve(listing.size());
    for (const SourceEntry& item : listing) {
        Match& match = matches.emplace_back(Match{.atPath = byPath.find(item.path)});
        if (item.isDirectory)
            continue;
        const bool pathExisted = match.atPath != IndexTable::none;
        const bool isUnchanged = pathExisted && previous[match.atPath]->source.hasFingerprintOf(item);
        match.sameContent = isUnchanged ? byFingerprint.firstLike(match.atPath) : byFingerprint.find(item);
    }
    return matches;
}

/// One query an item, on several threads, since the system takes its time for each.
void lookForObjects(std::vector<Match>& matches, EntrySpan previous, const ObjectPresence& hasObject) {
    ParallelWork workers;
    const auto failed = workers.forEachPiece(matches.size(), [&](std::size_t begin, std::size_t end) {
        for (Match& match : std::span(matches).subspan(begin, end - begin))
            if (match.sameContent != IndexTable::none)
                match.isStored = hasObject(*previous[match.sameContent]);
    });
    if (failed)
        std::rethrow_exception(failed->failure);
}

class Planner {
  public:
    Planner(std::size_t itemCount, EntrySpan previous) : previous_(previous), isStillAFile_(previous.size()) {
        plan_.entries.reserve(itemCount);
    }

    void plan(SourceEntry item, const Match& match) {
        if (item.isDirectory)
            keepFolder(std::move(item), match.atPath);
        else
            planFile(std::move(item), match);
    }

    RunPlan finish() {
        for (std::size_t position = 0; position < previous_.size(); ++position)
            if (!previous_[position]->source.isDirectory && !isStillAFile_[position])
                ++plan_.summary.removed;
        return std::move(plan_);
    }

  private:
    void keepFolder(SourceEntry item, std::uint32_t atPath) {
        SnapshotEntry entry{.source = std::move(item), .objectHash = std::nullopt, .storedSize = 0};
        if (atPath != IndexTable::none && *previous_[atPath] == entry)
            plan_.entries.push_back(previous_[atPath]);
        else
            plan_.entries.emplace_back(std::move(entry));
    }

    void planFile(SourceEntry item, const Match& match) {
        const bool pathExisted = match.atPath != IndexTable::none;
        if (pathExisted)
            isStillAFile_[match.atPath] = true;
        if (match.isStored) {
            const bool isUnchanged = pathExisted && previous_[match.atPath]->source.hasFingerprintOf(item);
            ++(isUnchanged ? plan_.summary.unchanged : plan_.summary.added);
            reuse(previous_[match.sameContent], std::move(item));
            return;
        }
        ++(pathExisted ? plan_.summary.updated : plan_.summary.added);
        plan_.downloads.push_back(std::move(item));
    }

    /// The stored object is used again, never the old record, though an equal record is held once.
    void reuse(const Shared<SnapshotEntry>& found, SourceEntry item) {
        if (found->source == item)
            plan_.entries.push_back(found);
        else
            plan_.entries.emplace_back(SnapshotEntry{
                .source = std::move(item), .objectHash = found->objectHash, .storedSize = found->storedSize});
    }

    EntrySpan previous_;
    std::vector<bool> isStillAFile_;
    RunPlan plan_;
};

} // namespace

RunPlan planRun(std::vector<SourceEntry> listing, std::span<const Shared<SnapshotEntry>> previous,
                const ObjectPresence& hasObject) {
    std::vector<Match> matches = matchItems(listing, previous);
    lookForObjects(matches, previous, hasObject);
    Planner planner(listing.size(), previous);
    for (std::size_t index = 0; index < listing.size(); ++index)
        planner.plan(std::move(listing[index]), matches[index]);
    return planner.finish();
}

namespace {

/// Most sources list twice in one order, which needs no table to see.
bool holdsSameItemsInOrder(EntrySpan entries, std::span<const SourceEntry> listing) {
    return std::ranges::equal(entries, listing, {},
                              [](const auto& entry) -> const SourceEntry& { return entry->source; });
}

bool holdsSameItemsInAnyOrder(EntrySpan entries, std::span<const SourceEntry> listing) {
    const PathIndex byPath(entries);
    std::vector<bool> isListed(entries.size());
    for (const auto& item : listing) {
        const std::uint32_t position = byPath.find(item.path);
        if (position == IndexTable::none || entries[position]->source != item)
            return false;
        isListed[position] = true;
    }
    return std::ranges::find(isListed, false) == isListed.end();
}

} // namespace

bool holdsSameItems(std::span<const Shared<SnapshotEntry>> entries, std::span<const SourceEntry> listing) {
    return holdsSameItemsInOrder(entries, listing) || holdsSameItemsInAnyOrder(entries, listing);
}

} // namespace marrowbox
