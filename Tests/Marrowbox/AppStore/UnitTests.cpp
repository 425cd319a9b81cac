#include "Models/BackupError.h"
#include "StoreWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::StoreWorld;
using testing::IsEmpty;
using testing::SizeIs;

TEST(Units, thatAreNewGetTheirRepositoryAndTheirFirstBackupAtOnce) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.clear();
    AppStore& store = world.startWith(configuration);
    const SyncUnit unit = test::dailyUnit(world);
    world.finish(store.addUnit(unit, world.disk));
    EXPECT_EQ(*world.state().selectedUnitID, unit.id);
    EXPECT_TRUE(fs::exists(world.disk / "Marrowbox" / unit.id.text() / "Repository.json"));
    EXPECT_EQ(world.lastRun().unitID, unit.id);
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_FALSE(world.lastRun().missedRuns);
    EXPECT_THAT(**world.state().snapshots, SizeIs(1));
    EXPECT_EQ(world.written(), world.configuration());
}

TEST(Units, thatAreNewWaitWhileAnotherIsBackedUp) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    world.startHeldRun();
    world.finish(store.addUnit(test::dailyUnit(world, "Photos"), world.disk));
    EXPECT_THAT(world.written().units, SizeIs(2));
    EXPECT_THAT(world.configuration().runs, SizeIs(1));
    EXPECT_EQ(world.error(), "");
}

TEST(Units, thatAreRemovedBeforeTheirFirstBackupAreNotBackedUp) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.clear();
    AppStore& store = world.startWith(configuration);
    QObject::connect(&store, &AppStore::changed, [&](StoreField field) {
        if (field == StoreField::isReadingHistory && world.configuration().units.size() == 1)
            store.removeUnit(world.unit());
    });
    world.finish(store.addUnit(test::dailyUnit(world), world.disk));
    EXPECT_THAT(world.configuration().units, IsEmpty());
    EXPECT_THAT(world.configuration().runs, IsEmpty());
    EXPECT_EQ(world.error(), "");
}

TEST(Units, areNotAddedWhereTheirRepositoryCannotBe) {
    StoreWorld world;
    const AppConfiguration configuration = test::oneUnit(world);
    AppStore& store = world.startWith(configuration);
    EXPECT_ANY_THROW(world.finish(store.addUnit(test::dailyUnit(world), world.home / "Nowhere")));
    EXPECT_EQ(world.configuration(), configuration);
}

TEST(Units, areRefusedByAProgramThatMayNotWrite) {
    StoreWorld world;
    AppConfiguration later = test::oneUnit(world);
    later.schemaVersion = 2;
    AppStore& store = world.startWith(later);
    const SyncUnit unit = test::dailyUnit(world);
    try {
        world.finish(store.addUnit(unit, world.disk));
        ADD_FAILURE() << "nothing was thrown";
    } catch (const BackupError& refusal) {
        EXPECT_EQ(refusal.message(), "Configuration is unavailable.");
    }
    EXPECT_FALSE(fs::exists(world.disk / "Marrowbox" / unit.id.text()));
}

TEST(Units, keepTheirNextRunUnlessTheirScheduleChanges) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].nextRun = world.time.now() + 900; // which no schedule would come to
    AppStore& store = world.startWith(configuration);
    SyncUnit unit = world.unit();
    const auto nextRun = unit.nextRun;
    unit.name = "Letters";
    store.updateUnit(unit);
    EXPECT_EQ(world.unit().name, "Letters");
    EXPECT_EQ(world.unit().nextRun, nextRun);
    unit.schedule.hour = 11;
    store.updateUnit(unit);
    EXPECT_EQ(world.unit().nextRun, world.time.now() + 3600) << "today at eleven";
    unit.schedule.frequency = ScheduleFrequency::manual;
    store.updateUnit(unit);
    EXPECT_FALSE(world.unit().nextRun);
    EXPECT_EQ(world.written(), world.configuration());
}

TEST(Units, thatNobodyKnowsAreNotUpdated) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    const AppConfiguration before = world.configuration();
    store.updateUnit(test::dailyUnit(world, "Photos"));
    EXPECT_EQ(world.configuration(), before);
    EXPECT_EQ(world.error(), "");
}

TEST(Units, leaveTheSelectionToTheFirstThatRemains) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.insert(configuration.units.begin(), test::dailyUnit(world, "Photos"));
    AppStore& store = world.startWith(configuration);
    store.run(world.unit(1), 0);
    world.time.settle();
    store.select(world.unit(1).id);
    world.time.settle();
    ASSERT_THAT(**world.state().snapshots, SizeIs(1));
    const Uuid papers = world.unit(1).id;
    store.removeUnit(world.unit(0));
    EXPECT_EQ(*world.state().selectedUnitID, papers);
    store.removeUnit(world.unit(0));
    world.time.settle();
    EXPECT_FALSE(*world.state().selectedUnitID);
    EXPECT_THAT(**world.state().snapshots, IsEmpty());
    EXPECT_EQ(*world.state().storageUsage, BackupStorageUsage());
    EXPECT_THAT(world.written().units, IsEmpty());
}

TEST(Units, leaveTheirRepositoryAndTheirRunsBehind) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    store.run(world.unit(), 0);
    world.time.settle();
    const Uuid id = world.unit().id;
    store.removeUnit(world.unit());
    world.time.settle();
    EXPECT_THAT(world.configuration().runs, SizeIs(1));
    EXPECT_THAT(BackupRepository(world.disk, id).snapshots(), SizeIs(1));
}

TEST(Units, areNotRemovedDuringTheirBackup) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    world.holdSources();
    store.run(world.unit(), 0);
    store.removeUnit(world.unit());
    world.time.settle();
    EXPECT_THAT(world.configuration().units, SizeIs(1));
    EXPECT_EQ(world.error(), "");
}

TEST(Units, showNothingOfTheUnitThatWasShownBefore) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    store.run(world.unit(), 0);
    world.time.settle();
    ASSERT_THAT(**world.state().snapshots, SizeIs(1));
    fs::remove(world.data / "Configuration.json");
    fs::create_directory(world.data / "Configuration.json");
    EXPECT_ANY_THROW(world.finish(store.addUnit(test::dailyUnit(world, "Photos"), world.disk)));
    EXPECT_THAT(world.configuration().units, SizeIs(2)) << "the change stays in memory";
    EXPECT_THAT(**world.state().snapshots, IsEmpty());
}

TEST(Units, areKeptInAFolderWhoseNameIsOfAnyBytes) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.clear();
    world.write(configuration);
    const fs::path folder = world.disk / "B\xFC"
                                         "cher";
    fs::create_directory(folder);
    AppStore& store = world.start();
    SyncUnit unit = test::dailyUnit(world);
    unit.destinationPath = folder.string();
    unit.destinationBookmark = world.desktop.makeBookmark(folder);
    world.finish(store.addUnit(unit, folder));
    EXPECT_EQ(world.unit().destinationPath, (world.disk / "B\uFFFD"
                                                          "cher")
                                                .string());
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded) << world.lastRun().detail.value_or("");
    EXPECT_EQ(world.written(), world.configuration());
}

TEST(Units, keepTheirChangeInMemoryWhenItCannotBeWritten) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    fs::remove(world.data / "Configuration.json");
    fs::create_directory(world.data / "Configuration.json");
    SyncUnit unit = world.unit();
    unit.name = "Letters";
    store.updateUnit(unit);
    EXPECT_NE(world.error(), "");
    EXPECT_EQ(world.unit().name, "Letters");
    store.dismissError();
    store.removeUnit(unit);
    EXPECT_NE(world.error(), "");
    EXPECT_THAT(world.configuration().units, IsEmpty());
}

} // namespace marrowbox
