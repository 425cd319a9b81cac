#include "MountWorld.h"
#include "Reconciliations.h"

#include "Platform/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

const std::string attachedOnly = "A snapshot image is attached but not mounted; its files were kept.";
const std::string skipped = "Snapshot mount recovery was skipped: ";

} // namespace

TEST(Reconcile, ofAnEmptyRegistryFindsNothingAndIsSure) {
    test::MountWorld world;
    EXPECT_EQ(world.unchangingReconcile(), test::nothingToTell);
}

TEST(Reconcile, removesWhatAStopInTheMiddleOfASaveLeft) {
    test::MountWorld world;
    const MountEntry live = world.prepareMounted();
    const fs::path unfinished = world.directory / ".mounts.json.0123456789abcdef";
    const fs::path foreign = world.directory / ".mounts.json.mine";
    for (const fs::path& path : {unfinished, foreign})
        writeAll(openFile(path, O_WRONLY | O_CREAT), "{\"version\":1,");
    const SnapshotMount::Reconciliation expected{.mounted = {world.mountedOf(live)}, .isAuthoritative = true};
    EXPECT_EQ(world.run(world.mounts.reconcile({})), expected);
    EXPECT_FALSE(fs::exists(unfinished));
    EXPECT_TRUE(fs::exists(foreign));
    EXPECT_EQ(world.unchangingReconcile(), expected);
}

TEST(Reconcile, leavesTheSaveOfAnOperationUnderWayAlone) {
    test::MountWorld world;
    world.folder.ensureDirectories();
    const RepositoryLock lock = world.folder.lock();
    const AtomicFile save(world.folder.registryFile());
    EXPECT_EQ(world.unchangingReconcile(), SnapshotMount::Reconciliation{});
}

TEST(Reconcile, thatCannotReadTheInventoryDeletesNothingAndIsNotSure) {
    test::MountWorld world;
    world.prepare();
    writeAll(openFile(world.directory / ".mounts.json.0123456789abcdef", O_WRONLY | O_CREAT), "{");
    const auto issueOf = [&](ProcessRunner::Result answer) {
        world.machine->answer("hdiutil info", answer);
        const auto reconciliation = world.unchangingReconcile();
        EXPECT_TRUE(reconciliation.mounted.empty());
        EXPECT_FALSE(reconciliation.isAuthoritative);
        return reconciliation.issue.value_or("");
    };
    EXPECT_EQ(issueOf({1, ""}),
              skipped + "macOS disk-image state could not be inspected; temporary files were kept.");
    EXPECT_EQ(issueOf({0, "<plist><dict/></plist>"}), skipped + "macOS returned ambiguous disk-image state.");
    EXPECT_TRUE(issueOf({0, "<plist>"}).starts_with(skipped + "The property list is malformed"));
    world.machine->loseTools();
    EXPECT_TRUE(issueOf({}).starts_with(skipped + "the machine is gone"));
}

TEST(Reconcile, whoseSecondLookFailsKeepsTheEntryAndSaysWhy) {
    test::MountWorld world;
    world.prepare();
    world.machine->answerOnce("hdiutil info", ProcessRunner::Result{0, test::inventoryText({})});
    world.machine->answerOnce("hdiutil info", ProcessRunner::Result{1, ""});
    const auto reconciliation = world.unchangingReconcile();
    EXPECT_EQ(reconciliation.issue,
              "macOS disk-image state could not be inspected; temporary files were kept.");
    EXPECT_TRUE(reconciliation.isAuthoritative);
}

TEST(Reconcile, listsALiveMountAndReportsTheFirstOfTwoFailures) {
    test::MountWorld world;
    const MountEntry tampered = world.prepare();
    const MountEntry live = world.prepareMounted("/Volumes/Live");
    const MountEntry pointless = world.prepare();
    world.machine->attached.push_back({pointless.image.path(), std::nullopt});
    fs::remove(test::markerOf(tampered));
    const SnapshotMount::Reconciliation expected{.mounted = {world.mountedOf(live, "/Volumes/Live")},
                                                 .issue = test::invalidEntry,
                                                 .isAuthoritative = true};
    EXPECT_EQ(world.unchangingReconcile(), expected);
}

TEST(Reconcile, returnsTheSameIssueOfATamperedEntryOnEveryPass) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    writeAll(openFile(test::markerOf(entry), O_WRONLY | O_TRUNC), "{}");
    for (int pass = 0; pass < 3; ++pass)
        EXPECT_EQ(world.unchangingReconcile(),
                  (SnapshotMount::Reconciliation{.issue = test::invalidEntry, .isAuthoritative = true}));
}

TEST(Reconcile, cleansUpAnAttachedEntryWhoseImageIsGoneAfterARestart) {
    test::MountWorld world;
    MountEntry entry = world.prepareWork();
    entry.phase = MountPhase::attached;
    entry.volume = FileURL::ofFolder("/Volumes/Snapshot");
    world.registerEntries({entry});
    EXPECT_EQ(world.run(world.mounts.reconcile({})), test::nothingToTell);
    EXPECT_FALSE(fs::exists(entry.workingDirectory.path()));
    EXPECT_TRUE(world.folder.load().entries.empty());
}

TEST(Reconcile, adoptsAPreparingEntryWhoseImageIsMountedAndWritesNothing) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    ASSERT_EQ(entry.phase, MountPhase::preparing);
    const auto reconciliation = world.unchangingReconcile();
    EXPECT_EQ(reconciliation.mounted, std::vector{world.mountedOf(entry)});
    EXPECT_EQ(reconciliation.issue, std::nullopt);
}

TEST(Reconcile, adoptsAMountThatWasListedUnderAnotherSpellingOfItsImage) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    fs::create_directory_symlink(world.scratch.path(), world.scratch / "way");
    world.machine->attached = {{world.scratch / "way" / "MountedSnapshots/MountWork" /
                                    entry.workingDirectory.path().filename() / "Snapshot.dmg",
                                "/Volumes/Snapshot"}};
    EXPECT_EQ(world.unchangingReconcile().mounted, std::vector{world.mountedOf(entry)});
}

TEST(Reconcile, forgetsAVolumeThatTheUserEjected) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    ASSERT_EQ(world.run(world.mounts.reconcile({})).mounted.size(), 1u);
    world.machine->attached.clear();
    EXPECT_EQ(world.run(world.mounts.reconcile({})), test::nothingToTell);
    EXPECT_FALSE(fs::exists(entry.workingDirectory.path()));
}

TEST(Reconcile, dropsAnEntryWhoseWorkFolderWasNeverMade) {
    test::MountWorld world;
    world.registerEntries({world.newEntry()});
    EXPECT_EQ(world.run(world.mounts.reconcile({})), test::nothingToTell);
    EXPECT_TRUE(world.folder.load().entries.empty());
}

TEST(Reconcile, keepsWorkThatIsInUseOrStillPreparedAndDeletesItLater) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    world.machine->answerOnce("lsof", ProcessRunner::Result{0, "p9\n"});
    EXPECT_EQ(world.unchangingReconcile().issue,
              "Snapshot temporary files may still be in use and were retained.");
    world.machine->answerOnce("ps",
                              ProcessRunner::Result{0, "hdiutil create " + entry.image.path().string()});
    EXPECT_EQ(world.unchangingReconcile().issue, "Snapshot preparation is still running and was retained.");
    EXPECT_EQ(world.run(world.mounts.reconcile({})), test::nothingToTell);
    EXPECT_FALSE(fs::exists(entry.workingDirectory.path()));
}

TEST(Reconcile, keepsAnImageThatIsAttachedWithoutAMountPoint) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    world.machine->attached = {{entry.image.path(), std::nullopt}};
    EXPECT_EQ(world.unchangingReconcile(),
              (SnapshotMount::Reconciliation{.issue = attachedOnly, .isAuthoritative = true}));
}

TEST(Reconcile, leavesAnImageThatCameUpMeanwhileToTheNextPass) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    world.machine->answerOnce("hdiutil info", [&](const ToolCommand&) {
        world.machine->attached = {{entry.image.path(), "/Volumes/Snapshot"}};
        return ProcessRunner::Result{0, test::inventoryText({})};
    });
    EXPECT_EQ(world.unchangingReconcile(), test::nothingToTell);
    EXPECT_EQ(world.unchangingReconcile().mounted.size(), 1u);
}

TEST(Reconcile, readsTheInventoryOnceForAllLiveMounts) {
    test::MountWorld world;
    world.prepareMounted("/Volumes/A");
    world.prepareMounted("/Volumes/B");
    EXPECT_EQ(world.unchangingReconcile().mounted.size(), 2u);
    EXPECT_EQ(world.machine->calls.size(), 1u);
}

TEST(Reconcile, thatFindsAnotherRunningReturnsAtOnceAndIsNotSure) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    const auto gate = world.machine->hold("hdiutil info", world.context.get_executor());
    const auto first = world.start(world.mounts.reconcile({}));
    world.runUntilReached(*gate);
    const auto second = world.start(world.mounts.reconcile({}));
    while (!second->isDone)
        world.context.run_one();
    EXPECT_FALSE(first->isDone);
    EXPECT_EQ(second->get(), SnapshotMount::Reconciliation{});
    gate->letGo();
    world.finish();
    EXPECT_EQ(first->get().mounted, std::vector{world.mountedOf(entry)});
}

TEST(Reconcile, thatIsCancelledDuringAnyToolOfARemovalKeepsEverythingForTheNext) {
    constexpr std::size_t callsBeforeTheLast = 5;
    for (std::size_t call = 0; call < callsBeforeTheLast; ++call) {
        SCOPED_TRACE(call);
        test::MountWorld world;
        const MountEntry entry = world.prepare();
        const std::string before = test::treeState(world.scratch.path());
        std::stop_source stop;
        world.stopDuringCall(call, stop);
        EXPECT_THROW(world.run(world.mounts.reconcile(stop.get_token())), CancellationError);
        EXPECT_EQ(world.machine->calls.size(), call + 1);
        EXPECT_EQ(test::treeState(world.scratch.path()), before);
        EXPECT_EQ(world.run(world.mounts.reconcile({})), test::nothingToTell);
        EXPECT_FALSE(fs::exists(entry.workingDirectory.path()));
    }
}

TEST(Reconcile, isPossibleAgainAfterAnyEnd) {
    test::MountWorld world;
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(world.run(world.mounts.reconcile(stop.get_token())), CancellationError);
    world.machine->answerOnce("hdiutil info", ProcessRunner::Result{1, ""});
    EXPECT_FALSE(world.run(world.mounts.reconcile({})).isAuthoritative);
    EXPECT_TRUE(world.run(world.mounts.reconcile({})).isAuthoritative);
}

TEST(Reconcile, thatFindsTheLockHeldIsSilentAndNotSure) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    const auto gate = world.machine->hold("hdiutil detach", world.context.get_executor());
    const auto eject = world.start(world.mounts.unmount(world.mountedOf(entry), {}));
    world.runUntilReached(*gate);
    const auto pass = world.start(world.mounts.reconcile({}));
    while (!pass->isDone)
        world.context.run_one();
    EXPECT_EQ(pass->get(), SnapshotMount::Reconciliation{});
    gate->letGo();
    world.finish();
    eject->get();
}

TEST(Reconcile, holdsTheLockThroughItsRemovals) {
    test::MountWorld world;
    const MountEntry finished = world.prepare();
    const MountEntry live = world.prepareMounted();
    const auto gate = world.machine->hold("lsof", world.context.get_executor());
    const auto pass = world.start(world.mounts.reconcile({}));
    world.runUntilReached(*gate);
    const auto eject = world.start(world.mounts.unmount(world.mountedOf(live), {}));
    const auto same = world.start(world.mounts.unmount(world.mountedOf(finished), {}));
    while (!eject->isDone || !same->isDone)
        world.context.run_one();
    EXPECT_EQ(test::thrown<std::exception>([&] { eject->get(); }),
              "Another snapshot mount operation is still finishing. Try again in a moment.");
    EXPECT_EQ(test::thrown<std::exception>([&] { same->get(); }),
              "This snapshot mount operation is already in progress.");
    gate->letGo();
    world.finish();
    EXPECT_EQ(pass->get().mounted, std::vector{world.mountedOf(live)});
    EXPECT_FALSE(fs::exists(finished.workingDirectory.path()));
}

} // namespace marrowbox
