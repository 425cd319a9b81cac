#include "StoreWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::StoreWorld;
using testing::ElementsAre;

TEST(Runs, makeASnapshotWriteItDownAndLookForward) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
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

TEST(Runs, thatAreCancelledGoOnAtTheNextRegularTime) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    world.startHeldRun();
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
    AppStore& store = world.startWith(test::oneUnit(world));
    store.run(world.unit(), 0);
    world.time.settle();
    world.startHeldRun();
    store.cancelBackup();
    world.time.settle();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::cancelled);
    ASSERT_EQ((*world.state().snapshots)->size(), 1U);
    EXPECT_EQ((*world.state().snapshots)->front().id, world.configuration().runs[1].snapshotID);
}

TEST(Runs, rememberHowTheyAreToBeMailed) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.email = test::mailToAnna();
    AppStore& store = world.startWith(configuration);
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
    AppStore& store = world.startWith(configuration);
    store.run(world.unit(), 0);
    world.time.advance(60);
    EXPECT_FALSE(world.lastRun().notify);
    EXPECT_EQ(world.lastRun().notificationPolicy, NotificationPolicy::off);
    EXPECT_TRUE(world.mailSubjects().empty());
}

TEST(Runs, madeWhileMailWasDisabledAreNeverMailed) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
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
    AppStore& store = world.startWith(configuration);
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
    AppStore& store = world.startWith(test::oneUnit(world));
    world.startHeldRun();
    SyncUnit changed = world.unit();
    changed.destinationPath = world.home / "Elsewhere";
    changed.schedule.frequency = ScheduleFrequency::hourly;
    store.updateUnit(changed);
    world.letSourcesGo();
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
    EXPECT_EQ(world.unit().destinationPath, world.home / "Elsewhere");
    EXPECT_EQ(world.unit().nextRun, world.time.now() + 3600) << "the schedule is the one that stands now";
}

TEST(Runs, tellWhatTheyAreDoing) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
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
    AppStore& store = world.startWith(configuration);
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
    AppStore& store = world.startWith(configuration);
    world.holdSources();
    store.run(world.unit(0), 0);
    store.run(world.unit(1), 0);
    world.time.settle();
    EXPECT_EQ(world.configuration().runs.size(), 1U);
    EXPECT_EQ(world.error(), "");
    world.letSourcesGo();
}

TEST(Runs, thatAreCancelledAreMailedByTheNextTick) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.email = test::mailToAnna();
    AppStore& store = world.startWith(configuration);
    world.startHeldRun();
    store.cancelBackup();
    world.time.settle();
    EXPECT_FALSE(*world.state().activeUnitID);
    EXPECT_EQ(world.lastRun().emailAttempts, 0);
    world.time.advance(30);
    EXPECT_THAT(world.mailSubjects(), ElementsAre("Marrowbox · Snapshot cancelled · Papers"));
    EXPECT_TRUE(world.lastRun().emailSent);
}

} // namespace marrowbox
