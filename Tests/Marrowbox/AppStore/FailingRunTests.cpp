#include "Models/BackupError.h"
#include "StoreWorld.h"

#include <gtest/gtest.h>

namespace marrowbox {

using test::StoreWorld;

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

TEST(Runs, whoseRecordCannotBeWrittenDoNotBegin) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
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
    world.startWith(test::oneUnit(world));
    world.startHeldRun();
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

TEST(Runs, areWrittenDownAlsoWhenTheirNextTimeCannotBeTold) {
    StoreWorld world;
    world.startWith(test::oneUnit(world));
    world.startHeldRun();
    world.zone = "Nowhere/Nothing";
    world.letSourcesGo();
    EXPECT_NE(world.error(), "");
    EXPECT_EQ(world.written().runs.at(0).outcome, RunOutcome::succeeded);
    EXPECT_EQ(world.written().units.at(0).nextRun, world.time.now() + 900);
    EXPECT_FALSE(*world.state().activeUnitID);
}

TEST(Runs, needAClientAnAccountAndRclone) {
    for (const char* const missing : {"client", "account", "rclone"}) {
        StoreWorld world;
        AppConfiguration configuration = test::oneUnit(world);
        if (missing == std::string("account"))
            configuration.accounts.clear();
        world.write(configuration);
        if (missing == std::string("client"))
            world.bundledClient.reset();
        if (missing == std::string("rclone"))
            world.rclone.reset();
        AppStore& store = world.start();
        store.run(world.unit(), 0);
        world.time.settle();
        EXPECT_EQ(world.error(), "Connect this unit’s Google account and install rclone before backing up.")
            << missing;
        EXPECT_EQ(world.configuration(), configuration) << missing;
    }
}

TEST(Runs, standAlthoughTheHistoryCannotBeCleanedUp) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].retentionDays = 1;
    AppStore& store = world.startWith(configuration);
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

TEST(Runs, ofARepositoryThatAnotherProgramWorksOnFailInItsWordsAndTryAgain) {
    StoreWorld world;
    AppStore& store = world.startWith(test::oneUnit(world));
    {
        const RepositoryLock busy = BackupRepository(world.disk, world.unit().id).lock();
        store.run(world.unit(), 0);
        world.time.settle();
    }
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::failed);
    EXPECT_EQ(world.lastRun().detail, "This backup is already in use. Wait for the other job to finish.");
    EXPECT_EQ(world.unit().nextRun, world.time.now() + 900);
    world.time.advance(930);
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
}

TEST(Runs, thatFailWithAFileNameOfAnyBytesAreWrittenDown) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].destinationBookmark.bytes = "the disk";
    world.desktop.resolutionFailures["the disk"] =
        std::make_exception_ptr(BackupError("open /media/B\xFC"
                                            "cher: No such file or directory"));
    AppStore& store = world.startWith(configuration);
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_EQ(world.lastRun().detail, "open /media/B\uFFFD"
                                      "cher: No such file or directory");
    EXPECT_EQ(world.written(), world.configuration());
    EXPECT_EQ(world.error(), "");
}

} // namespace marrowbox
