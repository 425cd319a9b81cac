#include "StoreWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::StoreWorld;
using testing::ElementsAre;

TEST(Runs, makeASnapshotWriteItDownAndLookForward) {
    StoreWorld world;
    world.write(test::oneUnit(world));
    AppStore& store = world.start();
    store.run(world.unit(), 0);
    EXPECT_EQ(*world.state().activeUnitID, world.unit().id);
    EXPECT_EQ(*world.state().progress, "Preparing snapshot…");
    EXPECT_EQ(world.written().runs.at(0).outcome, RunOutcome::running);
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_EQ(world.lastRun().summary.added, 1);
    EXPECT_EQ(world.written(), world.configuration());
    EXPECT_FALSE(*world.state().activeUnitID);
    EXPECT_EQ(*world.state().progress, "");
    ASSERT_EQ((*world.state().snapshots)->size(), 1U);
    EXPECT_EQ((*world.state().snapshots)->front().id, world.lastRun().snapshotID);
    EXPECT_THAT(world.desktop.activities(), ElementsAre());
}

TEST(Runs, ofAScheduledUnitTryAgainEveryQuarterOfAnHourWhileTheyFail) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].nextRun = world.time.now() + 10;
    world.write(configuration);
    fs::remove_all(world.disk);
    world.start();
    world.time.advance(4 * 900 + 60);
    ASSERT_EQ(world.configuration().runs.size(), 5U);
    for (std::size_t i = 0; i + 1 < 5; ++i) {
        const auto& runs = world.configuration().runs;
        EXPECT_EQ(runs[i].outcome, RunOutcome::failed);
        EXPECT_DOUBLE_EQ(runs[i].startedAt - runs[i + 1].startedAt, 900);
    }
}

TEST(Runs, thatAreCancelledGoOnAtTheNextRegularTime) {
    StoreWorld world;
    world.write(test::oneUnit(world));
    AppStore& store = world.start();
    world.holdSources();
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_THAT(world.desktop.activities(), ElementsAre("Finishing a Google Drive backup"));
    store.cancelBackup();
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::cancelled);
    EXPECT_EQ(world.lastRun().detail,
              "Cancelled before completion. Previously completed snapshots remain available.");
    EXPECT_EQ(world.unit().nextRun,
              world.unit().schedule.next(world.time.now(), Calendar(world.zone, "en_US")));
    EXPECT_FALSE(*world.state().activeUnitID);
}

TEST(Runs, thatAreCancelledLeaveEarlierSnapshotsInPlace) {
    StoreWorld world;
    world.write(test::oneUnit(world));
    AppStore& store = world.start();
    store.run(world.unit(), 0);
    world.time.settle();
    world.holdSources();
    store.run(world.unit(), 0);
    world.time.settle();
    store.cancelBackup();
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::cancelled);
    ASSERT_EQ((*world.state().snapshots)->size(), 1U);
    EXPECT_EQ((*world.state().snapshots)->front().id, world.configuration().runs[1].snapshotID);
}

TEST(Runs, ofAManualUnitAreNotRepeatedWhenTheyFail) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].schedule.frequency = ScheduleFrequency::manual;
    world.write(configuration);
    fs::remove_all(world.disk);
    AppStore& store = world.start();
    store.run(world.unit(), 0);
    world.time.advance(3600);
    EXPECT_EQ(world.configuration().runs.size(), 1U);
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::failed);
    EXPECT_FALSE(world.unit().nextRun);
}

TEST(Runs, thatTheUserStartedAndThatFailAreRepeatedSoonWhereThereIsASchedule) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].schedule.frequency = ScheduleFrequency::hourly;
    configuration.units[0].nextRun = world.time.now() + 3000;
    world.write(configuration);
    fs::remove_all(world.disk);
    AppStore& store = world.start();
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_EQ(world.unit().nextRun, world.time.now() + 900);
    EXPECT_FALSE(world.lastRun().missedRuns);
    EXPECT_EQ(readFile(world.data / "Configuration.json").find("missedRuns"), std::string::npos);
}

TEST(Runs, rememberHowTheyAreToBeMailed) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.email = test::mailToAnna();
    world.write(configuration);
    AppStore& store = world.start();
    world.holdSources();
    store.run(world.unit(), 0);
    EXPECT_TRUE(world.lastRun().notify);
    EXPECT_EQ(world.lastRun().notificationPolicy, NotificationPolicy::all);
    EXPECT_EQ(world.lastRun().emailSettings, test::mailToAnna());
    EXPECT_EQ(world.written().runs.at(0), world.lastRun());
}

TEST(Runs, ofAUnitThatWantsNoMailAreNotMailed) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.email = test::mailToAnna();
    configuration.units[0].notifications = NotificationPolicy::off;
    world.write(configuration);
    AppStore& store = world.start();
    store.run(world.unit(), 0);
    world.time.advance(60);
    EXPECT_FALSE(world.lastRun().notify);
    EXPECT_EQ(world.lastRun().notificationPolicy, NotificationPolicy::off);
    EXPECT_TRUE(world.mailSubjects().empty());
}

TEST(Runs, madeWhileMailWasDisabledAreNeverMailed) {
    StoreWorld world;
    world.write(test::oneUnit(world));
    AppStore& store = world.start();
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_FALSE(world.lastRun().notify);
    store.saveEmail(test::mailToAnna());
    store.retryEmails();
    world.time.advance(3600);
    EXPECT_TRUE(world.mailSubjects().empty());
}

TEST(Runs, keepTheirRecordWhenTheirUnitIsGoneAtTheEnd) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.email = test::mailToAnna();
    world.write(configuration);
    AppStore& store = world.start();
    const SyncUnit unit = world.unit();
    store.removeUnit(unit);
    store.run(unit, 0);
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_TRUE(world.configuration().units.empty());
    EXPECT_EQ(world.written(), world.configuration());
}

TEST(Runs, goOnWithTheUnitThatTheyBeganWith) {
    StoreWorld world;
    world.write(test::oneUnit(world));
    AppStore& store = world.start();
    world.holdSources();
    store.run(world.unit(), 0);
    world.time.settle();
    SyncUnit changed = world.unit();
    changed.destinationPath = world.home / "Elsewhere";
    changed.schedule.frequency = ScheduleFrequency::hourly;
    store.updateUnit(changed);
    world.letSourcesGo();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_EQ(world.unit().destinationPath, world.home / "Elsewhere");
    EXPECT_EQ(world.unit().nextRun, world.time.now() + 3600) << "the schedule is the one that stands now";
}

TEST(Runs, whoseRecordCannotBeWrittenDoNotBegin) {
    StoreWorld world;
    world.write(test::oneUnit(world));
    AppStore& store = world.start();
    const AppConfiguration before = world.configuration();
    fs::remove(world.data / "Configuration.json");
    fs::create_directory(world.data / "Configuration.json");
    store.run(world.unit(), 0);
    EXPECT_EQ(world.configuration(), before);
    EXPECT_NE(world.error(), "");
    EXPECT_FALSE(*world.state().activeUnitID);
    world.time.settle();
    EXPECT_EQ(world.source->inventories, 0);
}

TEST(Runs, thatCannotBeWrittenDownAtTheirEndSayItAndEnd) {
    StoreWorld world;
    world.write(test::oneUnit(world));
    AppStore& store = world.start();
    world.holdSources();
    store.run(world.unit(), 0);
    world.time.settle();
    const fs::path file = world.data / "Configuration.json";
    const fs::path kept = world.home / "kept.json";
    fs::rename(file, kept);
    fs::create_directory(file);
    world.letSourcesGo();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_NE(world.error(), "");
    EXPECT_FALSE(*world.state().activeUnitID);
    world.end();
    fs::remove(file);
    fs::rename(kept, file);
    world.start();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::interrupted) << "as the disk has it";
}

TEST(Runs, standAlthoughTheHistoryCannotBeCleanedUp) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].retentionDays = 1;
    world.write(configuration);
    AppStore& store = world.start();
    store.run(world.unit(), 0);
    world.time.settle();
    const fs::path objects = BackupRepository(world.disk, world.unit().id).root() / "Objects";
    const fs::path fan = objects / directoryNames(objects).at(0);
    writeAll(openFile(fan / "stray", O_WRONLY | O_CREAT), "not ours");
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_TRUE(world.lastRun().snapshotID.has_value());
    EXPECT_EQ(world.lastRun().detail, "Snapshot completed. History cleanup needs attention: Invalid content "
                                      "reference in the backup.");
    EXPECT_EQ(world.unit().nextRun,
              world.unit().schedule.next(world.time.now(), Calendar(world.zone, "en_US")));
}

TEST(Runs, tellWhatTheyAreDoing) {
    StoreWorld world;
    world.write(test::oneUnit(world));
    AppStore& store = world.start();
    std::vector<std::string> lines;
    QObject::connect(&store, &AppStore::changed, [&](StoreField field) {
        if (field == StoreField::progress)
            lines.push_back(*world.state().progress);
    });
    store.run(world.unit(), 0);
    world.time.settle();
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines.front(), "Preparing snapshot…");
    EXPECT_EQ(lines.back(), "");
}

TEST(Runs, areStartedFromTheEndOfTheOneBefore) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.push_back(test::dailyUnit(world, "Photos"));
    BackupRepository(world.disk, configuration.units[1].id).initialize();
    world.write(configuration);
    AppStore& store = world.start();
    QObject::connect(&store, &AppStore::changed, [&](StoreField field) {
        if (field == StoreField::activeUnitID && !*world.state().activeUnitID &&
            world.configuration().runs.size() == 1)
            store.run(world.unit(1), 0);
    });
    store.run(world.unit(0), 0);
    world.time.settle();
    ASSERT_EQ(world.configuration().runs.size(), 2U);
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_FALSE(*world.state().activeUnitID);
    EXPECT_EQ(*world.state().progress, "");
}

TEST(Runs, areOneAtATime) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.push_back(test::dailyUnit(world, "Photos"));
    world.write(configuration);
    AppStore& store = world.start();
    world.holdSources();
    store.run(world.unit(0), 0);
    store.run(world.unit(1), 0);
    world.time.settle();
    EXPECT_EQ(world.configuration().runs.size(), 1U);
    EXPECT_EQ(world.error(), "");
    world.letSourcesGo();
}

} // namespace marrowbox
