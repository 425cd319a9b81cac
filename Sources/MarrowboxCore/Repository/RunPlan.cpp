#include "Repository/RunPlan.h"

#include "Repository/IndexTable.h"

#include <algorithm>

namespace marrowbox {

namespace {

using EntryList = std::span<const Shared<SnapshotEntry>>;

/// The entries of a snapshot by their paths.
class PathIndex {
  public:
    explicit PathIndex(EntryList entries) : entries_(entries), table_(entries.size()) {
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

    EntryList entries_;
    IndexTable table_;
};

/// The entries of a snapshot by their fingerprints; of equal ones the first.
class FingerprintIndex {
    auto isLike(const SourceEntry& item) const {
        return [this, &item](std::uint32_t position) {
            return entries_[position]->source.hasFingerprintOf(item);
        };
    }

  public:
    explicit FingerprintIndex(EntryList entries) : entries_(entries), table_(entries.size()) {
        for (std::uint32_t position = 0; position < entries.size(); ++position) {
            const SourceEntry& source = entries[position]->source;
            table_.insert(source.fingerprintHash(), position, isLike(source));
        }
    }

    std::uint32_t find(const SourceEntry& item) const {
        return table_.lookUp(item.fingerprintHash(), isLike(item));
    }

  private:
    EntryList entries_;
    IndexTable table_;
};

class Planner {
  public:
    Planner(std::size_t itemCount, EntryList previous, const ObjectPresence& hasObject)
        : previous_(previous), byPath_(previous), byFingerprint_(previous), hasObject_(hasObject),
          isStillAFile_(previous.size()) {
        plan_.entries.reserve(itemCount);
    }

    void plan(SourceEntry item) {
        const std::uint32_t atPath = byPath_.find(item.path);
        if (item.isDirectory)
            keepFolder(std::move(item), atPath);
        else
            planFile(std::move(item), atPath);
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

    void planFile(SourceEntry item, std::uint32_t atPath) {
        const bool pathExisted = atPath != IndexTable::none;
        if (pathExisted)
            isStillAFile_[atPath] = true;
        const std::uint32_t found = byFingerprint_.find(item);
        if (found != IndexTable::none && hasObject_(*previous_[found])) {
            const bool isUnchanged = pathExisted && previous_[atPath]->source.hasFingerprintOf(item);
            ++(isUnchanged ? plan_.summary.unchanged : plan_.summary.added);
            reuse(previous_[found], std::move(item));
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

    EntryList previous_;
    PathIndex byPath_;
    FingerprintIndex byFingerprint_;
    const ObjectPresence& hasObject_;
    std::vector<bool> isStillAFile_;
    RunPlan plan_;
};

} // namespace

RunPlan planRun(std::vector<SourceEntry> listing, std::span<const Shared<SnapshotEntry>> previous,
                const ObjectPresence& hasObject) {
    Planner planner(listing.size(), previous, hasObject);
    for (auto& item : listing)
        planner.plan(std::move(item));
    return planner.finish();
}

namespace {

/// Most sources list twice in one order, which needs no table to see.
bool holdsSameItemsInOrder(EntryList entries, std::span<const SourceEntry> listing) {
    return std::ranges::equal(entries, listing, {},
                              [](const auto& entry) -> const SourceEntry& { return entry->source; });
}

bool holdsSameItemsInAnyOrder(EntryList entries, std::span<const SourceEntry> listing) {
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
