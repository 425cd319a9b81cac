// Volumes for real, with the tools of this machine.
#include "LinuxWorld.h"
#include "Reconciliations.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "Repository/LockBusyError.h"
#include "SnapshotMount/ProcessEnd.h"
#include "Support/Thrown.h"
#include "Support/TreeState.h"

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

namespace marrowbox {

namespace {

class LinuxVolume : public ::testing::Test {
  protected:
    void SetUp() override {
        if (const auto reason = test::reasonForNoVolumes())
            GTEST_SKIP() << *reason;
        world.emplace();
        mounts = world->start();
    }

    std::string refusedEject(const SnapshotMount::Mounted& mounted) {
        return test::thrown<BackupError>([&] { test::await(mounts->unmount(mounted, {})); });
    }
    SnapshotMount::Reconciliation reconcile() { return test::await(mounts->reconcile({})); }

    std::optional<test::LinuxWorld> world;
    std::unique_ptr<SnapshotMount> mounts;
};

/// Names this program as the server of every mount.
class LingeringServer final : public SnapshotMountSystem {
  public:
    explicit LingeringServer(std::shared_ptr<SnapshotMountSystem> machine) : machine_(std::move(machine)) {}
    asio::awaitable<ProcessRunner::Result> run(fs::path executable, std::vector<std::string> arguments,
                                               std::map<std::string, std::string> environment,
                                               std::stop_token stop) override {
        return machine_->run(std::move(executable), std::move(arguments), std::move(environment),
                             std::move(stop));
    }
    std::vector<Descriptor> processesWithArguments(const std::vector<std::string>&) const override {
        wasAsked = true;
        std::vector<Descriptor> servers;
        servers.emplace_back(static_cast<int>(::syscall(SYS_pidfd_open, ::getpid(), 0)));
        return servers;
    }
    mutable std::atomic<bool> wasAsked = false;

  private:
    std::shared_ptr<SnapshotMountSystem> machine_;
};

int errorOf(int result) {
    return result < 0 ? errno : 0;
}

} // namespace

TEST_F(LinuxVolume, holdsEveryFileOfTheSnapshotAndNothingElse) {
    const auto mounted = world->mount(*mounts);
    EXPECT_EQ(mounted.id, world->backup.snapshot.id);
    EXPECT_EQ(mounted.unitID, world->backup.unit.id);
    EXPECT_EQ(mounted.displayName,
              volumeName("Papers & more", systemLocalTime()(world->backup.snapshot.completedAt)));
    EXPECT_EQ(mounted.volume, world->runtime / "marrowbox" / mounted.displayName);
    world->backup.expectWholeSnapshot(mounted.volume);
    world->backup.expectWholeSnapshot(mounted.workingDirectory / "Files");
}

TEST_F(LinuxVolume, cannotBeWrittenTo) {
    const fs::path volume = world->mount(*mounts).volume;
    EXPECT_EQ(errorOf(::open((volume / "twin.txt").c_str(), O_WRONLY | O_CLOEXEC)), EROFS);
    EXPECT_EQ(errorOf(::open((volume / "new").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)), EROFS);
    EXPECT_EQ(errorOf(::mkdir((volume / "new").c_str(), 0700)), EROFS);
    EXPECT_EQ(errorOf(::unlink((volume / "twin.txt").c_str())), EROFS);
    EXPECT_EQ(errorOf(::rename((volume / "twin.txt").c_str(), (volume / "new").c_str())), EROFS);
}

TEST_F(LinuxVolume, isRegisteredAsAttachedWhileItsMarkerStaysAsItWasWritten) {
    const auto mounted = world->mount(*mounts);
    const auto registry = world->folder().load();
    ASSERT_EQ(registry.entries.size(), 1u);
    EXPECT_EQ(registry.entries[0].phase, MountPhase::attached);
    EXPECT_EQ(registry.entries[0].volume->path(), mounted.volume);
    const MountEntry marker = world->folder().readMarker(mounted.workingDirectory);
    EXPECT_EQ(marker.phase, MountPhase::preparing);
    EXPECT_EQ(marker.volume, std::nullopt);
}

TEST_F(LinuxVolume, isPrivateToItsUser) {
    const auto mounted = world->mount(*mounts);
    for (const fs::path& folder :
         {world->directory, world->workRoot(), mounted.workingDirectory, world->runtime / "marrowbox"})
        EXPECT_EQ(linkStatus(folder)->st_mode, mode_t(S_IFDIR | 0700)) << folder;
}

TEST_F(LinuxVolume, isEjectedWithItsServerItsMountPointAndItsWork) {
    const auto mounted = world->mount(*mounts);
    test::await(mounts->unmount(mounted, {}));
    EXPECT_TRUE(world->hasNoWork());
    EXPECT_FALSE(fs::exists(mounted.volume));
    EXPECT_TRUE(world->machine->processesWithArguments({mounted.volume}).empty());
    EXPECT_EQ(refusedEject(mounted), "This snapshot mount is no longer registered.");
}

TEST_F(LinuxVolume, staysWhileAFileIsOpenAndIsEjectedAfterwards) {
    const auto mounted = world->mount(*mounts);
    const auto registered = world->folder().load();
    Descriptor open = openFile(mounted.volume / "twin.txt", O_RDONLY);
    EXPECT_EQ(refusedEject(mounted),
              "The snapshot is in use. Close files opened from it and try ejecting again.");
    EXPECT_EQ(world->folder().load(), registered);
    world->backup.expectWholeSnapshot(mounted.volume);
    open.close();
    test::await(mounts->unmount(mounted, {}));
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(LinuxVolume, isFoundAgainByALaterRunOfTheProgram) {
    const auto mounted = world->mount(*mounts);
    mounts = world->start();
    EXPECT_EQ(reconcile(), (SnapshotMount::Reconciliation{.mounted = {mounted}, .isAuthoritative = true}));
    EXPECT_EQ(test::await(mounts->validatedMounted(mounted.id, {})), mounted);
    test::await(mounts->unmount(mounted, {}));
    EXPECT_EQ(reconcile(), test::nothingToTell);
}

TEST_F(LinuxVolume, thatARestartOfTheMachineTookAwayIsCleanedUp) {
    const auto mounted = world->mount(*mounts);
    world->unmountBehindTheBack(mounted);
    mounts = world->start();
    EXPECT_EQ(test::await(mounts->validatedMounted(mounted.id, {})), std::nullopt);
    EXPECT_EQ(refusedEject(mounted), "This snapshot is no longer mounted. Recovery will clean it up safely.");
    EXPECT_EQ(reconcile(), test::nothingToTell);
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(LinuxVolume, whoseServerWasKilledIsListedAndEjectedLikeAnyOther) {
    const auto mounted = world->mount(*mounts);
    auto servers = world->machine->processesWithArguments({mounted.volume});
    ASSERT_EQ(servers.size(), 1u);
    ASSERT_EQ(::syscall(SYS_pidfd_send_signal, servers[0].number(), SIGKILL, nullptr, 0), 0);
    ASSERT_TRUE(test::await(processesEnded(std::move(servers), std::chrono::seconds(60))));
    EXPECT_EQ(reconcile().mounted, std::vector{mounted});
    test::await(mounts->unmount(mounted, {}));
    EXPECT_FALSE(fs::exists(mounted.volume));
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(LinuxVolume, usesItsNameAgainAfterItWasTakenAway) {
    const auto first = world->mount(*mounts);
    world->unmountBehindTheBack(first);
    reconcile();
    EXPECT_EQ(world->mount(*mounts).volume, first.volume);
}

TEST_F(LinuxVolume, ofTheSameNameGetsANumber) {
    const auto first = world->mount(*mounts);
    world->backup.snapshot.id = Uuid::random();
    const auto second = world->mount(*mounts);
    EXPECT_EQ(second.volume, first.volume.string() + " 1");
    EXPECT_EQ(second.displayName, first.displayName);
    EXPECT_EQ(reconcile().mounted, (std::vector{first, second}));
    test::await(mounts->unmount(first, {}));
    EXPECT_EQ(reconcile().mounted, std::vector{second});
    world->backup.expectWholeSnapshot(second.volume);
}

TEST_F(LinuxVolume, isRefusedASecondTimeWhileItIsRegistered) {
    const auto mounted = world->mount(*mounts);
    EXPECT_EQ(
        test::thrown<BackupError>([&] { world->mount(*mounts); }),
        "This snapshot already has registered mount state. Reconcile or eject it before mounting again.");
    EXPECT_EQ(reconcile().mounted, std::vector{mounted});
}

TEST_F(LinuxVolume, ofAnEmptySnapshotIsEmpty) {
    world->backup.snapshot.entries.clear();
    const auto mounted = world->mount(*mounts);
    EXPECT_TRUE(fs::is_empty(mounted.volume));
    test::await(mounts->unmount(mounted, {}));
}

TEST_F(LinuxVolume, keepsItsWorkWhileAFileInItIsOpen) {
    const auto mounted = world->mount(*mounts);
    Descriptor open = openFile(mounted.workingDirectory / "Files" / "twin.txt", O_RDONLY);
    const std::string inUse = "Snapshot temporary files may still be in use and were retained.";
    EXPECT_EQ(refusedEject(mounted), inUse);
    EXPECT_EQ(reconcile(), (SnapshotMount::Reconciliation{.issue = inUse, .isAuthoritative = true}));
    open.close();
    EXPECT_EQ(reconcile(), test::nothingToTell);
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(LinuxVolume, keepsItsWorkWhileItsServerDoesNotEnd) {
    // This program stands in for a server that is slow to end. A real one that is held up would hold up every
    // program that looks at the mount, and a mount that is looked at cannot be taken away.
    const auto machine = std::make_shared<LingeringServer>(world->machine);
    mounts = world->start(world->executor(), machine, std::chrono::milliseconds(1));
    const auto mounted = world->mount(*mounts);
    Descriptor image = openFile(mounted.workingDirectory / "Snapshot.dmg", O_RDONLY);
    EXPECT_EQ(refusedEject(mounted), "Snapshot temporary files may still be in use and were retained.");
    EXPECT_TRUE(machine->wasAsked);
    EXPECT_TRUE(fs::exists(mounted.workingDirectory / "Snapshot.dmg"));
    image.close();
    EXPECT_EQ(reconcile(), test::nothingToTell);
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(LinuxVolume, isTheSameWhereALinkLeadsToTheDataFolder) {
    const fs::path way = fs::canonical(world->scratch.path()) / "way";
    fs::create_directory_symlink(world->directory.parent_path(), way);
    world->directory = way / "MountedSnapshots";
    mounts = world->start();
    const auto mounted = world->mount(*mounts);
    EXPECT_EQ(mounted.workingDirectory.parent_path(), way / "MountedSnapshots/MountWork");
    world->backup.expectWholeSnapshot(mounted.volume);
    EXPECT_EQ(reconcile().mounted, std::vector{mounted});
    Descriptor open = openFile(mounted.workingDirectory / "Files" / "twin.txt", O_RDONLY);
    EXPECT_EQ(refusedEject(mounted), "Snapshot temporary files may still be in use and were retained.");
    open.close();
    EXPECT_EQ(reconcile(), test::nothingToTell);
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(LinuxVolume, whoseMarkerWasSwappedStaysMountedAndUntouched) {
    const auto mounted = world->mount(*mounts);
    const fs::path marker = mounted.workingDirectory / ".marrowbox-mount.json";
    const std::string own = readFile(marker);
    MountEntry other = world->folder().readMarker(mounted.workingDirectory);
    other.id = Uuid::random();
    world->folder().writeMarker(other);
    const std::string before = test::treeState(world->directory);
    EXPECT_EQ(refusedEject(mounted), "Mismatched snapshot mount marker was retained.");
    EXPECT_EQ(reconcile().issue, "Invalid snapshot mount registry entry was retained.");
    EXPECT_EQ(test::await(mounts->validatedMounted(mounted.id, {})), std::nullopt);
    EXPECT_EQ(test::treeState(world->directory), before);
    world->backup.expectWholeSnapshot(mounted.volume);
    writeAll(openFile(marker, O_WRONLY | O_TRUNC), own);
    test::await(mounts->unmount(mounted, {}));
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(LinuxVolume, isGivenUpWithoutATraceWhereNothingCanServeIt) {
    // An image that is none cannot be served, and a missing FUSE device looks the same from here.
    class NoService final : public SnapshotMountSystem {
      public:
        explicit NoService(std::shared_ptr<SnapshotMountSystem> machine) : machine_(std::move(machine)) {}
        asio::awaitable<ProcessRunner::Result> run(fs::path executable, std::vector<std::string> arguments,
                                                   std::map<std::string, std::string> environment,
                                                   std::stop_token stop) override {
            if (executable.filename() == "squashfuse")
                arguments[2] = "/dev/null";
            return machine_->run(executable, arguments, environment, stop);
        }

      private:
        std::shared_ptr<SnapshotMountSystem> machine_;
    };
    mounts = world->start(world->executor(), std::make_shared<NoService>(world->machine));
    EXPECT_EQ(test::thrown<BackupError>([&] { world->mount(*mounts); }),
              "The system could not mount the snapshot. You can still restore it to a folder.");
    EXPECT_TRUE(world->hasNoWork());
    EXPECT_EQ(directoryNames(world->runtime / "marrowbox"), std::vector<std::string>{".lock"});
}

} // namespace marrowbox
