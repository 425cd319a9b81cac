#include "Program/MountedBackup.h"

#include "Program/GeneratedSource.h"
#include "Repository/BackupRepository.h"
#include "ScriptedMachine.h"
#include "SnapshotMount/HdiutilTool.h"
#include "Support/Coroutine.h"

#include <boost/asio/thread_pool.hpp>

namespace marrowbox::test {

namespace {

/// One run of the program, as far as mounts go.
class Mounts {
  public:
    explicit Mounts(const fs::path& destination)
        : mounts_(threads_.get_executor(), mountRegistry(destination).directory(),
                  {.system = machine_,
                   .images = std::make_shared<HdiutilTool>(machine_),
                   .localTime = [](Date) { return std::tm{}; }}) {}
    SnapshotMount* operator->() { return &mounts_; }

  private:
    std::shared_ptr<ScriptedMachine> machine_ = std::make_shared<ScriptedMachine>();
    asio::thread_pool threads_{1};
    SnapshotMount mounts_;
};

} // namespace

void mountAndEject(const fs::path& destination) {
    const SyncUnit unit = generatedUnit();
    Mounts mounts(destination);
    const Snapshot latest = BackupRepository(destination, unit.id).snapshots().back();
    const auto mounted = await(mounts->mount(latest, unit, destination, {}));
    await(mounts->unmount(mounted, {}));
}

SnapshotMount::Reconciliation reconcileMounts(const fs::path& destination) {
    return await(Mounts(destination)->reconcile({}));
}

MountRegistryFolder mountRegistry(const fs::path& destination) {
    return {destination / "Mounts", std::make_shared<ScriptedMachine>()};
}

} // namespace marrowbox::test
