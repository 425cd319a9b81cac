#include "StoreWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::StoreWorld;
using testing::Contains;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Result = test::ScriptedMachine::Result;

/// A unit with one snapshot, and nothing under way.
AppStore& startWithSnapshot(StoreWorld& world) {
    AppStore& store = world.startWith(test::oneUnit(world));
    store.run(world.unit(), 0);
    world.time.advance(5);
    world.desktop.forget();
    return store;
}

const Snapshot& newest(const StoreWorld& world) {
    return (*world.state().snapshots)->front();
}

/// The same, with its snapshot mounted.
AppStore& startWithVolume(StoreWorld& world) {
    AppStore& store = startWithSnapshot(world);
    store.explore(newest(world));
    world.time.advance(5);
    return store;
}

/// How often the system's mounts have been compared with the registry.
std::size_t reconciliations(const StoreWorld& world) {
    return world.machine->count("hdiutil info");
}

} // namespace

TEST(Mounts, areMadeAndOpenedAtTheFirstPressAndOnlyOpenedAtTheSecond) {
    StoreWorld world;
    AppStore& store = startWithSnapshot(world);
    store.explore(newest(world));
    EXPECT_TRUE(*world.state().isExploring);
    world.time.settle();
    EXPECT_FALSE(*world.state().isExploring);
    ASSERT_TRUE(world.state().mounted->contains(newest(world).id));
    EXPECT_EQ(world.desktop.count("openFolder"), 1U);
    EXPECT_THAT(world.desktop.calls(), Contains("openFolder /Volumes/Snapshot"));
    store.explore(newest(world));
    world.time.settle();
    EXPECT_EQ(world.desktop.count("openFolder"), 2U);
    EXPECT_EQ(world.machine->count("hdiutil attach"), 1U);
    EXPECT_FALSE(world.state().mountIssue->has_value());
}

TEST(Mounts, thatFailSayWhyUntilALaterOneSucceeds) {
    StoreWorld world;
    AppStore& store = startWithSnapshot(world);
    world.machine->answerOnce("hdiutil create", Result{1, ""});
    store.explore(newest(world));
    world.time.settle();
    ASSERT_TRUE(world.state().mountIssue->has_value());
    const std::string issue = **world.state().mountIssue;
    const std::size_t before = reconciliations(world);
    world.time.advance(5);
    EXPECT_GT(reconciliations(world), before);
    EXPECT_EQ(*world.state().mountIssue, issue) << "no look at the mounts clears what the user has to read";
    EXPECT_FALSE(*world.state().isExploring);
    store.explore(newest(world));
    world.time.advance(5);
    EXPECT_FALSE(world.state().mountIssue->has_value());
    EXPECT_THAT(*world.state().mounted, SizeIs(1));
    EXPECT_EQ(world.error(), "");
}

TEST(Mounts, areOneAtATime) {
    StoreWorld world;
    AppStore& store = startWithSnapshot(world);
    const auto gate = world.machine->hold("hdiutil create", world.time.context().get_executor());
    store.explore(newest(world));
    world.time.settle();
    ASSERT_TRUE(gate->isReached);
    store.explore(newest(world));
    store.restore(newest(world));
    world.time.settle();
    EXPECT_EQ(world.machine->count("hdiutil create"), 1U);
    EXPECT_FALSE(world.desktop.isChoosing());
    gate->letGo();
    world.time.settle();
    EXPECT_FALSE(*world.state().isExploring);
}

TEST(Mounts, thatAreCalledOffSayNothing) {
    StoreWorld world;
    AppStore& store = startWithSnapshot(world);
    const auto gate = world.machine->hold("hdiutil create", world.time.context().get_executor());
    store.explore(newest(world));
    world.time.settle();
    store.cancelExploring();
    gate->letGo();
    world.time.advance(5);
    EXPECT_FALSE(*world.state().isExploring);
    EXPECT_FALSE(world.state().mountIssue->has_value());
    EXPECT_THAT(*world.state().mounted, IsEmpty());
}

TEST(Mounts, goAwayWhenTheyAreEjected) {
    StoreWorld world;
    AppStore& store = startWithVolume(world);
    const std::size_t before = reconciliations(world);
    store.eject(newest(world).id);
    world.time.settle();
    EXPECT_THAT(*world.state().mounted, IsEmpty());
    const std::size_t ejected = reconciliations(world);
    EXPECT_GT(ejected, before);
    world.time.advance(0.7 + 0.34);
    EXPECT_EQ(reconciliations(world), ejected) << "the system gets time to settle";
    world.time.advance(0.02);
    EXPECT_GT(reconciliations(world), ejected);
    store.eject(newest(world).id);
    world.time.settle();
    EXPECT_FALSE(world.state().mountIssue->has_value());
}

TEST(Mounts, stayWhenTheyCannotBeEjected) {
    StoreWorld world;
    AppStore& store = startWithVolume(world);
    world.machine->answer("hdiutil detach", Result{16, ""});
    store.eject(newest(world).id);
    world.time.settle();
    ASSERT_TRUE(world.state().mountIssue->has_value());
    EXPECT_THAT(*world.state().mounted, SizeIs(1));
    const std::string issue = **world.state().mountIssue;
    world.time.advance(5);
    EXPECT_EQ(*world.state().mountIssue, issue);
}

TEST(Mounts, thatTheUserEjectedElsewhereAreForgottenWhenTheyAreOpened) {
    StoreWorld world;
    AppStore& store = startWithVolume(world);
    world.desktop.forget();
    world.machine->attached.clear();
    store.openMounted(newest(world).id);
    world.time.settle();
    EXPECT_THAT(*world.state().mounted, IsEmpty());
    EXPECT_EQ(world.desktop.count("openFolder"), 0U);
}

TEST(Mounts, areFoundAgainAtTheNextStart) {
    StoreWorld world;
    startWithVolume(world);
    world.end();
    world.start();
    EXPECT_THAT(*world.state().mounted, IsEmpty());
    world.time.advance(0.35);
    EXPECT_THAT(*world.state().mounted, SizeIs(1));
}

TEST(Mounts, areKeptAsTheyWereWhenTheSystemTellsOnlyAPart) {
    StoreWorld world;
    startWithVolume(world);
    world.machine->answer("hdiutil info", Result{1, ""});
    world.desktop.makeVolumeAppear();
    world.time.advance(1);
    EXPECT_THAT(*world.state().mounted, SizeIs(1));
    EXPECT_TRUE(world.state().mountIssue->has_value());
}

TEST(Mounts, thatCannotBeLookedAtWhenTheyAreOpenedStayAndSayWhy) {
    StoreWorld world;
    AppStore& store = startWithVolume(world);
    world.desktop.forget();
    world.machine->answer("hdiutil info", Result{1, ""});
    store.openMounted(newest(world).id);
    world.time.settle();
    EXPECT_THAT(*world.state().mounted, SizeIs(1));
    EXPECT_EQ(world.desktop.count("openFolder"), 0U);
    EXPECT_EQ(*world.state().mountIssue,
              "Snapshot mount recovery was skipped: macOS disk-image state could not be inspected; temporary "
              "files were kept.");
}

TEST(Mounts, areOpenedWhereTheSecondLookFindsThem) {
    StoreWorld world;
    AppStore& store = startWithVolume(world);
    world.desktop.forget();
    world.machine->answerOnce("hdiutil info", Result{1, ""});
    store.openMounted(newest(world).id);
    world.time.settle();
    EXPECT_THAT(*world.state().mounted, SizeIs(1));
    EXPECT_THAT(world.desktop.calls(), Contains("openFolder /Volumes/Snapshot"));
    EXPECT_FALSE(world.state().mountIssue->has_value());
}

TEST(Mounts, areLeftAsTheyAreWhileAnotherProgramIsAtWorkOnThem) {
    StoreWorld world;
    AppStore& store = startWithVolume(world);
    world.desktop.forget();
    const RepositoryLock lock(world.data / "MountedSnapshots" / "mounts.lock", "busy");
    store.openMounted(newest(world).id);
    world.time.settle();
    EXPECT_THAT(*world.state().mounted, SizeIs(1)) << "a partial answer proves nothing";
    EXPECT_EQ(world.desktop.count("openFolder"), 0U);
    EXPECT_FALSE(world.state().mountIssue->has_value());
}

TEST(MountReconciliation, followsABurstOfEventsOnce) {
    StoreWorld world;
    startWithSnapshot(world);
    const std::size_t before = reconciliations(world);
    for (int event = 0; event < 10; ++event) {
        world.desktop.makeVolumeAppear();
        world.time.advance(0.03);
    }
    world.time.advance(0.31);
    EXPECT_EQ(reconciliations(world), before) << "0.35 seconds after the last event";
    world.time.advance(0.02);
    EXPECT_EQ(reconciliations(world), before + 1);
    world.time.advance(20);
    EXPECT_EQ(reconciliations(world), before + 1);
}

TEST(MountReconciliation, followsTheOneThatIsUnderWayOnceMore) {
    StoreWorld world;
    AppStore& store = startWithSnapshot(world);
    const std::size_t before = reconciliations(world);
    const auto gate = world.machine->hold("hdiutil info", world.time.context().get_executor());
    store.scheduleMountReconcile();
    world.time.advance(1);
    ASSERT_TRUE(gate->isReached);
    for (int request = 0; request < 5; ++request) {
        store.scheduleMountReconcile();
        world.time.advance(1);
    }
    EXPECT_EQ(reconciliations(world), before + 1);
    world.machine->release("hdiutil info");
    gate->letGo();
    world.time.advance(20);
    EXPECT_EQ(reconciliations(world), before + 2);
}

TEST(MountReconciliation, looksTwiceWhenAVolumeGoesAway) {
    StoreWorld world;
    startWithSnapshot(world);
    const std::size_t before = reconciliations(world);
    world.desktop.takeVolumeAway();
    world.time.advance(0.36);
    EXPECT_EQ(reconciliations(world), before + 1);
    world.time.advance(0.68);
    EXPECT_EQ(reconciliations(world), before + 1);
    world.time.advance(0.02);
    EXPECT_EQ(reconciliations(world), before + 2);
}

TEST(MountReconciliation, followsAWakingMachine) {
    StoreWorld world;
    startWithSnapshot(world);
    const std::size_t before = reconciliations(world);
    world.desktop.wake();
    world.time.advance(1);
    EXPECT_EQ(reconciliations(world), before + 1);
}

TEST(Mounts, ofADestinationThatIsAwaySayItInTheirPlace) {
    StoreWorld world;
    AppStore& store = startWithSnapshot(world);
    const Snapshot snapshot = newest(world);
    fs::remove_all(world.disk);
    store.explore(snapshot);
    world.time.advance(5);
    EXPECT_TRUE(world.state().mountIssue->has_value());
    EXPECT_EQ(world.error(), "");
    EXPECT_FALSE(*world.state().isExploring);
}

TEST(MountReconciliation, clearsWhatItReportedOnceAllIsWell) {
    StoreWorld world;
    startWithSnapshot(world);
    world.machine->answerOnce("hdiutil info", Result{1, ""});
    world.desktop.makeVolumeAppear();
    world.time.advance(1);
    EXPECT_TRUE(world.state().mountIssue->has_value());
    world.desktop.makeVolumeAppear();
    world.time.advance(1);
    EXPECT_FALSE(world.state().mountIssue->has_value());
}

} // namespace marrowbox
