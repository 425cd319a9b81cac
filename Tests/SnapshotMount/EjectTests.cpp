#include "MountWorld.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

const std::string unregistered = "This snapshot mount is no longer registered.";
const std::string unmounted = "This snapshot is no longer mounted. Recovery will clean it up safely.";

} // namespace

TEST(Unmount, detachesTheMountPointOfTheInventoryAndRemovesTheWork) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted("/Volumes/Snapshot 1");
    world.run(world.mounts.unmount(world.mountedOf(entry, "/Volumes/where it was"), {}));
    EXPECT_FALSE(fs::exists(entry.workingDirectory.path()));
    EXPECT_TRUE(world.folder.load().entries.empty());
    const std::vector<ToolCommand> expected{{"/usr/bin/hdiutil", {"info", "-plist"}},
                                            {"/usr/bin/hdiutil", {"detach", "/Volumes/Snapshot 1"}},
                                            {"/usr/bin/hdiutil", {"info", "-plist"}}};
    EXPECT_EQ(std::vector(world.machine->calls.begin(), world.machine->calls.begin() + 3), expected);
}

TEST(Unmount, leavesAVolumeInUseAsItIsUntilItIsFree) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    world.machine->answerOnce("hdiutil detach", ProcessRunner::Result{16, "Resource busy\n"});
    EXPECT_EQ(world.refusedUnmount(entry),
              "The snapshot is in use. Close files opened from it and try ejecting again.");
    EXPECT_EQ(world.machine->attached.size(), 1u);
    EXPECT_EQ(world.machine->count("hdiutil detach"), 1u) << "the retry is the user's";
    world.run(world.mounts.unmount(world.mountedOf(entry), {}));
    EXPECT_FALSE(fs::exists(entry.workingDirectory.path()));
}

TEST(Unmount, refusesAMountThatIsNotTheRegisteredOne) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    const auto refused = [&](auto change) {
        auto mounted = world.mountedOf(entry);
        change(mounted);
        return world.refusal<BackupError>([&] { world.run(world.mounts.unmount(mounted, {})); });
    };
    EXPECT_EQ(refused([](auto& mounted) { mounted.id = Uuid::random(); }), unregistered);
    EXPECT_EQ(refused([](auto& mounted) { mounted.unitID = Uuid::random(); }), unregistered);
    EXPECT_EQ(refused([](auto& mounted) { mounted.workingDirectory += "x"; }), unregistered);
    EXPECT_TRUE(world.machine->calls.empty());
}

TEST(Unmount, acceptsAnotherSpellingOfTheWorkFolder) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    auto mounted = world.mountedOf(entry);
    mounted.workingDirectory = mounted.workingDirectory / "./Files/../";
    EXPECT_NO_THROW(world.run(world.mounts.unmount(mounted, {})));
}

TEST(Unmount, leavesAnImageThatIsNotAttachedOrNotMountedToRecovery) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    EXPECT_EQ(world.refusedUnmount(entry), unmounted);
    world.machine->attached = {{entry.image.path(), std::nullopt}};
    EXPECT_EQ(world.refusedUnmount(entry), unmounted);
    EXPECT_EQ(world.machine->count("hdiutil detach"), 0u);
}

TEST(Unmount, neverDetachesAVolumeOfTheUsersOwn) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    const Attachment own{"/Users/x/Snapshot.dmg", "/Volumes/Snapshot"};
    world.machine->attached = {own};
    EXPECT_EQ(world.refusedUnmount(entry), unmounted);
    EXPECT_EQ(world.machine->attached, std::vector{own});
}

TEST(Unmount, keepsTheFilesOfAnImageThatIsStillListedAfterwards) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    world.machine->answerOnce("hdiutil detach", ProcessRunner::Result{0, ""});
    EXPECT_EQ(world.refusedUnmount(entry),
              "macOS has not finished ejecting the snapshot. Its temporary files were kept safely.");
}

TEST(Unmount, passesOnWhyTheWorkCouldNotBeRemoved) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    world.machine->answerOnce("lsof", ProcessRunner::Result{0, "p9\n"});
    EXPECT_EQ(world.refusedUnmount(entry), "Snapshot temporary files may still be in use and were retained.");
    EXPECT_TRUE(world.machine->attached.empty()) << "the volume is gone by then";
    EXPECT_EQ(world.run(world.mounts.reconcile({})), SnapshotMount::Reconciliation{.isAuthoritative = true});
    EXPECT_FALSE(fs::exists(entry.workingDirectory.path()));
}

TEST(Unmount, ofASnapshotUnderWayFailsAtOnceAndLeavesTheFirstAlone) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    const auto gate = world.machine->hold("hdiutil detach", world.context.get_executor());
    const auto first = world.start(world.mounts.unmount(world.mountedOf(entry), {}));
    world.runUntilReached(*gate);
    const auto second = world.start(world.mounts.unmount(world.mountedOf(entry), {}));
    while (!second->isDone)
        world.context.run_one();
    EXPECT_EQ(test::thrown<BackupError>([&] { second->get(); }),
              "This snapshot mount operation is already in progress.");
    gate->letGo();
    world.finish();
    EXPECT_NO_THROW(first->get());
}

TEST(Unmount, thatIsCancelledIsPossibleAgain) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    std::stop_source stop;
    world.machine->answerOnce("hdiutil info", [&](const ToolCommand& command) {
        stop.request_stop();
        return world.machine->usual(command);
    });
    EXPECT_THROW(world.run(world.mounts.unmount(world.mountedOf(entry), stop.get_token())),
                 CancellationError);
    EXPECT_EQ(world.machine->attached.size(), 1u);
    EXPECT_NO_THROW(world.run(world.mounts.unmount(world.mountedOf(entry), {})));
}

TEST(Unmount, thatIsCancelledDuringAnyToolKeepsTheFilesForAReconciliation) {
    constexpr std::size_t callsBeforeTheLast = 6;
    for (std::size_t call = 0; call < callsBeforeTheLast; ++call) {
        SCOPED_TRACE(call);
        test::MountWorld world;
        const MountEntry entry = world.prepareMounted();
        const std::string before = test::treeState(world.scratch.path());
        std::stop_source stop;
        world.stopDuringCall(call, stop);
        EXPECT_THROW(world.run(world.mounts.unmount(world.mountedOf(entry), stop.get_token())),
                     CancellationError);
        EXPECT_EQ(world.machine->calls.size(), call + 1);
        EXPECT_EQ(test::treeState(world.scratch.path()), before);
        const auto found = world.run(world.mounts.reconcile({}));
        EXPECT_EQ(found.mounted.size(), world.machine->attached.size());
        EXPECT_EQ(found.issue, std::nullopt);
        if (!found.mounted.empty())
            world.run(world.mounts.unmount(found.mounted[0], {}));
        EXPECT_FALSE(fs::exists(entry.workingDirectory.path()));
        EXPECT_TRUE(world.folder.load().entries.empty());
    }
}

TEST(ValidatedMounted, givesTheMountPointOfThisMoment) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted("/Volumes/Moved");
    EXPECT_EQ(world.run(world.mounts.validatedMounted(entry.id, {})),
              world.mountedOf(entry, "/Volumes/Moved"));
}

TEST(ValidatedMounted, isNoneWhenAnythingIsMissing) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    const auto answer = [&](const Uuid& id) { return world.run(world.mounts.validatedMounted(id, {})); };
    EXPECT_FALSE(answer(Uuid::random()));
    world.machine->answerOnce("hdiutil info", ProcessRunner::Result{1, ""});
    EXPECT_FALSE(answer(entry.id));
    world.machine->answerOnce("hdiutil info", ProcessRunner::Result{0, "no list"});
    EXPECT_FALSE(answer(entry.id));
    world.machine->attached = {{entry.image.path(), std::nullopt}};
    EXPECT_FALSE(answer(entry.id));
    world.machine->attached.clear();
    EXPECT_FALSE(answer(entry.id));
    world.machine->attached = {{entry.image.path(), "/Volumes/Snapshot"}};
    EXPECT_TRUE(answer(entry.id));
    fs::remove(entry.workingDirectory.path() / ".marrowbox-mount.json");
    EXPECT_FALSE(answer(entry.id));
}

TEST(ValidatedMounted, answersForASnapshotWithAnOperationRunningUnlessTheLockIsHeld) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    const auto gate = world.machine->hold("hdiutil detach", world.context.get_executor());
    const auto eject = world.start(world.mounts.unmount(world.mountedOf(entry), {}));
    world.runUntilReached(*gate);
    const auto during = world.start(world.mounts.validatedMounted(entry.id, {}));
    while (!during->isDone)
        world.context.run_one();
    EXPECT_EQ(during->get(), std::nullopt) << "the running eject holds the lock";
    world.machine->answerOnce("hdiutil detach", ProcessRunner::Result{16, ""});
    gate->letGo();
    world.finish();
    EXPECT_THROW(eject->get(), BackupError);
    EXPECT_TRUE(world.run(world.mounts.validatedMounted(entry.id, {})));
}

TEST(ValidatedMounted, isStoppedByAStopAlone) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(world.run(world.mounts.validatedMounted(entry.id, stop.get_token())), CancellationError);
}

} // namespace marrowbox
