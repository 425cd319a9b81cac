#pragma once

#include "Models/Snapshot.h"
#include "Models/SyncUnit.h"
#include "Platform/DataDirectory.h"
#include "SnapshotMount/DiskImageTool.h"
#include "SnapshotMount/MountRegistryFolder.h"
#include "SnapshotMount/OwnedRemoval.h"
#include "SnapshotMount/VolumeName.h"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/strand.hpp>
#include <memory>
#include <set>

namespace marrowbox {

/// The machine as mounts use it.
struct MountMachine {
    std::shared_ptr<SnapshotMountSystem> system;
    std::shared_ptr<DiskImageTool> images;
    LocalTime localTime;

    /// This machine, with the disk images of the system that it runs.
    static MountMachine live(const ProcessSurroundings& surroundings);
};

/// Shows retained snapshots as read-only volumes, and takes them away again. A snapshot is restored into a
/// private work folder, packed into a disk image, and the image is attached; ejecting detaches it and deletes
/// the work folder. Nothing is deleted but what proves to be this object's own, and whether a snapshot is
/// mounted is never remembered: the system is asked each time.
///
/// Every operation runs on a strand of its own and comes back to the caller's executor. Operations may
/// interleave while a tool runs; they are kept apart by the snapshot's id within the process, and by
/// mounts.lock between any two. Deliberate refusals are BackupErrors, a held lock is a LockBusyError,
/// failures of the system pass through, and a stop throws CancellationError. The object outlives its
/// operations.
class SnapshotMount {
  public:
    using Mounted = MountedSnapshot;
    using Reconciliation = MountReconciliation;

    /// Where the registry lies for whoever has no data folder to keep it in: "Marrowbox/SnapshotMounts" in
    /// the user's folder for application data. The disk is not looked at.
    static fs::path defaultRegistryDirectory(Environment environment);

    /// Makes no file; the first operation does.
    SnapshotMount(const asio::any_io_executor& executor, const fs::path& registryDirectory,
                  MountMachine machine);

    /// Mounts a snapshot of a unit whose repository lies at the destination. A failure leaves nothing behind,
    /// unless something may still be in use; reconcile then finds it.
    asio::awaitable<Mounted> mount(Snapshot snapshot, SyncUnit unit, fs::path destination,
                                   std::stop_token stop);
    /// Ejects a mount and deletes its work folder. Fails while files on the volume are open, and never
    /// forces.
    asio::awaitable<void> unmount(Mounted mounted, std::stop_token stop);
    /// The mount as it stands now; none when anything about it is not in order. Fails only by a stop.
    asio::awaitable<std::optional<Mounted>> validatedMounted(Uuid id, std::stop_token stop);
    /// Brings registry and machine together: finds the live mounts, deletes what is finished, and reports
    /// what it dares not touch. Fails only by a stop.
    asio::awaitable<Reconciliation> reconcile(std::stop_token stop);

  private:
    asio::awaitable<Mounted> mountHere(Snapshot snapshot, SyncUnit unit, fs::path destination,
                                       std::stop_token stop);
    MountEntry newEntry(const Snapshot& snapshot, const SyncUnit& unit) const;
    asio::awaitable<fs::path> build(MountEntry entry, Snapshot snapshot, fs::path destination,
                                    std::stop_token stop);
    void registerAttached(const MountEntry& entry) const;
    asio::awaitable<void> cleanUp(MountEntry entry);

    asio::awaitable<void> unmountHere(Mounted mounted, std::stop_token stop);
    MountEntry registeredEntry(const Mounted& mounted) const;
    asio::awaitable<Mounted> validatedHere(Uuid id, std::stop_token stop);
    asio::awaitable<std::optional<Mounted>> validatedOrNoneHere(Uuid id, std::stop_token stop);

    struct Finding;
    asio::awaitable<Reconciliation> reconcileHere(std::stop_token stop);
    asio::awaitable<Finding> judge(MountEntry entry, std::vector<Attachment> attachments,
                                   std::stop_token stop);
    asio::awaitable<void> reconcileRemove(MountEntry entry, std::stop_token stop);

    asio::strand<asio::any_io_executor> strand_;
    MountMachine machine_;
    MountRegistryFolder folder_;
    OwnedRemoval removal_;
    std::set<Uuid> active_; ///< Snapshots with an operation in progress. On the strand.
    bool isReconciling_ = false;
};

} // namespace marrowbox
