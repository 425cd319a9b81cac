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
