#include "StoreWorld.h"
#include "Web.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::StoreWorld;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

AppConfiguration twoUnits(StoreWorld& world) {
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.push_back(test::dailyUnit(world, "Photos"));
    return configuration;
}

std::vector<std::string> namesOfRuns(const StoreWorld& world) {
    std::vector<std::string> names;
    for (const RunRecord& run : world.configuration().runs)
        names.insert(names.begin(), run.unitName);
    return names;
}

} // namespace

TEST(Schedule, takesTheUnitThatHasWaitedLongestAndOneATick) {
    StoreWorld world;
    AppConfiguration configuration = twoUnits(world);
    configuration.units[0].nextRun = world.time.now() - 60;
    configuration.units[1].nextRun = world.time.now() - 120;
    world.startWith(configuration);
    EXPECT_THAT(namesOfRuns(world), ElementsAre("Photos"));
    world.time.advance(29);
    EXPECT_THAT(namesOfRuns(world), ElementsAre("Photos"));
    world.time.advance(1);
    EXPECT_THAT(namesOfRuns(world), ElementsAre("Photos", "Papers"));
}

TEST(Schedule, takesUnitsOfTheSameTimeInTheirOrder) {
    StoreWorld world;
    AppConfiguration configuration = twoUnits(world);
    configuration.units[0].nextRun = configuration.units[1].nextRun = world.time.now() - 60;
    world.startWith(configuration);
    world.time.advance(30);
    EXPECT_THAT(namesOfRuns(world), ElementsAre("Papers", "Photos"));
}

TEST(Schedule, neverTakesAUnitThatIsManualOrHasNoNextRun) {
    StoreWorld world;
    AppConfiguration configuration = twoUnits(world);
    configuration.units[0].nextRun.reset();
    configuration.units[1].schedule.frequency = ScheduleFrequency::manual;
    configuration.units[1].nextRun = world.time.now() - 60;
    world.startWith(configuration);
    world.time.advance(2 * 86'400);
    EXPECT_THAT(namesOfRuns(world), IsEmpty());
}

TEST(Schedule, passesOverAUnitWithoutCredentialAndCatchesUpWhenItReturns) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].schedule.frequency = ScheduleFrequency::hourly;
    configuration.units[0].nextRun = world.time.now() + 60;
    world.write(configuration);
    world.removeCredential(test::anna());
    world.start();
    world.time.advance(3 * 3600);
    EXPECT_THAT(namesOfRuns(world), IsEmpty());
    EXPECT_EQ(world.error(), "");
    world.addCredential(test::anna());
    world.time.advance(30);
    ASSERT_THAT(world.configuration().runs, SizeIs(1));
    EXPECT_EQ(world.lastRun().missedRuns, 3);
    EXPECT_THAT(readFile(world.data / "Configuration.json"), ContainsRegex("\"missedRuns\" ?: ?3"));
}

TEST(Schedule, countsNothingAsMissedWithinTheGraceTime) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].nextRun = world.time.now() - 300;
    world.startWith(configuration);
    EXPECT_FALSE(world.lastRun().missedRuns);
    EXPECT_EQ(readFile(world.data / "Configuration.json").find("missedRuns"), std::string::npos);
}

TEST(Schedule, catchesUpOnceWhenTheMachineWakes) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].schedule.frequency = ScheduleFrequency::tenMinutes;
    configuration.units[0].nextRun = world.time.now() + 60;
    world.startWith(configuration);
    world.time.jump(3600);
    world.time.settle();
    EXPECT_THAT(namesOfRuns(world), IsEmpty()) << "nothing has told that the machine woke";
    world.desktop.wake();
    world.time.settle();
    ASSERT_THAT(world.configuration().runs, SizeIs(1));
    EXPECT_EQ(world.lastRun().missedRuns, 6);
    EXPECT_EQ(world.unit().nextRun, world.time.now() + 600);
}

TEST(Schedule, looksAgainWhenAVolumeAppears) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].nextRun = world.time.now() + 10;
    world.startWith(configuration);
    world.time.advance(10);
    world.desktop.makeVolumeAppear();
    world.time.settle();
    EXPECT_THAT(namesOfRuns(world), ElementsAre("Papers"));
}

TEST(Schedule, startsNoRunDuringARunButSendsMail) {
    StoreWorld world;
    AppConfiguration configuration = twoUnits(world);
    configuration.units[1].nextRun = world.time.now() + 60;
    configuration.runs = {test::mailedRun(configuration.units[0], world.time.now() - 60)};
    configuration.runs[0].nextEmailAttempt = world.time.now() + 60;
    AppStore& store = world.startWith(configuration);
    world.holdSources();
    store.run(world.unit(), 0);
    world.time.advance(120);
    EXPECT_THAT(namesOfRuns(world), ElementsAre("Papers", "Papers"));
    EXPECT_THAT(world.mailSubjects(), ElementsAre("Marrowbox · Snapshot complete · Papers"));
    world.letSourcesGo();
    world.time.advance(30);
    EXPECT_THAT(namesOfRuns(world), ElementsAre("Papers", "Papers", "Photos"));
}

TEST(Schedule, saysAtEachTickThatRcloneIsMissing) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].nextRun = world.time.now() - 60;
    world.write(configuration);
    world.rclone.reset();
    AppStore& store = world.start();
    const std::string message = "Connect this unit’s Google account and install rclone before backing up.";
    EXPECT_EQ(world.error(), message);
    EXPECT_EQ(world.unit().nextRun, configuration.units[0].nextRun);
    store.dismissError();
    world.time.advance(30);
    EXPECT_EQ(world.error(), message);
    EXPECT_THAT(namesOfRuns(world), IsEmpty());
}

TEST(Schedule, endsWithTheStore) {
    StoreWorld world;
    world.startWith(test::oneUnit(world));
    world.time.settle();
    const std::weak_ptr<AppStore> store = world.store;
    world.store.reset();
    world.time.advance(60);
    EXPECT_TRUE(store.expired());
    EXPECT_EQ(world.time.waits(), 0U);
}

TEST(Schedule, writesNothingWhenNothingIsDue) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    world.time.advance(5);
    const auto before = fs::last_write_time(world.data / "Configuration.json");
    const auto folder = fs::last_write_time(world.data);
    const auto credentials = fs::last_write_time(world.data / "Credentials");
    store.tick();
    world.time.advance(3600);
    EXPECT_EQ(fs::last_write_time(world.data / "Configuration.json"), before);
    EXPECT_EQ(fs::last_write_time(world.data), folder);
    EXPECT_EQ(fs::last_write_time(world.data / "Credentials"), credentials);
}

TEST(Schedule, goesOnAfterATickThatFailed) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].nextRun = world.time.now() + 10;
    configuration.runs = {test::mailedRun(configuration.units[0], world.time.now() - 60)};
    configuration.runs[0].nextEmailAttempt = world.time.now() + 10;
    world.startWith(configuration);
    world.zone = "Nowhere/Nothing";
    world.time.advance(30);
    EXPECT_NE(world.error(), "");
    EXPECT_THAT(world.mailSubjects(), IsEmpty()) << "its dates need the zone too";
    EXPECT_THAT(world.configuration().runs, SizeIs(1));
    world.zone = "Europe/Berlin";
    world.time.advance(30);
    EXPECT_THAT(world.configuration().runs, SizeIs(2));
    EXPECT_THAT(world.mailSubjects(), SizeIs(1));
}

} // namespace marrowbox
