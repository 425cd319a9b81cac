#pragma once

#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "ScriptedMachine.h"
#include "SnapshotMount/HdiutilTool.h"
#include "SnapshotMount/SnapshotMount.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"
#include "Support/TreeState.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <memory>
#include <optional>

namespace marrowbox::test {

inline fs::path markerOf(const MountEntry& entry) {
    return entry.workingDirectory.path() / ".marrowbox-mount.json";
}

/// An operation under way, and later its end.
template <typename Result>
struct Outcome {
    bool isDone = false;
    std::exception_ptr failure;
    std::optional<Result> result;

    Result get() {
        EXPECT_TRUE(isDone);
        if (failure)
            std::rethrow_exception(failure);
        return std::move(*result);
    }
};

template <>
struct Outcome<void> {
    bool isDone = false;
    std::exception_ptr failure;

    void get() {
        EXPECT_TRUE(isDone);
        if (failure)
            std::rethrow_exception(failure);
    }
};

/// A registry directory of the test's own, a scripted machine, and the mounts upon both. All of it runs on
/// one thread, and only while the test waits for something.
class MountWorld {
  public:
    MountWorld();

    const ScratchFolder scratch;
    const fs::path directory = scratch / "MountedSnapshots";
    asio::io_context context;
    std::shared_ptr<ScriptedMachine> machine = std::make_shared<ScriptedMachine>();
    MountRegistryFolder folder{directory, machine};
    SnapshotMount mounts;

    /// An entry that points into the work root. Nothing of it is on disk.
    MountEntry newEntry() const;
    /// A work folder with marker, files and image, without an entry in the registry.
    MountEntry prepareWork();
    /// The same with its entry.
    MountEntry prepare();
    /// The same, attached at a mount point.
    MountEntry prepareMounted(const fs::path& mountPoint = "/Volumes/Snapshot");
    void registerEntries(std::vector<MountEntry> entries) { folder.save({.entries = std::move(entries)}); }
    SnapshotMount::Mounted mountedOf(const MountEntry& entry,
                                     const fs::path& mountPoint = "/Volumes/Snapshot") const;

    template <typename Result>
    std::shared_ptr<Outcome<Result>> start(asio::awaitable<Result> work);
    /// Lets everything that was started run to its end.
    void finish();
    /// Lets it run until a tool stands at its gate.
    void runUntilReached(const Gate& gate);
    template <typename Result>
    Result run(asio::awaitable<Result> work) {
        const auto outcome = start(std::move(work));
        finish();
        return outcome->get();
    }

    /// The words of a refusal, which must have left everything on disk as it was.
    template <typename Error, typename Work>
    std::string refusal(Work work) const {
        const std::string before = treeState(scratch.path());
        const std::string words = thrown<Error>(work);
        EXPECT_EQ(treeState(scratch.path()), before);
        return words;
    }
    template <typename Error>
    std::string refusedValidation(const MountEntry& entry, MarkerCheck check = MarkerCheck::required) const {
        return refusal<Error>([&] { folder.validate(entry, check); });
    }
    std::string refusedUnmount(const MountEntry& entry) {
        return refusal<BackupError>([&] { run(mounts.unmount(mountedOf(entry), {})); });
    }
    /// Asks for the stop while the tool runs that is called after so many others.
    void stopDuringCall(std::size_t number, std::stop_source stop);
    /// A reconciliation that must leave everything on disk as it was.
    SnapshotMount::Reconciliation unchangingReconcile();
    /// Fails the test unless each public operation refuses with these words (the one that never fails gives
    /// none), before any tool is asked and with everything on disk as it was.
    void expectEveryOperationRefuses(const std::string& words);
};

template <typename Result>
std::shared_ptr<Outcome<Result>> MountWorld::start(asio::awaitable<Result> work) {
    auto outcome = std::make_shared<Outcome<Result>>();
    if constexpr (std::is_void_v<Result>) {
        asio::co_spawn(context, std::move(work), [outcome](std::exception_ptr failure) {
            outcome->isDone = true;
            outcome->failure = failure;
        });
    } else {
        asio::co_spawn(context, std::move(work), [outcome](std::exception_ptr failure, Result result) {
            outcome->isDone = true;
            outcome->failure = failure;
            outcome->result = std::move(result);
        });
    }
    return outcome;
}

} // namespace marrowbox::test
