#include "Marrowbox/MarrowboxApp/Quitting.h"

#include "Marrowbox/MarrowboxApp/RunNotices.h"
#include "StoreWorld.h"

#include <gtest/gtest.h>

namespace marrowbox {

using test::StoreWorld;

namespace {

/// A program with one unit, and the way out of it.
struct Program : testing::Test {
    StoreWorld world;
    bool hasEnded = false;
    std::unique_ptr<Quitting> quitting;

    Program() {
        world.write(test::oneUnit(world));
        quitting = std::make_unique<Quitting>(world.start().shared_from_this(), [this] { hasEnded = true; });
    }
    void backUp() { world.startHeldRun(); }
};

} // namespace

TEST_F(Program, endsAtOnceWhileNoBackupRuns) {
    quitting->request();
    EXPECT_TRUE(hasEnded);
    EXPECT_FALSE(quitting->isAsking());
}

TEST_F(Program, asksWhileABackupRunsAndLeavesItAloneWhenTold) {
    backUp();
    quitting->request();
    EXPECT_TRUE(quitting->isAsking());
    quitting->keepRunning();
    EXPECT_FALSE(quitting->isAsking());
    world.letSourcesGo();
    EXPECT_FALSE(hasEnded);
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
}

TEST_F(Program, endsOnlyAfterACancelledBackupHasWoundDown) {
    backUp();
    quitting->request();
    quitting->quit();
    EXPECT_FALSE(hasEnded);
    EXPECT_TRUE(quitting->isWindingDown());
    world.time.settle();
    EXPECT_TRUE(hasEnded);
    EXPECT_EQ(world.written().runs.at(0).outcome, RunOutcome::cancelled);
}

TEST_F(Program, dropsItsQuestionWhenTheBackupEndsByItself) {
    backUp();
    quitting->request();
    world.letSourcesGo();
    EXPECT_FALSE(quitting->isAsking());
    EXPECT_FALSE(hasEnded);
}

TEST_F(Program, tellsTheDesktopOfAFailedRun) {
    std::vector<RunNotice> told;
    const RunNotices notices(world.state(), *world.store,
                             [&](const RunNotice& notice) { told.push_back(notice); });
    world.store->run(world.unit(), 0);
    world.time.settle();
    EXPECT_TRUE(told.empty());
    fs::remove_all(world.disk);
    world.store->run(world.unit(), 0);
    world.time.settle();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].title, "“Papers” was not backed up");
    EXPECT_EQ(told[0].body.toStdString(), world.lastRun().detail);
}

TEST_F(Program, tellsTheDesktopThatMissedRunsWereMadeUpFor) {
    std::vector<RunNotice> told;
    const RunNotices notices(world.state(), *world.store,
                             [&](const RunNotice& notice) { told.push_back(notice); });
    world.store->run(world.unit(), 3);
    world.time.settle();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].title, "“Papers” has caught up");
}

} // namespace marrowbox
