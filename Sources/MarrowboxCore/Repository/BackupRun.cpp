#include "Repository/BackupRun.h"

#include "Models/BackupError.h"
#include "Models/BackupPaths.h"
#include "Platform/Cancellation.h"
#include "Repository/ObjectImport.h"
#include "Repository/ObjectStatus.h"
#include "Repository/RunPlan.h"
#include "Repository/WorkFolder.h"

#include <algorithm>

namespace marrowbox {

namespace {

/// Keeps the work folder to about one batch of files.
constexpr std::size_t batchSize = 32;

/// Only the latest snapshot counts, though all of history has to be readable. What was only needed to decide,
/// the old listing and the old snapshot, is gone when this returns.
RunPlan planAgainstHistory(const BackupRepository& repository, std::vector<SourceEntry> listing) {
    const auto previous = repository.latestSnapshot(listing);
    ObjectStatus objects(repository.objectPaths());
    const auto hasObject = [&](const SnapshotEntry& entry) { return objects.hasObject(entry); };
    std::span<const Shared<SnapshotEntry>> known;
    if (previous)
        known = previous->entries;
    return planRun(std::move(listing), known, hasObject);
}

std::vector<SourceEntry> batchAt(std::span<const SourceEntry> downloads, std::size_t offset) {
    const auto rest = downloads.subspan(offset);
    const auto batch = rest.first(std::min(batchSize, rest.size()));
    return {batch.begin(), batch.end()};
}

std::string downloadingText(std::size_t offset, std::size_t count, std::size_t total) {
    return "Downloading " + std::to_string(offset + 1) + "–" + std::to_string(offset + count) + " of " +
           std::to_string(total) + " changed files…";
}

void take(SnapshotEntry entry, RunPlan& plan) {
    plan.summary.downloadedBytes += entry.storedSize;
    if (entry.source.isExport())
        ++plan.summary.exported;
    plan.entries.emplace_back(std::move(entry));
}

/// Fetches the plan's downloads into the work folder and the store, batch by batch, and adds their entries.
asio::awaitable<RunPlan> fetch(RunOrder order, fs::path workFolder, RunPlan plan) {
    const std::vector<SourceEntry> downloads = std::exchange(plan.downloads, {});
    ObjectImport import(order.repository);
    for (std::size_t offset = 0; offset < downloads.size(); offset += batchSize) {
        throwIfCancelled(order.stop);
        const std::vector<SourceEntry> batch = batchAt(downloads, offset);
        std::string text = downloadingText(offset, batch.size(), downloads.size());
        co_await order.progress(std::move(text));
        co_await order.source->download(batch, workFolder, order.stop);
        // Downloads take their time, and the destination may be another one by now.
        order.repository.validate();
        for (auto& entry : import.importFiles(batch, workFolder, order.stop))
            take(std::move(entry), plan);
    }
    import.synchronizeFolders();
    co_return plan;
}

void requireUnchanged(const RunPlan& plan, const std::vector<SourceEntry>& listing) {
    if (!holdsSameItems(plan.entries, listing))
        throw BackupError(
            "Google Drive changed while this snapshot was being made. Nothing was published; try "
            "again to capture a consistent folder listing.");
}

Snapshot snapshotOf(RunPlan plan, const Uuid& id, const RunOrder& order, Date startedAt) {
    const auto path = [](const auto& entry) { return entry->source.path.view(); };
    // A listing that is in order already needs one look and no sort.
    if (!std::ranges::is_sorted(plan.entries, {}, path))
        std::ranges::sort(plan.entries, {}, path);
    return {.id = id,
            .unitID = order.repository.unitID(),
            .startedAt = startedAt,
            .completedAt = order.clock(),
            .entries = std::move(plan.entries),
            .summary = plan.summary};
}

} // namespace

asio::awaitable<Snapshot> runBackup(RunOrder order) {
    const Date startedAt = order.clock();
    const RepositoryLock lock = order.repository.lock();
    co_await order.progress("Reading Google Drive…");
    std::vector<SourceEntry> listing = co_await order.source->inventory(order.stop);
    BackupPaths::validateEntries(listing);
    RunPlan plan = planAgainstHistory(order.repository, std::move(listing));
    const Uuid id = Uuid::random();
    const WorkFolder work(order.repository, id);
    plan = co_await fetch(order, work.path(), std::move(plan));
    co_await order.progress("Verifying the backup…");
    {
        const std::vector<SourceEntry> again = co_await order.source->inventory(order.stop);
        requireUnchanged(plan, again);
    }
    throwIfCancelled(order.stop);
    Snapshot snapshot = snapshotOf(std::move(plan), id, order, startedAt);
    order.repository.commit(snapshot);
    co_return snapshot;
}

} // namespace marrowbox
