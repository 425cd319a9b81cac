#include "Models/BackupError.h"
#include "StoreWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::StoreWorld;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// Two units with a snapshot each; the first is selected.
AppStore& startTwoUnits(StoreWorld& world) {
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.push_back(test::dailyUnit(world, "Photos"));
    BackupRepository(world.disk, configuration.units[1].id).initialize();
    AppStore& store = world.startWith(configuration);
    for (std::size_t index = 0; index < 2; ++index) {
        store.run(world.unit(index), 0);
        world.time.settle();
    }
    return store;
}

std::vector<Uuid> idsOfSnapshots(const StoreWorld& world) {
    std::vector<Uuid> ids;
    for (const Snapshot& snapshot : **world.state().snapshots)
        ids.push_back(snapshot.id);
    return ids;
}

} // namespace

TEST(Snapshots, areListedNewestFirst) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    std::vector<Uuid> made;
    for (const char* const text : {"one", "two", "three"}) {
        world.source->put("Letter.txt", text, text);
        world.time.advance(60);
        store.run(world.unit(), 0);
        world.time.settle();
        made.insert(made.begin(), world.lastRun().snapshotID.value());
    }
    EXPECT_EQ(idsOfSnapshots(world), made);
    EXPECT_THAT(world.state().storageUsage->bySnapshot, SizeIs(3));
}

TEST(Snapshots, ofTheUnitThatIsShownNowStandWhenAnEarlierRefreshEnds) {
    StoreWorld world;
    AppStore& store = startTwoUnits(world);
    const auto second = world.configuration().runs[0].snapshotID.value();
    const auto first = world.configuration().runs[1].snapshotID.value();
    store.reloadSnapshots();
    store.select(world.unit(1).id);
    EXPECT_THAT(**world.state().snapshots, IsEmpty()) << "nothing of the unit shown before";
    world.time.settle();
    EXPECT_THAT(idsOfSnapshots(world), ElementsAre(second));
    store.select(world.unit(0).id);
    store.select(world.unit(1).id);
    store.select(world.unit(0).id);
    world.time.settle();
    EXPECT_THAT(idsOfSnapshots(world), ElementsAre(first));
}

TEST(Snapshots, ofAUnitThatIsShownNoLongerAreNeverPublished) {
    StoreWorld world;
    AppStore& store = startTwoUnits(world);
    const auto second = world.configuration().runs[0].snapshotID.value();
    SyncUnit changed = world.unit(0);
    int strangers = 0;
    QObject::connect(&store, &AppStore::changed, [&](StoreField field) {
        if (*world.state().selectedUnitID != world.unit(1).id)
            return;
        const auto ids = idsOfSnapshots(world);
        strangers += field == StoreField::snapshots && !ids.empty() && ids.front() != second;
        strangers += field == StoreField::destinationIssue && world.state().destinationIssue->has_value();
    });
    for (const fs::path& folder : {world.disk, world.home / "Away"}) {
        changed.destinationPath = folder.string();
        store.updateUnit(changed);
        // The user moves on after each step of a refresh in turn.
        for (int steps = 0; steps < 20; ++steps) {
            store.select(world.unit(0).id);
            world.time.context().restart();
            for (int step = 0; step < steps; ++step)
                world.time.context().poll_one();
            store.select(world.unit(1).id);
            world.time.settle();
            EXPECT_THAT(idsOfSnapshots(world), ElementsAre(second)) << steps;
        }
    }
    EXPECT_EQ(strangers, 0);
}

TEST(Snapshots, ofADestinationThatIsAwayAreNotShownAndTheReasonIs) {
    StoreWorld world;
    AppStore& store = startTwoUnits(world);
    const fs::path away = world.home / "Away";
    fs::rename(world.disk, away);
    store.reloadSnapshots();
    world.time.settle();
    EXPECT_THAT(**world.state().snapshots, IsEmpty());
    EXPECT_EQ(*world.state().storageUsage, BackupStorageUsage());
    EXPECT_TRUE(world.state().destinationIssue->has_value());
    EXPECT_EQ(world.error(), "");
    fs::rename(away, world.disk);
    store.reloadSnapshots();
    world.time.settle();
    EXPECT_THAT(**world.state().snapshots, SizeIs(1));
    EXPECT_FALSE(world.state().destinationIssue->has_value());
}

TEST(Snapshots, areReadByAProgramThatMayNotWrite) {
    StoreWorld world;
    const SyncUnit unit = [&] {
        startTwoUnits(world);
        return world.unit();
    }();
    AppConfiguration later = world.configuration();
    later.schemaVersion = 2;
    later.units[1].destinationBookmark.bytes = "the disk";
    world.desktop.resolutions["the disk"] = {.path = world.disk, .isStale = true};
    world.end();
    AppStore& store = world.startWith(later);
    store.select(unit.id);
    world.time.settle();
    EXPECT_THAT(**world.state().snapshots, SizeIs(1));
    store.select(world.unit(1).id);
    world.time.settle();
    EXPECT_THAT(**world.state().snapshots, SizeIs(1)) << "also on a disk that has moved";
    EXPECT_EQ(world.written(), later);
}

TEST(Destination, isThePathWhereThereIsNoBookmark) {
    StoreWorld world;
    world.startWith(test::oneUnit(world));
    EXPECT_FALSE(world.state().destinationIssue->has_value());
    EXPECT_EQ(world.desktop.count("resolveBookmark"), 0U);
}

TEST(Destination, followsABookmarkToWhereTheDiskIsNow) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].destinationPath = "/Volumes/Old";
    configuration.units[0].destinationBookmark.bytes = "the disk";
    world.desktop.resolutions["the disk"] = {.path = world.disk, .isStale = true};
    AppStore& store = world.startWith(configuration);
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_EQ(world.lastRun().destination, world.disk);
    EXPECT_EQ(world.written().units[0].destinationPath, world.disk);
    EXPECT_EQ(world.written().units[0].destinationBookmark, test::RecordingDesktop::bookmark(world.disk));
}

TEST(Destination, movesInTheConfigurationAlthoughTheRunKeepsTheUnitThatItBeganWith) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].destinationBookmark.bytes = "the disk";
    world.desktop.resolutions["the disk"] = {.path = world.disk};
    AppStore& store = world.startWith(configuration);
    const fs::path moved = world.home / "Moved";
    fs::rename(world.disk, moved);
    world.desktop.resolutions["the disk"] = {.path = moved, .isStale = true};
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_EQ(world.lastRun().destination, world.disk) << "where it was when the run began";
    EXPECT_EQ(world.unit().destinationPath, moved);
    EXPECT_EQ(world.written(), world.configuration());
}

TEST(Destination, whoseMoveCannotBeWrittenDownFailsTheRun) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].destinationBookmark.bytes = "the disk";
    world.desktop.resolutions["the disk"] = {.path = world.disk};
    AppStore& store = world.startWith(configuration);
    world.desktop.resolutions["the disk"] = {.path = world.disk, .isStale = true};
    store.run(world.unit(), 0);
    fs::remove(world.data / "Configuration.json");
    fs::create_directory(world.data / "Configuration.json");
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::failed);
    EXPECT_EQ(world.source->inventories, 0);
    EXPECT_NE(world.unit().destinationBookmark.bytes, "the disk") << "the change stays in memory";
}

TEST(Destination, thatCannotBeFoundFailsTheRunInItsWords) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].destinationBookmark.bytes = "the disk";
    world.desktop.resolutionFailures["the disk"] = std::make_exception_ptr(BackupError("The disk is away."));
    AppStore& store = world.startWith(configuration);
    EXPECT_EQ(*world.state().destinationIssue, "The disk is away.");
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::failed);
    EXPECT_EQ(world.lastRun().detail, "The disk is away.");
    EXPECT_EQ(world.unit().nextRun, world.time.now() + 900);
}

TEST(Destination, whoseFreshBookmarkCannotBeMadeFailsTheRun) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].destinationBookmark.bytes = "the disk";
    world.desktop.resolutions["the disk"] = {.path = world.disk, .isStale = true};
    world.desktop.makingFailure = std::make_exception_ptr(BackupError("No bookmark."));
    AppStore& store = world.startWith(configuration);
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_EQ(world.lastRun().detail, "No bookmark.");
    EXPECT_EQ(world.unit().destinationBookmark.bytes, "the disk");
}

} // namespace marrowbox
