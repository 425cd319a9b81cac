// Making a snapshot browsable.
#include "SnapshotMount/SnapshotMount.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "Repository/BackupRepository.h"
#include "SnapshotMount/ActiveSnapshot.h"

#include <algorithm>

namespace marrowbox {

namespace {

/// The objects of a repository lie under their content's names, so the tree is laid out first. The
/// repository's lock is held for this alone, and not while the image is made.
void restoreFiles(const Snapshot& snapshot, const fs::path& destination, const Uuid& unitID,
                  const fs::path& files, const std::stop_token& stop) {
    const BackupRepository repository(destination, unitID);
    const RepositoryLock lock = repository.lock();
    repository.restore(snapshot, files, stop);
}

} // namespace

asio::awaitable<SnapshotMount::Mounted> SnapshotMount::mountHere(Snapshot snapshot, SyncUnit unit,
                                                                 fs::path destination, std::stop_token stop) {
    const ActiveSnapshot active(active_, snapshot.id);
    folder_.ensureDirectories();
    const RepositoryLock lock = folder_.lock();
    MountRegistry registry = folder_.load();
    if (std::ranges::find(registry.entries, snapshot.id, &MountEntry::id) != registry.entries.end())
        throw BackupError("This snapshot already has registered mount state. Reconcile or eject it before "
                          "mounting again.");
    MountEntry entry = newEntry(snapshot, unit);
    registry.entries.push_back(entry);
    // On record before the disk holds anything else of it.
    folder_.save(registry);

    std::exception_ptr failure;
    fs::path volume;
    try {
        volume = co_await build(entry, std::move(snapshot), std::move(destination), stop);
        entry.volume = FileURL::ofFolder(volume);
        entry.phase = MountPhase::attached;
        registerAttached(entry);
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure) {
        co_await cleanUp(entry);
        std::rethrow_exception(failure);
    }
    co_return mountedFrom(entry, volume);
}

MountEntry SnapshotMount::newEntry(const Snapshot& snapshot, const SyncUnit& unit) const {
    const fs::path workFolder = folder_.workRoot() / Uuid::random().text();
    return {.id = snapshot.id,
            .unitID = unit.id,
            .displayName = volumeName(unit.name, machine_.localTime(snapshot.completedAt)),
            .workingDirectory = FileURL::ofFolder(workFolder),
            .image = FileURL::ofFile(workFolder / MountRegistryFolder::imageName)};
}

/// From an empty work folder to the mount point.
asio::awaitable<fs::path> SnapshotMount::build(MountEntry entry, Snapshot snapshot, fs::path destination,
                                               std::stop_token stop) {
    const fs::path workFolder = entry.workingDirectory.path();
    const fs::path files = workFolder / MountRegistryFolder::filesName;
    const fs::path image = entry.image.path();
    const OperatingSystem system = machine_.images->system();
    makeDirectory(workFolder, 0700);
    folder_.writeMarker(entry);
    restoreFiles(snapshot, destination, entry.unitID, files, stop);

    const bool isCreated = co_await machine_.images->create(files, entry.displayName, image, stop);
    if (!isCreated)
        throw BackupError(worded("Could not prepare the read-only volume. Make sure your Mac has enough free "
                                 "space for the selected snapshot.",
                                 system));
    const auto mountPoint = co_await machine_.images->attach(image, entry.displayName, stop);
    if (!mountPoint)
        throw BackupError(
            worded("macOS could not mount the snapshot. You can still restore it to a folder.", system));
    co_return *mountPoint;
}

void SnapshotMount::registerAttached(const MountEntry& entry) const {
    MountRegistry registry = folder_.load();
    std::erase_if(registry.entries, [&](const MountEntry& held) { return held.id == entry.id; });
    registry.entries.push_back(entry);
    folder_.save(registry);
}

/// After a failed mount. What cannot be removed now stays registered for a reconciliation, and its reasons
/// are dropped: the caller is told what went wrong first. It ignores a stop, which may be that very reason.
asio::awaitable<void> SnapshotMount::cleanUp(MountEntry entry) {
    try {
        const auto attachments = co_await machine_.images->attached({});
        if (attachmentOf(entry, attachments) != nullptr)
            co_return;
        co_await removal_.remove(entry, {});
    } catch (const std::exception&) {
    }
}

} // namespace marrowbox
