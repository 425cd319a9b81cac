#include "Repository/WholeHistory.h"

#include "Models/BackupPaths.h"
#include "Repository/ManifestChecks.h"
#include "Repository/ManifestReader.h"
#include "Repository/ManifestSuccession.h"
#include "Repository/ParallelWork.h"
#include "Repository/PlainFile.h"
#include "Repository/WrittenManifest.h"

#include <algorithm>
#include <array>
#include <exception>
#include <thread>
#include <utility>

namespace marrowbox {

namespace {

using Files = std::span<const fs::path>;

/// Fewer are not worth another thread, which has to read the first of its manifests without a model.
constexpr std::size_t fewestFiles = 16;

/// When a manifest's run probably completed.
double guessedDate(const fs::path& file) noexcept {
    try {
        std::array<char, WrittenManifest::longestHead> head{};
        return WrittenManifest::dateIn({head.data(), readSome(openPlainFile(file), head)});
    } catch (const std::exception&) {
        return 0; // whoever reads it all will tell
    }
}

/// Manifests in the order of their dates, in which each is most like the one before.
std::vector<fs::path> inOrder(const std::vector<fs::path>& files) {
    std::vector<std::pair<double, std::size_t>> dates;
    for (std::size_t index = 0; index < files.size(); ++index)
        dates.emplace_back(guessedDate(files[index]), index);
    std::ranges::sort(dates);
    std::vector<fs::path> ordered;
    for (const auto& [date, index] : dates)
        ordered.push_back(files[index]);
    return ordered;
}

/// Of equal dates the one that is read later comes later. Gives the item's place.
std::size_t enter(std::vector<WholeHistory::Item>& items, WholeHistory::Item item) {
    const auto place =
        std::ranges::upper_bound(items, item.completedAt, {}, &WholeHistory::Item::completedAt);
    return static_cast<std::size_t>(items.insert(place, std::move(item)) - items.begin());
}

} // namespace

/// Some manifests that are read one after the other.
class WholeHistory::Part {
  public:
    explicit Part(const BackupRepository& repository) : checks_(repository), reader_({}) {}

    void read(Files files, Date cutoff) {
        for (const auto& file : files) {
            const std::size_t place = enter(items_, read(file));
            // What is not the latest of these is not the latest of all.
            const std::size_t passed = std::min(place, items_.size() - 2);
            if (items_.size() > 1 && items_[passed].completedAt < cutoff)
                forget(items_[passed]);
        }
    }
    std::vector<Item> items() { return std::move(items_); }

  private:
    static void forget(Item& item) {
        item.entries = {};
        item.held = {};
    }

    Item read(const fs::path& file) {
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
        return {reading->record.id, reading->record.completedAt, std::move(reading->entries), {}};
    }

    Item readWhole(const Descriptor& opened, const fs::path& file) {
        reader_.expect(known_);
        Snapshot snapshot = reader_.read(opened);
        checks_.requireIdentity(snapshot, file);
        BackupPaths::validateEntries(snapshot.entries);
        Item item{.id = snapshot.id, .completedAt = snapshot.completedAt, .entries = {}, .held = {}};
        for (const auto& entry : snapshot.entries) {
            checks_.requireReference(*entry);
            item.entries.push_back(&*entry);
        }
        known_ = snapshot.entries;
        item.held = std::move(snapshot.entries);
        return item;
    }

    ManifestChecks checks_;
    ManifestSuccession succession_;
    ManifestReader reader_;
    std::vector<Shared<SnapshotEntry>> known_;
    std::vector<Item> items_;
};

WholeHistory::WholeHistory(const BackupRepository& repository, Date cutoff) {
    const std::vector<fs::path> files = inOrder(manifestFiles(repository));
    const std::size_t processors = std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, 4);
    const std::size_t count = std::clamp<std::size_t>(files.size() / fewestFiles, 1, processors);
    for (std::size_t index = 0; index < count; ++index)
        parts_.push_back(std::make_unique<Part>(repository));
    ParallelWork workers;
    const auto failed = workers.forEach(count, [&](std::size_t index) {
        const std::size_t begin = files.size() * index / count;
        const std::size_t end = files.size() * (index + 1) / count;
        parts_[index]->read(Files(files).subspan(begin, end - begin), cutoff);
    });
    if (failed)
        std::rethrow_exception(failed->failure);
    for (const auto& part : parts_)
        for (auto& item : part->items())
            enter(items_, std::move(item));
}

WholeHistory::~WholeHistory() = default;

} // namespace marrowbox
