// Mounting a snapshot of 1 GB as a volume, against `cp -r` of its files.
#include "Measuring/Command.h"
#include "Measuring/Measure.h"
#include "Measuring/ScratchRepository.h"
#include "Measuring/StoredFiles.h"
#include "SnapshotMount/SnapshotMount.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <unistd.h>

namespace {

using namespace marrowbox;

constexpr std::size_t fileCount = 10'000;
constexpr std::size_t fileSize = 104 << 10;
constexpr int rounds = 3;

/// The machine with a private folder for the mount points.
MountMachine machineWith(const fs::path& runtimeFolder) {
    makeDirectory(runtimeFolder, 0700);
    ProcessSurroundings surroundings = ProcessSurroundings::ofThisProcess();
    surroundings.environment["XDG_RUNTIME_DIR"] = runtimeFolder;
    return MountMachine::live(surroundings);
}

} // namespace

int main() {
    const bench::ScratchRepository scratch("mount");
    const Snapshot snapshot = bench::storeFiles(scratch.repository(), fileCount, fileSize);
    const fs::path tree = scratch.folder() / "tree";
    const fs::path target = scratch.folder() / "target";
    scratch.repository().restore(snapshot, tree, {});
    SyncUnit unit;
    unit.id = scratch.repository().unitID();
    unit.name = "Bench";
    makeDirectory(scratch.folder() / "data", 0700);
    asio::thread_pool threads(2);
    SnapshotMount mounts(threads.get_executor(), scratch.folder() / "data" / "MountedSnapshots",
                         machineWith(scratch.folder() / "runtime"));

    const std::string copy = "cp -r " + bench::quoted(tree) + " " + bench::quoted(target);
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        ::sync();
        theirs.push_back(bench::seconds([&] { bench::runCommand(copy); }));
        fs::remove_all(target);
        ::sync();
        SnapshotMount::Mounted mounted;
        ours.push_back(bench::seconds([&] {
            auto mounting = mounts.mount(snapshot, unit, scratch.folder(), {});
            mounted = asio::co_spawn(threads, std::move(mounting), asio::use_future).get();
        }));
        asio::co_spawn(threads, mounts.unmount(mounted, {}), asio::use_future).get();
        ratios.push_back(ours.back() / theirs.back());
    }
    const bench::Ratio ratio{bench::median(ours), bench::median(theirs), bench::median(ratios)};
    return bench::reportAtMost("mount", ratio.ratio, 2.5, bench::describe(ratio));
}
