#include "BackedUpUnit.h"
#include "KillSwitch.h"
#include "MountWorld.h"

#include "Platform/Files.h"
#include "Repository/BackupRepository.h"
#include "Repository/LockBusyError.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

const std::string cannotPrepare =
    "Could not prepare the read-only volume. Make sure your Mac has enough free "
    "space for the selected snapshot.";
const std::string cannotMount = "macOS could not mount the snapshot. You can still restore it to a folder.";
const std::string ambiguous = "macOS returned ambiguous attach state.";

struct MountAttempt {
    test::MountWorld world;
    test::BackedUpUnit backup{world.scratch / "disk"};

    asio::awaitable<SnapshotMount::Mounted> mount(std::stop_token stop = {}) {
        return world.mounts.mount(backup.snapshot, backup.unit, backup.destination, std::move(stop));
    }
    SnapshotMount::Mounted run() { return world.run(mount()); }
    template <typename Error = BackupError>
    std::string refused() {
        return test::thrown<Error>([&] { run(); });
    }
    /// Does something right before the next such call. Nothing is killed.
    static void whenAbout(std::string_view call, const fs::path& path, std::function<void()> action) {
        test::killBefore([=, isDone = false](std::string_view made, const std::string& about) mutable {
            if (made == call && about == path && !std::exchange(isDone, true))
                action();
            return false;
        });
    }
    ~MountAttempt() { test::killBefore({}); }

    /// The one work folder.
    fs::path workFolder() const {
        const auto names = directoryNames(world.folder.workRoot());
        EXPECT_EQ(names.size(), 1u);
        return world.folder.workRoot() / names.at(0);
    }
    void expectNothingLeft() const {
        EXPECT_TRUE(directoryNames(world.folder.workRoot()).empty());
        EXPECT_TRUE(world.folder.load().entries.empty());
    }
    void expectEverythingKept() const {
        EXPECT_TRUE(fs::exists(workFolder() / ".marrowbox-mount.json"));
        EXPECT_EQ(world.folder.load().entries.size(), 1u);
    }
};

} // namespace

TEST(Mount, restoresPacksAttachesAndRegisters) {
    MountAttempt attempt;
    const auto mounted = attempt.run();
    const fs::path workFolder = attempt.workFolder();
    EXPECT_EQ(mounted.id, attempt.backup.snapshot.id);
    EXPECT_EQ(mounted.unitID, attempt.backup.unit.id);
    EXPECT_EQ(mounted.displayName, "Marrowbox Papers  more 11-21 1504");
    EXPECT_EQ(mounted.volume, "/Volumes/Snapshot");
    EXPECT_EQ(mounted.workingDirectory, workFolder);
    EXPECT_TRUE(Uuid::parse(workFolder.filename().string()));
    attempt.backup.expectWholeSnapshot(workFolder / "Files");
    EXPECT_EQ(linkStatus(workFolder)->st_mode, mode_t(S_IFDIR | 0700));
    const std::vector<ToolCommand> expected{
        {"/usr/bin/hdiutil",
         {"create", "-quiet", "-srcfolder", workFolder / "Files", "-format", "UDRO", "-fs", "HFS+",
          "-volname", mounted.displayName, workFolder / "Snapshot.dmg"}},
        {"/usr/bin/hdiutil", {"attach", "-readonly", "-plist", workFolder / "Snapshot.dmg"}}};
    EXPECT_EQ(attempt.world.machine->calls, expected);
}

TEST(Mount, recordsTheAttemptFirstAndTheVolumeLastAndLeavesTheMarker) {
    MountAttempt attempt;
    MountRegistry during;
    attempt.world.machine->answerOnce("hdiutil create", [&](const ToolCommand& command) {
        during = attempt.world.folder.load();
        return attempt.world.machine->usual(command);
    });
    attempt.run();
    ASSERT_EQ(during.entries.size(), 1u);
    EXPECT_EQ(during.entries[0].phase, MountPhase::preparing);
    EXPECT_EQ(during.entries[0].volume, std::nullopt);
    MountEntry attached = during.entries[0];
    attached.phase = MountPhase::attached;
    attached.volume = FileURL{"file:///Volumes/Snapshot/"};
    EXPECT_EQ(attempt.world.folder.load().entries, std::vector{attached});
    EXPECT_EQ(attempt.world.folder.readMarker(attempt.workFolder()), during.entries[0]);
}

TEST(Mount, holdsTheRepositoryForTheRestoreAlone) {
    MountAttempt attempt;
    attempt.world.machine->answerOnce("hdiutil create", [&](const ToolCommand& command) {
        const BackupRepository repository(attempt.backup.destination, attempt.backup.unit.id);
        EXPECT_NO_THROW(repository.lock());
        return attempt.world.machine->usual(command);
    });
    EXPECT_NO_THROW(attempt.run());
}

TEST(Mount, ofARegisteredSnapshotIsRefused) {
    MountAttempt attempt;
    attempt.run();
    const std::string words = attempt.world.refusal<BackupError>([&] { attempt.run(); });
    EXPECT_EQ(words,
              "This snapshot already has registered mount state. Reconcile or eject it before mounting "
              "again.");
}

TEST(Mount, ofASnapshotUnderWayFailsAtOnceAndLeavesTheFirstAlone) {
    MountAttempt attempt;
    const auto gate = attempt.world.machine->hold("hdiutil create", attempt.world.context.get_executor());
    const auto first = attempt.world.start(attempt.mount());
    attempt.world.runUntilReached(*gate);
    const auto second = attempt.world.start(attempt.mount());
    while (!second->isDone)
        attempt.world.context.run_one();
    EXPECT_EQ(test::thrown<BackupError>([&] { second->get(); }),
              "This snapshot mount operation is already in progress.");
    gate->letGo();
    attempt.world.finish();
    EXPECT_EQ(first->get().volume, "/Volumes/Snapshot");
}

TEST(Mount, ofAnotherSnapshotIsBusyWhileOneIsMade) {
    MountAttempt attempt;
    const auto gate = attempt.world.machine->hold("hdiutil create", attempt.world.context.get_executor());
    const auto first = attempt.world.start(attempt.mount());
    attempt.world.runUntilReached(*gate);
    attempt.backup.snapshot.id = Uuid::random();
    const auto second = attempt.world.start(attempt.mount());
    while (!second->isDone)
        attempt.world.context.run_one();
    EXPECT_EQ(test::thrown<LockBusyError>([&] { second->get(); }),
              "Another snapshot mount operation is still finishing. Try again in a moment.");
    gate->letGo();
    attempt.world.finish();
    EXPECT_NO_THROW(first->get());
}

TEST(Mount, isSkippedByAReconciliationWhileItIsUnderWay) {
    MountAttempt attempt;
    const auto gate = attempt.world.machine->hold("hdiutil create", attempt.world.context.get_executor());
    const auto mount = attempt.world.start(attempt.mount());
    attempt.world.runUntilReached(*gate);
    const auto pass = attempt.world.start(attempt.world.mounts.reconcile({}));
    while (!pass->isDone)
        attempt.world.context.run_one();
    EXPECT_EQ(pass->get(), SnapshotMount::Reconciliation{});
    gate->letGo();
    attempt.world.finish();
    EXPECT_NO_THROW(mount->get());
}

TEST(Mount, leavesNothingWhenTheRepositoryIsNotInOrder) {
    MountAttempt attempt;
    fs::remove(attempt.backup.root() / "Repository.json");
    EXPECT_EQ(attempt.refused(),
              "The backup destination is unavailable or its identity changed. Reconnect the "
              "original disk or NAS share.");
    attempt.expectNothingLeft();
}

TEST(Mount, leavesNothingWhenTheRepositoryIsInUse) {
    MountAttempt attempt;
    const auto lock = BackupRepository(attempt.backup.destination, attempt.backup.unit.id).lock();
    EXPECT_EQ(attempt.refused<LockBusyError>(),
              "This backup is already in use. Wait for the other job to finish.");
    attempt.expectNothingLeft();
}

TEST(Mount, leavesNothingOfASnapshotThatCannotBeRestored) {
    MountAttempt attempt;
    writeAll(openFile(attempt.backup.objectOf("twin.txt"), O_WRONLY), "T");
    EXPECT_TRUE(attempt.refused().starts_with("Integrity verification failed for “"));
    attempt.expectNothingLeft();
}

TEST(Mount, leavesNothingWhenTheImageCannotBeMade) {
    MountAttempt attempt;
    attempt.world.machine->answer("hdiutil create", ProcessRunner::Result{1, "No space left on device"});
    EXPECT_EQ(attempt.refused(), cannotPrepare);
    attempt.expectNothingLeft();
}

TEST(Mount, leavesNothingWhenTheImageCannotBeAttached) {
    MountAttempt attempt;
    attempt.world.machine->answer("hdiutil attach", ProcessRunner::Result{1, ""});
    EXPECT_EQ(attempt.refused(), cannotMount);
    attempt.expectNothingLeft();
}

TEST(Mount, keepsAnImageThatIsAttachedWithoutAMountPoint) {
    MountAttempt attempt;
    attempt.world.machine->answer("hdiutil attach", [&](const ToolCommand& command) {
        attempt.world.machine->attached = {{command.arguments.back(), std::nullopt}};
        return ProcessRunner::Result{
            0, readFile(fs::path(MARROWBOX_TEST_DATA) / "attach-without-mount-point.plist")};
    });
    EXPECT_EQ(attempt.refused(), cannotMount);
    attempt.expectEverythingKept();
    EXPECT_EQ(attempt.world.unchangingReconcile().issue,
              "A snapshot image is attached but not mounted; its files were kept.");
}

TEST(Mount, keepsAnAttachedImageWhoseAnswerCannotBeUnderstood) {
    MountAttempt attempt;
    attempt.world.machine->answer("hdiutil attach", [&](const ToolCommand& command) {
        attempt.world.machine->usual(command);
        return ProcessRunner::Result{0, "<plist><array/></plist>"};
    });
    EXPECT_EQ(attempt.refused(), ambiguous);
    attempt.expectEverythingKept();
    const auto adopted = attempt.world.unchangingReconcile();
    EXPECT_EQ(adopted.mounted.size(), 1u);
    EXPECT_EQ(adopted.issue, std::nullopt);
}

TEST(Mount, raisesItsOwnErrorWhenTheCleanUpFailsToo) {
    MountAttempt attempt;
    attempt.world.machine->answer("hdiutil create", ProcessRunner::Result{1, ""});
    attempt.world.machine->answerOnce("lsof", ProcessRunner::Result{0, "p9\n"});
    EXPECT_EQ(attempt.refused(), cannotPrepare);
    attempt.expectEverythingKept();
    attempt.world.run(attempt.world.mounts.reconcile({}));
    attempt.expectNothingLeft();
}

TEST(Mount, keepsEverythingWhenTheInventoryFailsDuringTheCleanUp) {
    MountAttempt attempt;
    attempt.world.machine->answer("hdiutil create", ProcessRunner::Result{1, ""});
    attempt.world.machine->answer("hdiutil info", ProcessRunner::Result{1, ""});
    EXPECT_EQ(attempt.refused(), cannotPrepare);
    attempt.expectEverythingKept();
    EXPECT_EQ(attempt.world.machine->count("lsof"), 0u);
}

TEST(Mount, keepsEverythingWhenNoToolCanBeStarted) {
    MountAttempt attempt;
    attempt.world.machine->loseTools();
    EXPECT_TRUE(attempt.refused<std::system_error>().starts_with("the machine is gone"));
    attempt.expectEverythingKept();
}

TEST(Mount, thatIsCancelledLeavesNothingAndIsPossibleAgain) {
    for (const std::string call : {"hdiutil create", "hdiutil attach"}) {
        MountAttempt attempt;
        std::stop_source stop;
        attempt.world.machine->answerOnce(call, [&](const ToolCommand&) -> ProcessRunner::Result {
            stop.request_stop();
            throw CancellationError();
        });
        EXPECT_THROW(attempt.world.run(attempt.mount(stop.get_token())), CancellationError) << call;
        attempt.expectNothingLeft();
        EXPECT_NO_THROW(attempt.run());
    }
}

TEST(Mount, thatIsCancelledBeforeTheRestoreLeavesNothing) {
    MountAttempt attempt;
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(attempt.world.run(attempt.mount(stop.get_token())), CancellationError);
    attempt.expectNothingLeft();
}

TEST(Mount, thatCannotBeRecordedMakesNothing) {
    MountAttempt attempt;
    const fs::path registry = attempt.world.folder.registryFile();
    // A folder takes the registry's place at the moment of the rename; the checks before saw nothing.
    attempt.whenAbout("rename", registry, [&] { fs::create_directory(registry); });
    EXPECT_NE(attempt.refused<std::system_error>(), "");
    EXPECT_TRUE(directoryNames(attempt.world.folder.workRoot()).empty());
    EXPECT_TRUE(attempt.world.machine->calls.empty());
    fs::remove(registry);
    EXPECT_NO_THROW(attempt.run()) << "the snapshot is not taken for one under way";
}

TEST(Mount, thatIsAttachedAndCannotBeRecordedIsKeptAndFoundAgain) {
    MountAttempt attempt;
    const fs::path registry = attempt.world.folder.registryFile();
    const fs::path aside = attempt.world.scratch / "aside";
    attempt.world.machine->answerOnce("hdiutil attach", [&](const ToolCommand& command) {
        attempt.whenAbout("rename", registry, [&] {
            fs::rename(registry, aside);
            fs::create_directory(registry);
        });
        return attempt.world.machine->usual(command);
    });
    EXPECT_NE(attempt.refused<std::system_error>(), "");
    fs::remove(registry);
    fs::rename(aside, registry);
    attempt.expectEverythingKept();
    EXPECT_EQ(attempt.world.machine->count("lsof"), 0u);
    EXPECT_EQ(attempt.world.unchangingReconcile().mounted.size(), 1u);
}

TEST(Mount, deletesNoFolderThatItDidNotMake) {
    MountAttempt attempt;
    test::killBefore([&](std::string_view call, const std::string& path) {
        if (call == "mkdir" && fs::path(path).parent_path() == attempt.world.folder.workRoot())
            fs::create_directories(fs::path(path) / "mine");
        return false;
    });
    EXPECT_NE(attempt.refused<std::system_error>(), "");
    test::killBefore({});
    EXPECT_TRUE(fs::exists(attempt.workFolder() / "mine"));
    EXPECT_EQ(attempt.world.unchangingReconcile().issue,
              "Invalid snapshot mount registry entry was retained.");
}

TEST(Mount, keepsAnEntryThatALaterAttemptMade) {
    MountAttempt attempt;
    const MountEntry other = attempt.world.prepareMounted("/Volumes/Other");
    attempt.run();
    const auto entries = attempt.world.folder.load().entries;
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0], other);
}

} // namespace marrowbox
