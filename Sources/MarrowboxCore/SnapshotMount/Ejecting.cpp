// Ejecting a mount, and proving that one is still there.
#include "SnapshotMount/SnapshotMount.h"

#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "SnapshotMount/ActiveSnapshot.h"
#include "SnapshotMount/MountPaths.h"

#include <algorithm>

namespace marrowbox {

MountEntry SnapshotMount::registeredEntry(const Mounted& mounted) const {
    const MountRegistry registry = folder_.load();
    const fs::path workFolder = standardized(mounted.workingDirectory);
    const auto found = std::ranges::find_if(registry.entries, [&](const MountEntry& entry) {
        return entry.id == mounted.id && entry.unitID == mounted.unitID &&
               entry.workingDirectory.path() == workFolder;
    });
    if (found == registry.entries.end())
        throw BackupError("This snapshot mount is no longer registered.");
    return *found;
}

asio::awaitable<void> SnapshotMount::unmountHere(Mounted mounted, std::stop_token stop) {
    const ActiveSnapshot active(active_, mounted.id);
    folder_.ensureDirectories();
    const RepositoryLock lock = folder_.lock();
    const MountEntry entry = registeredEntry(mounted);
    folder_.validate(entry, MarkerCheck::required);

    const auto before = co_await machine_.images->attached(stop);
    const Attachment* attachment = attachmentOf(entry, before);
    if (attachment == nullptr || !attachment->mountPoint)
        throw BackupError("This snapshot is no longer mounted. Recovery will clean it up safely.");
    const bool isDetached = co_await machine_.images->detach(*attachment, stop);
    if (!isDetached)
        throw BackupError("The snapshot is in use. Close files opened from it and try ejecting again.");
    const auto after = co_await machine_.images->attached(stop);
    if (attachmentOf(entry, after) != nullptr)
        throw BackupError(
            worded("macOS has not finished ejecting the snapshot. Its temporary files were kept safely.",
                   machine_.images->system()));
    co_await removal_.remove(entry, stop);
}

asio::awaitable<SnapshotMount::Mounted> SnapshotMount::validatedHere(Uuid id, std::stop_token stop) {
    folder_.ensureDirectories();
    const RepositoryLock lock = folder_.lock();
    const MountRegistry registry = folder_.load();
    const auto entry = std::ranges::find(registry.entries, id, &MountEntry::id);
    if (entry == registry.entries.end())
        throw BackupError("This snapshot mount is no longer registered.");
    folder_.validate(*entry, MarkerCheck::required);
    const auto attachments = co_await machine_.images->attached(stop);
    const Attachment* attachment = attachmentOf(*entry, attachments);
    if (attachment == nullptr || !attachment->mountPoint)
        throw BackupError("This snapshot is no longer mounted. Recovery will clean it up safely.");
    co_return mountedFrom(*entry, *attachment->mountPoint);
}

asio::awaitable<std::optional<SnapshotMount::Mounted>>
SnapshotMount::validatedOrNoneHere(Uuid id, std::stop_token stop) {
    try {
        Mounted mounted = co_await validatedHere(id, stop);
        co_return mounted;
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        // Whatever is wrong with the mount, its user is told by a reconciliation.
        co_return std::nullopt;
    }
}

} // namespace marrowbox
