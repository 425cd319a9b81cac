// Bringing the registry and the machine together.
#include "SnapshotMount/SnapshotMount.h"

#include "Models/BackupError.h"
#include "Platform/AtomicLeftovers.h"
#include "Platform/Cancellation.h"
#include "Platform/HeldFlag.h"
#include "Repository/LockBusyError.h"
#include "SnapshotMount/ActiveSnapshot.h"

namespace marrowbox {

/// What a pass found of one entry.
struct SnapshotMount::Finding {
    std::optional<Mounted> mounted;
    std::optional<std::string> issue;
};

asio::awaitable<SnapshotMount::Reconciliation> SnapshotMount::reconcileHere(std::stop_token stop) {
    if (isReconciling_)
        co_return Reconciliation{};
    const HeldFlag reconciling(isReconciling_);
    std::optional<RepositoryLock> lock;
    MountRegistry registry;
    std::vector<Attachment> attachments;
    try {
        folder_.ensureDirectories();
        lock.emplace(folder_.lock());
        registry = folder_.load();
        attachments = co_await machine_.images->attached(stop);
    } catch (const CancellationError&) {
        throw;
    } catch (const LockBusyError&) {
        // A mount is under way; the next pass sees more.
        co_return Reconciliation{};
    } catch (const std::exception& failure) {
        co_return Reconciliation{.issue =
                                     std::string("Snapshot mount recovery was skipped: ") + failure.what()};
    }
    // Under the lock nobody else is replacing the registry, and the folder was proved to be the user's own.
    removeAtomicLeftovers(folder_.registryFile());
    Reconciliation reconciliation{.isAuthoritative = true};
    for (std::size_t position = 0; position < registry.entries.size(); ++position) {
        Finding finding = co_await judge(registry.entries[position], attachments, stop);
        if (finding.mounted)
            reconciliation.mounted.push_back(std::move(*finding.mounted));
        // Only the first is shown; the others come back on the next pass if they still hold.
        if (!reconciliation.issue)
            reconciliation.issue = std::move(finding.issue);
    }
    co_return reconciliation;
}

/// Never fails but by a stop: one bad entry does not stop the others.
asio::awaitable<SnapshotMount::Finding>
SnapshotMount::judge(MountEntry entry, std::vector<Attachment> attachments, std::stop_token stop) {
    if (active_.contains(entry.id))
        co_return Finding{};
    try {
        folder_.validateWhereItStands(entry);
    } catch (const std::exception&) {
        co_return Finding{.issue = "Invalid snapshot mount registry entry was retained."};
    }
    const Attachment* attachment = attachmentOf(entry, attachments);
    if (attachment != nullptr && attachment->mountPoint)
        co_return Finding{.mounted = mountedFrom(entry, *attachment->mountPoint)};
    if (attachment != nullptr)
        co_return Finding{.issue = "A snapshot image is attached but not mounted; its files were kept."};
    try {
        co_await reconcileRemove(entry, stop);
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& failure) {
        co_return Finding{.issue = failure.what()};
    }
    co_return Finding{};
}

asio::awaitable<void> SnapshotMount::reconcileRemove(MountEntry entry, std::stop_token stop) {
    if (active_.contains(entry.id))
        co_return; // something took the entry over
    const ActiveSnapshot active(active_, entry.id);
    // The pass may have been long; an image that came up meanwhile is adopted by the next one.
    const auto attachments = co_await machine_.images->attached(stop);
    if (attachmentOf(entry, attachments) != nullptr)
        co_return;
    co_await removal_.remove(entry, stop);
}

} // namespace marrowbox
