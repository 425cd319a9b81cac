/// One operation on mounts, as a program of its own for tests that kill it or fail its calls:
/// marrowbox-crash-mount REGISTRY RUNTIME LIST JOB [DISK UNIT]. The list of mounts is a file, or the
/// machine's own for an empty text. "mount" mounts the only snapshot of the unit on the disk, "eject" ejects
/// the first one in the registry, and "reconcile" does what a start does. Ends with 0 when the job is done,
/// and with 3 and the failure's words when it was refused or something was left for later.

#include "Program/MountPlace.h"

#include "Models/BackupError.h"
#include "Repository/BackupRepository.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

using namespace marrowbox;

constexpr int refused = 3;

template <typename Result>
Result finish(asio::thread_pool& threads, asio::awaitable<Result> work) {
    return asio::co_spawn(threads, std::move(work), asio::use_future).get();
}

void mount(asio::thread_pool& threads, SnapshotMount& mounts, const fs::path& disk, const Uuid& unitID) {
    SyncUnit unit;
    unit.id = unitID;
    unit.name = "Papers & more";
    finish(threads, mounts.mount(BackupRepository(disk, unitID).snapshots().at(0), unit, disk, {}));
}

void eject(asio::thread_pool& threads, SnapshotMount& mounts, const test::MountPlace& place) {
    const MountEntry entry = place.folder().load().entries.at(0);
    finish(threads, mounts.unmount(mountedFrom(entry, entry.volume.value().path()), {}));
}

void reconcile(asio::thread_pool& threads, SnapshotMount& mounts) {
    const auto found = finish(threads, mounts.reconcile({}));
    if (found.issue)
        throw BackupError(*found.issue);
    if (!found.isAuthoritative)
        throw BackupError("nothing certain");
}

void work(const test::MountPlace& place, std::string_view job, char** rest) {
    asio::thread_pool threads(2);
    const auto mounts = place.start(threads.get_executor());
    if (job == "mount")
        mount(threads, *mounts, rest[0], Uuid::parse(rest[1]).value());
    else if (job == "eject")
        eject(threads, *mounts, place);
    else
        reconcile(threads, *mounts);
}

} // namespace

int main(int count, char** words) {
    if (count < 5)
        return EXIT_FAILURE;
    const std::string list = words[3];
    const test::MountPlace place{words[1], words[2],
                                 list.empty() ? std::nullopt : std::optional<fs::path>(list)};
    try {
        work(place, words[4], words + 5);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return refused;
    }
    return EXIT_SUCCESS;
}
