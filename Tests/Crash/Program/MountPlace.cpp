#include "Program/MountPlace.h"

#include "Program/PaperMachine.h"
#include "SnapshotMount/SquashfsTool.h"

#include <unistd.h>

namespace marrowbox::test {

std::shared_ptr<SnapshotMountSystem> MountPlace::machine() const {
    if (mountList)
        return std::make_shared<PaperMachine>(*mountList);
    return std::make_shared<LiveMountSystem>(ProcessSurroundings::ofThisProcess());
}

std::unique_ptr<SnapshotMount> MountPlace::start(const asio::any_io_executor& executor) const {
    const std::shared_ptr<SnapshotMountSystem> system = machine();
    MountPointFolder points(runtime / "marrowbox", ::getuid());
    MountMachine parts{.system = system,
                       .images = std::make_shared<SquashfsTool>(system, std::move(points)),
                       .localTime = systemLocalTime()};
    return std::make_unique<SnapshotMount>(executor, directory, std::move(parts));
}

} // namespace marrowbox::test
