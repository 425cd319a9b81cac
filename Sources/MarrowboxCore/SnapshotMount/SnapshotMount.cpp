#include "SnapshotMount/SnapshotMount.h"

#include "SnapshotMount/HdiutilTool.h"
#include "SnapshotMount/SquashfsTool.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace marrowbox {

MountMachine MountMachine::live(const ProcessSurroundings& surroundings) {
    MountMachine machine;
    machine.system = std::make_shared<LiveMountSystem>(surroundings);
    machine.localTime = systemLocalTime();
    if (hostSystem == OperatingSystem::macOS) {
        machine.images = std::make_shared<HdiutilTool>(machine.system);
        return machine;
    }
    const uid_t user = machine.system->currentUser();
    MountPointFolder mountPoints(MountPointFolder::place(surroundings.environment, user), user);
    machine.images = std::make_shared<SquashfsTool>(machine.system, std::move(mountPoints));
    return machine;
}

fs::path SnapshotMount::defaultRegistryDirectory(Environment environment) {
    environment.erase("MARROW_DATA_DIR"); // that folder is the program's, and not everybody's
    return dataDirectory(environment) / "SnapshotMounts";
}

SnapshotMount::SnapshotMount(const asio::any_io_executor& executor, const fs::path& registryDirectory,
                             MountMachine machine)
    : strand_(asio::make_strand(executor)), machine_(std::move(machine)),
      folder_(registryDirectory, machine_.system), removal_(folder_, machine_.system, machine_.images) {
}

asio::awaitable<SnapshotMount::Mounted> SnapshotMount::mount(Snapshot snapshot, SyncUnit unit,
                                                             fs::path destination, std::stop_token stop) {
    auto work = mountHere(std::move(snapshot), std::move(unit), std::move(destination), std::move(stop));
    Mounted mounted = co_await asio::co_spawn(strand_, std::move(work), asio::use_awaitable);
    co_return mounted;
}

asio::awaitable<void> SnapshotMount::unmount(Mounted mounted, std::stop_token stop) {
    auto work = unmountHere(std::move(mounted), std::move(stop));
    co_await asio::co_spawn(strand_, std::move(work), asio::use_awaitable);
}

asio::awaitable<std::optional<SnapshotMount::Mounted>> SnapshotMount::validatedMounted(Uuid id,
                                                                                       std::stop_token stop) {
    auto work = validatedOrNoneHere(id, std::move(stop));
    auto mounted = co_await asio::co_spawn(strand_, std::move(work), asio::use_awaitable);
    co_return mounted;
}

asio::awaitable<SnapshotMount::Reconciliation> SnapshotMount::reconcile(std::stop_token stop) {
    auto work = reconcileHere(std::move(stop));
    Reconciliation reconciliation = co_await asio::co_spawn(strand_, std::move(work), asio::use_awaitable);
    co_return reconciliation;
}

} // namespace marrowbox
