#include "Demo/Volumes.h"

#include "Platform/Executors.h"
#include "SnapshotMount/SnapshotMount.h"

#include <boost/asio/this_coro.hpp>

namespace marrowbox::demo {

namespace {

/// Absent when the volume is gone.
asio::awaitable<std::optional<std::string>> refusalToEject(SnapshotMount& mounts, MountedSnapshot mounted) {
    try {
        co_await mounts.unmount(std::move(mounted), {});
    } catch (const std::exception& failure) {
        co_return failure.what();
    }
    co_return std::nullopt;
}

} // namespace

ProcessSurroundings surroundingsBelow(const fs::path& folder) {
    ProcessSurroundings surroundings = ProcessSurroundings::ofThisProcess();
    surroundings.environment.insert_or_assign("XDG_RUNTIME_DIR", folder / "Volumes");
    return surroundings;
}

asio::awaitable<std::optional<std::string>> clearVolumes(fs::path folder) {
    const auto executor = co_await asio::this_coro::executor;
    SnapshotMount mounts(executor, folder / "MountedSnapshots",
                         MountMachine::live(surroundingsBelow(folder)));
    const Wait wait = timerWait();
    std::optional<std::string> issue;
    for (int attempt = 0; attempt < ejectAttempts; ++attempt) {
        const auto found = co_await mounts.reconcile({});
        issue = found.issue;
        if (found.mounted.empty() && !issue)
            co_return std::nullopt;
        for (const MountedSnapshot& mounted : found.mounted)
            issue = co_await refusalToEject(mounts, mounted);
        if (issue)
            co_await wait(ejectPause, {});
    }
    co_return issue;
}

} // namespace marrowbox::demo
