#include "Repository/WholeHistory.h"

#include "Models/BackupPaths.h"
#include "Platform/PlainFile.h"
#include "Repository/ManifestChecks.h"
#include "Repository/ManifestReader.h"
#include "Repository/ManifestSuccession.h"
#include "Repository/ParallelWork.h"

#include <algorithm>
#include <boost/unordered/unordered_flat_set.hpp>
#include <exception>
#include <iterator>
#include <optional>
#include <thread>
#include <utility>

namespace marrowbox {

namespace {

using Files = std::span<const fs::path>;

/// Fewer are not worth another thread, which has to read the first of its manifests without a model.
constexpr std::size_t fewestFiles = 16;

} // namespace

/// Some manifests that are read one after the other.
class WholeHistory::Part {
  public:
    Part(const BackupRepository& repository, Date cutoff, std::span<const Shared<SnapshotEntry>> likely)
        : cutoff_(cutoff), checks_(repository), reader_({}), expected_(likely.begin(), likely.end()) {}

    void read(Files files) {
        for (const auto& file : files) {
            Content content = read(file);
            items_.push_back(content.item);
            if (content.item.completedAt >= cutoff_)
                retain(std::move(content));
            else if (!latestExpired_ || content.item.completedAt >= latestExpired_->item.completedAt)
                latestExpired_ = std::move(content);
        }
    }
    const std::vector<Item>& items() const { return items_; }
    /// The entries of what completed at the cutoff or later.
    const std::vector<const SnapshotEntry*>& retained() const { return retained_; }
    /// Those of this item, if it is the latest of the others.
    std::vector<const SnapshotEntry*> entriesOfExpired(const Item& item) const {
        const bool isHeld = latestExpired_ && latestExpired_->item.id == item.id;
        return isHeld ? latestExpired_->entries : std::vector<const SnapshotEntry*>();
    }

  private:
    struct Content {
        Item item;
        std::vector<const SnapshotEntry*> entries;
        std::vector<Shared<SnapshotEntry>> held; ///< The same, when nothing else holds them.
    };

    /// Takes over what is new. Most entries stand where they stood in the list before, and are not looked up.
    void retain(Content content) {
        for (std::size_t index = 0; index < content.entries.size(); ++index) {
            const SnapshotEntry* entry = content.entries[index];
            const bool isAsBefore = index < before_.size() && before_[index] == entry;
            if (isAsBefore || !known_.insert(entry).second)
                continue;
            retained_.push_back(entry);
            if (!content.held.empty())
                held_.push_back(content.held[index]);
        }
        before_ = std::move(content.entries);
    }

    Content read(const fs::path& file) {
        rejectSymlink(file);
        const Descriptor opened = openPlainFile(file);
        auto reading = succession_.read(opened);
        if (!reading)
            return readWhole(opened, file);
        checks_.requireIdentity(reading->record, file);
        // What is as it was in the manifest before has been verified there.
        if (!reading->hasSameItems)
            BackupPaths::validateEntries(reading->entries);
        for (const std::size_t index : reading->others)
            checks_.requireReference(*reading->entries[index]);
        return {{reading->record.id, reading->record.completedAt}, std::move(reading->entries), {}};
    }

    Content readWhole(const Descriptor& opened, const fs::path& file) {
        reader_.expect(expected_);
        Snapshot snapshot = reader_.read(opened);
        checks_.requireIdentity(snapshot, file);
        BackupPaths::validateEntries(snapshot.entries);
        Content content{.item = {snapshot.id, snapshot.completedAt}, .entries = {}, .held = {}};
        for (const auto& entry : snapshot.entries) {
            checks_.requireReference(*entry);
            content.entries.push_back(&*entry);
        }
        expected_ = snapshot.entries;
        content.held = std::move(snapshot.entries);
        return content;
    }

    Date cutoff_;
    ManifestChecks checks_;
    ManifestSuccession succession_;
    ManifestReader reader_;
    std::vector<Shared<SnapshotEntry>> expected_;
    std::vector<Item> items_;
    std::vector<const SnapshotEntry*> before_; ///< Those of what was retained last.
    boost::unordered_flat_set<const SnapshotEntry*> known_;
    std::vector<const SnapshotEntry*> retained_;
    std::vector<Shared<SnapshotEntry>> held_; ///< Of those, what the reading itself does not hold.
    std::optional<Content> latestExpired_;
};

WholeHistory::WholeHistory(const BackupRepository& repository, Date cutoff)
    : WholeHistory(repository, cutoff, manifestFilesByDate(repository), {}) {
}

WholeHistory::WholeHistory(const BackupRepository& repository, Date cutoff, Files files,
                           std::span<const Shared<SnapshotEntry>> likely)
    : cutoff_(cutoff) {
    if (files.empty())
        return;
    const std::size_t processors = std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, 4);
    const std::size_t count = std::clamp<std::size_t>(files.size() / fewestFiles, 1, processors);
    for (std::size_t index = 0; index < count; ++index)
        parts_.push_back(std::make_unique<Part>(repository, cutoff, likely));
    ParallelWork workers;
    const auto failed = workers.forEach(count, [&](std::size_t index) {
        const std::size_t begin = files.size() * index / count;
        const std::size_t end = files.size() * (index + 1) / count;
        parts_[index]->read(files.subspan(begin, end - begin));
    });
    if (failed)
        std::rethrow_exception(failed->failure);
    for (const auto& part : parts_) {
        // Of equal dates the one that is read later comes later.
        for (const Item& item : part->items())
            items_.insert(std::ranges::upper_bound(items_, item.completedAt, {}, &Item::completedAt), item);
        retained_.insert(retained_.end(), part->retained().begin(), part->retained().end());
    }
    if (items_.empty() || items_.back().completedAt >= cutoff)
        return;
    for (const auto& part : parts_)
        std::ranges::copy(part->entriesOfExpired(items_.back()), std::back_inserter(retained_));
}

bool WholeHistory::isRetained(const Item& item) const {
    return &item == &items_.back() || item.completedAt >= cutoff_;
}

WholeHistory::~WholeHistory() = default;

} // namespace marrowbox
