#include "StorageUsage/BackupStorageUsage.h"

#include <algorithm>
#include <boost/unordered/unordered_flat_set.hpp>
#include <compare>
#include <vector>

namespace marrowbox {

namespace {

using Entries = std::vector<Shared<SnapshotEntry>>;

struct HashOfObject {
    std::size_t operator()(const SnapshotEntry* entry) const noexcept {
        return entry->objectHash->tableHash();
    }
};

struct SameObject {
    bool operator()(const SnapshotEntry* left, const SnapshotEntry* right) const noexcept {
        return *left->objectHash == *right->objectHash;
    }
};

/// False when the sum overflows.
bool add(std::int64_t bytes, std::int64_t& to) {
    return !__builtin_add_overflow(to, bytes, &to);
}

/// Whether two entries count the same: neither anything, or both the same object.
bool countTheSame(const Shared<SnapshotEntry>& left, const Shared<SnapshotEntry>& right) {
    if (&*left == &*right)
        return true;
    return left->source.isDirectory == right->source.isDirectory && left->storedSize == right->storedSize &&
           left->objectHash == right->objectHash;
}

/// Walks a history from its oldest snapshot on. The logical size of a snapshot is that of the one before it,
/// less what has gone, plus what is new; the entries that both have are passed over.
class Measurement {
  public:
    /// False when the metadata is unusable.
    bool take(const Entries& entries);

    std::int64_t total() const { return total_; }
    std::int64_t logical() const { return logical_; }
    std::int64_t incremental() const { return incremental_; }

  private:
    bool takeNew(const SnapshotEntry& entry);
    void takeGone(const SnapshotEntry& entry) {
        if (!entry.source.isDirectory)
            gone_ += entry.storedSize; // a part of the logical size before, so it cannot overflow
    }

    boost::unordered_flat_set<const SnapshotEntry*, HashOfObject, SameObject> objects_;
    const Entries* before_ = nullptr;
    std::int64_t total_ = 0;
    std::int64_t logical_ = 0;
    std::int64_t incremental_ = 0;
    std::int64_t gone_ = 0;
    std::int64_t come_ = 0;
};

bool Measurement::take(const Entries& entries) {
    static const Entries none;
    const Entries& before = before_ != nullptr ? *before_ : none;
    incremental_ = gone_ = come_ = 0;
    auto old = before.begin();
    for (const auto& entry : entries) {
        bool isKept = false;
        // Both lists ascend by path. In any other order the figures are the same, only later.
        for (; old != before.end(); ++old) {
            isKept = countTheSame(*old, entry);
            if (isKept || !((*old)->source.path < entry->source.path))
                break;
            takeGone(**old);
        }
        if (isKept)
            ++old;
        else if (!takeNew(*entry))
            return false;
    }
    for (; old != before.end(); ++old)
        takeGone(**old);
    before_ = &entries;
    logical_ -= gone_;
    return add(come_, logical_);
}

bool Measurement::takeNew(const SnapshotEntry& entry) {
    if (entry.source.isDirectory)
        return true;
    if (entry.storedSize < 0 || !entry.objectHash || !add(entry.storedSize, come_))
        return false;
    const auto [object, isNew] = objects_.insert(&entry);
    if (!isNew)
        return (*object)->storedSize == entry.storedSize;
    return add(entry.storedSize, incremental_) && add(entry.storedSize, total_);
}

std::vector<const Snapshot*> fromOldest(std::span<const Snapshot> snapshots) {
    std::vector<const Snapshot*> ordered(snapshots.size());
    std::ranges::transform(snapshots, ordered.begin(), [](const Snapshot& snapshot) { return &snapshot; });
    const auto compareDates = [](Date left, Date right) {
        return std::weak_order(left.secondsSinceReference, right.secondsSinceReference);
    };
    std::ranges::sort(ordered, [&](const Snapshot* left, const Snapshot* right) {
        if (const auto order = compareDates(left->completedAt, right->completedAt); order != 0)
            return order < 0;
        if (const auto order = compareDates(left->startedAt, right->startedAt); order != 0)
            return order < 0;
        return left->id < right->id; // as their upper-case texts
    });
    return ordered;
}

} // namespace

BackupStorageUsage BackupStorageUsage::measure(std::span<const Snapshot> snapshots) {
    const auto ordered = fromOldest(snapshots);
    BackupStorageUsage usage;
    Measurement measurement;
    for (const Snapshot* snapshot : ordered) {
        if (!measurement.take(snapshot->entries))
            return {};
        usage.latestSnapshotBytes = measurement.logical();
        usage.bySnapshot[snapshot->id] = {.logicalBytes = measurement.logical(),
                                          .incrementalBytes = measurement.incremental(),
                                          .isBaseline = snapshot == ordered.front()};
    }
    usage.totalRetainedBytes = measurement.total();
    return usage;
}

} // namespace marrowbox
