#include "StoreWorld.h"
#include "Web.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::mailedRun;
using test::StoreWorld;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// Anna and two units that report once a day, the first with two finished runs and the second with one.
AppConfiguration twoDigests(StoreWorld& world) {
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.push_back(test::dailyUnit(world, "Photos"));
    for (SyncUnit& unit : configuration.units)
        unit.notifications = NotificationPolicy::daily;
    const Date now = world.time.now();
    configuration.runs = {mailedRun(configuration.units[1], now - 60),
                          mailedRun(configuration.units[0], now - 120),
                          mailedRun(configuration.units[0], now - 180)};
    return configuration;
}

} // namespace

TEST(Digests, goOutInOnePassInTheOrderOfTheUnits) {
    StoreWorld world;
    world.startWith(twoDigests(world));
    EXPECT_THAT(world.mailSubjects(),
                ElementsAre("Marrowbox · Daily summary · Papers", "Marrowbox · Daily summary · Photos"));
    EXPECT_THAT(world.configuration().runs, Each(Field(&RunRecord::emailSent, true)));
    EXPECT_THAT(world.configuration().units,
                Each(Field(&SyncUnit::lastDigestAt, std::optional(world.time.now()))));
    EXPECT_EQ(world.written(), world.configuration());
}

TEST(Digests, goOutNoMoreThanOnceADayHoweverManyRunsEnd) {
    StoreWorld world;
    AppConfiguration configuration = twoDigests(world);
    configuration.units.pop_back();
    configuration.runs.erase(configuration.runs.begin());
    configuration.units[0].schedule.frequency = ScheduleFrequency::hourly;
    configuration.units[0].nextRun = world.time.now() + 600;
    configuration.email = test::mailToAnna();
    world.startWith(configuration);
    EXPECT_THAT(world.mailSubjects(), SizeIs(1));
    world.time.advance(86'400 - 1);
    EXPECT_THAT(world.mailSubjects(), SizeIs(1));
    EXPECT_GT(world.configuration().runs.size(), 20U);
    world.time.advance(60);
    EXPECT_THAT(world.mailSubjects(), SizeIs(2));
    EXPECT_EQ(world.state().pendingEmails(), 0U);
}

TEST(Digests, thatFailAreTriedAgainWithoutWaitingForTheNextDay) {
    StoreWorld world;
    world.write(twoDigests(world));
    world.web = test::offline();
    world.start();
    EXPECT_THAT(world.configuration().units, Each(Field(&SyncUnit::lastDigestAt, std::nullopt)));
    for (const RunRecord& run : world.configuration().runs) {
        EXPECT_EQ(run.emailAttempts, 1);
        EXPECT_EQ(run.emailError, "The network is unreachable.");
        EXPECT_EQ(run.nextEmailAttempt, world.time.now() + 120);
    }
    world.web = {};
    world.time.advance(119);
    EXPECT_THAT(world.mailSubjects(), SizeIs(2));
    world.time.advance(30);
    EXPECT_THAT(world.mailSubjects(), SizeIs(4));
    EXPECT_EQ(world.state().pendingEmails(), 0U);
}

TEST(Digests, backOffEachRunByItsOwnAttempts) {
    StoreWorld world;
    AppConfiguration configuration = twoDigests(world);
    configuration.runs[1].emailAttempts = 3;
    world.write(configuration);
    world.web = test::offline();
    world.start();
    EXPECT_EQ(world.configuration().runs[1].nextEmailAttempt, world.time.now() + 960);
    EXPECT_EQ(world.configuration().runs[2].nextEmailAttempt, world.time.now() + 120);
}

TEST(Digests, goByTheSettingsOfTheNewestRun) {
    StoreWorld world;
    AppConfiguration configuration = twoDigests(world);
    configuration.runs[1].emailSettings->recipient = "newest@example.org";
    configuration.runs[2].emailSettings->recipient = "oldest@example.org";
    world.startWith(configuration);
    EXPECT_THAT(world.mailRecipients(), ElementsAre("newest@example.org", "anna@example.org"));
}

TEST(Digests, waitInSilenceWhileTheNewestRunCannotBeMailed) {
    StoreWorld world;
    AppConfiguration configuration = twoDigests(world);
    configuration.runs[1].emailSettings->accountID = "bert";
    world.startWith(configuration);
    EXPECT_THAT(world.mailSubjects(), ElementsAre("Marrowbox · Daily summary · Photos"));
    EXPECT_EQ(world.configuration().runs[1], configuration.runs[1]);
    EXPECT_EQ(world.configuration().runs[2], configuration.runs[2]);
}

TEST(Digests, neverGoOutForAUnitThatChangedItsPolicyOrIsGone) {
    StoreWorld world;
    AppConfiguration configuration = twoDigests(world);
    configuration.units[0].notifications.reset();
    configuration.units.pop_back();
    world.startWith(configuration);
    world.time.advance(2 * 3600);
    EXPECT_THAT(world.requests, IsEmpty());
    EXPECT_EQ(world.state().pendingEmails(), 3U);
}

TEST(Digests, leaveOutRunsThatStillGo) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].notifications = NotificationPolicy::daily;
    configuration.email = test::mailToAnna();
    AppStore& store = world.startWith(configuration);
    world.holdSources();
    store.run(world.unit(), 0);
    world.time.advance(60);
    EXPECT_THAT(world.requests, IsEmpty());
    EXPECT_EQ(world.state().pendingEmails(), 0U);
    world.letSourcesGo();
    EXPECT_THAT(world.mailSubjects(), ElementsAre("Marrowbox · Daily summary · Papers"));
}

TEST(Digests, areForgottenForAUnitThatIsRemovedWhileItsMailGoesOut) {
    StoreWorld world;
    world.write(twoDigests(world));
    test::HeldWeb web(world.time.context().get_executor());
    world.web = web.send();
    AppStore& store = world.start();
    ASSERT_THAT(world.mailSubjects(), SizeIs(1));
    store.removeUnit(world.unit(0));
    store.removeUnit(world.unit(0));
    web.letGo();
    world.time.settle();
    EXPECT_THAT(world.mailSubjects(), SizeIs(1)) << "the second unit has gone before its turn";
    EXPECT_TRUE(world.configuration().runs[1].emailSent);
    EXPECT_FALSE(world.configuration().runs[0].emailSent);
    EXPECT_EQ(world.error(), "");
}

TEST(Digests, includeARunThatEndsWhileTheMailOfAnEarlierUnitGoesOut) {
    StoreWorld world;
    AppConfiguration configuration = twoDigests(world);
    configuration.runs.erase(configuration.runs.begin());
    configuration.email = test::mailToAnna();
    world.write(configuration);
    test::HeldWeb web(world.time.context().get_executor());
    world.web = web.send();
    AppStore& store = world.start();
    ASSERT_THAT(world.mailSubjects(), ElementsAre("Marrowbox · Daily summary · Papers"));
    store.run(world.unit(1), 0);
    world.time.settle();
    ASSERT_FALSE(*world.state().activeUnitID);
    web.letGo();
    world.time.settle();
    EXPECT_THAT(world.mailSubjects(),
                ElementsAre("Marrowbox · Daily summary · Papers", "Marrowbox · Daily summary · Photos"));
    EXPECT_EQ(world.state().pendingEmails(), 0U);
}

} // namespace marrowbox
