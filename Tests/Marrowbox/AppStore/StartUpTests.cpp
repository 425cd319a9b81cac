#include "Models/BackupError.h"
#include "StoreWorld.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace marrowbox {

using test::StoreWorld;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// While it lives, no file of this process can grow beyond some bytes.
class FullDisk {
  public:
    FullDisk() : before_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &limit_);
        const rlimit small{.rlim_cur = 64, .rlim_max = limit_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &limit_);
        std::signal(SIGXFSZ, before_);
    }

  private:
    void (*before_)(int);
    rlimit limit_{};
};

/// What writes that were stopped in the middle leave in a data folder, and what only looks so.
std::vector<fs::path> plantLeftovers(const fs::path& data) {
    makeDirectories(data, 0700);
    std::vector<fs::path> planted;
    for (const char* name : {".Configuration.json.0123456789abcdef", ".GoogleOAuth.json.0123456789abcdef",
                             ".Configuration.json.swp"}) {
        planted.push_back(data / name);
        writeAll(openFile(planted.back(), O_WRONLY | O_CREAT), "{\"units\": [");
    }
    return planted;
}

RunRecord runningRecord(const SyncUnit& unit, Date startedAt) {
    RunRecord record = beginRunRecord(unit, "anna@example.org", true, startedAt);
    record.notificationPolicy = NotificationPolicy::all;
    return record;
}

} // namespace

TEST(StartUp, makesAPrivateFolderAndTheDefaultConfigurationAtTheFirstStart) {
    StoreWorld world;
    world.start();
    struct stat status{};
    ASSERT_EQ(::stat(world.data.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    EXPECT_EQ(world.written(), AppConfiguration());
    EXPECT_FALSE(*world.state().selectedUnitID);
    EXPECT_EQ(world.error(), "");
}

TEST(StartUp, turnsARunThatACrashLeftIntoAnInterruptedOneAndRunsItAgain) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].nextRun = world.time.now() - 60;
    configuration.runs = {runningRecord(configuration.units[0], world.time.now() - 3600)};
    world.write(configuration);
    world.begin();
    const RunRecord& recovered = world.lastRun();
    EXPECT_EQ(recovered.outcome, RunOutcome::interrupted);
    EXPECT_EQ(recovered.endedAt, world.time.now());
    EXPECT_EQ(recovered.detail, "The app stopped before this snapshot finished. Any previously completed "
                                "snapshots remain available.");
    EXPECT_TRUE(recovered.notify);
    EXPECT_EQ(world.unit().nextRun, world.time.now() - 60);
    EXPECT_EQ(world.written().runs, world.configuration().runs);
    world.time.settle();
    ASSERT_EQ(world.configuration().runs.size(), 2U);
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
}

TEST(StartUp, readsASwitchedOffUnitAsAManualOne) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    SyncUnit on = configuration.units[0];
    on.id = Uuid::random();
    on.isEnabled = true;
    configuration.units[0].isEnabled = false;
    configuration.units.push_back(on);
    world.startWith(configuration);
    EXPECT_EQ(world.unit(0).schedule.frequency, ScheduleFrequency::manual);
    EXPECT_FALSE(world.unit(0).nextRun);
    EXPECT_EQ(world.unit(1).schedule, on.schedule);
    EXPECT_EQ(world.unit(1).nextRun, on.nextRun);
    EXPECT_THAT(readFile(world.data / "Configuration.json"), Not(HasSubstr("isEnabled")));
}

TEST(StartUp, touchesNothingButTheFolderThatItIsTold) {
    StoreWorld world;
    world.environment["XDG_DATA_HOME"] = (world.home / "Share").string();
    world.environment["HOME"] = (world.home / "User").string();
    AppStore& store = world.startWith(test::oneUnit(world));
    store.run(world.unit(), 0);
    world.time.advance(60);
    EXPECT_FALSE(fs::exists(world.home / "Share"));
    EXPECT_FALSE(fs::exists(world.home / "User"));
}

TEST(StartUp, keepsItsFilesInTheUsersFolderForDataUnlessToldOtherwise) {
    StoreWorld world;
    world.environment = {{"XDG_DATA_HOME", (world.home / "Share").string()}};
    world.start();
    EXPECT_TRUE(fs::exists(world.home / "Share" / "Marrowbox" / "Configuration.json"));
    EXPECT_FALSE(fs::exists(world.data));
}

TEST(StartUp, goesOnWithoutKnowingWhetherItStartsAtLogin) {
    StoreWorld world;
    world.write(test::oneUnit(world));
    world.desktop.statusFailure = std::make_exception_ptr(BackupError("No autostart folder."));
    world.start();
    EXPECT_TRUE(world.store->configurationIsReadable());
    EXPECT_EQ(world.error(), "");
    EXPECT_FALSE(*world.state().startAtLogin);
}

TEST(StartUp, neitherWritesNorSchedulesWhenItsFirstWriteFails) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units[0].nextRun = world.time.now() - 60;
    configuration.runs = {runningRecord(configuration.units[0], world.time.now() - 3600)};
    world.write(configuration);
    const std::string before = readFile(world.data / "Configuration.json");
    {
        const FullDisk full;
        world.start();
    }
    EXPECT_THAT(world.error(), HasSubstr("File too large"));
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::interrupted) << "in memory";
    world.time.advance(600);
    EXPECT_EQ(world.configuration().runs.size(), 1U);
    EXPECT_FALSE(world.store->configurationIsReadable());
    EXPECT_EQ(readFile(world.data / "Configuration.json"), before);
}

TEST(StartUp, selectsTheFirstUnit) {
    StoreWorld world;
    world.startWith(test::oneUnit(world));
    EXPECT_EQ(*world.state().selectedUnitID, world.unit().id);
    EXPECT_EQ(world.state().credentialProject->c_str(), std::string("Bundled project"));
}

TEST(StartUp, neverOverwritesAConfigurationOfALaterVersion) {
    StoreWorld world;
    AppConfiguration later = test::oneUnit(world);
    later.schemaVersion = 2;
    later.units[0].nextRun = world.time.now() - 60;
    world.write(later);
    const std::string before = readFile(world.data / "Configuration.json");
    AppStore& store = world.start();
    EXPECT_EQ(world.error(), "This configuration needs a newer Marrowbox version.");
    EXPECT_EQ(world.configuration().units.size(), 1U);
    store.removeUnit(world.unit());
    EXPECT_EQ(world.error(),
              "Configuration could not be loaded. It has been preserved; automatic backups are paused.");
    EXPECT_THROW(world.finish(store.addUnit(test::dailyUnit(world), world.disk)), BackupError);
    store.retryEmails();
    store.removeAccount(test::anna());
    store.useBundledClient();
    world.time.advance(600);
    EXPECT_EQ(readFile(world.data / "Configuration.json"), before);
    EXPECT_THAT(world.configuration().runs, IsEmpty());
}

TEST(StartUp, preservesAConfigurationThatCannotBeRead) {
    StoreWorld world;
    makeDirectories(world.data, 0700);
    writeAll(openFile(world.data / "Configuration.json", O_WRONLY | O_CREAT), "{\"units\": [");
    world.start();
    EXPECT_NE(world.error(), "");
    EXPECT_FALSE(world.store->configurationIsReadable());
    EXPECT_EQ(readFile(world.data / "Configuration.json"), "{\"units\": [");
}

TEST(StartUp, beginsNothingAnewWhereTheLinkToItsConfigurationLeadsNowhere) {
    StoreWorld world;
    makeDirectories(world.data, 0700);
    fs::create_symlink(world.home / "Away" / "Configuration.json", world.data / "Configuration.json");
    world.start();
    EXPECT_THAT(world.error(), HasSubstr("No such file"));
    EXPECT_FALSE(world.store->configurationIsReadable());
    EXPECT_TRUE(fs::is_symlink(world.data / "Configuration.json"));
}

TEST(StartUp, tellsThatASecondCopyRuns) {
    StoreWorld first;
    first.write(test::oneUnit(first));
    first.start();
    StoreWorld second;
    fs::create_directory_symlink(first.data, second.data);
    second.start();
    EXPECT_EQ(second.error(), "This backup is already in use. Wait for the other job to finish.");
    EXPECT_THAT(second.configuration().units, IsEmpty());
}

TEST(StartUp, opensWithoutAFolderForItsDataAndSchedulesNothing) {
    StoreWorld world;
    writeAll(openFile(world.home / "file", O_WRONLY | O_CREAT), "in the way");
    world.environment["MARROW_DATA_DIR"] = (world.home / "file" / "Data").string();
    AppStore& store = world.start();
    EXPECT_THAT(world.error(), HasSubstr("Not a directory"));
    EXPECT_FALSE(store.configurationIsReadable());
    EXPECT_EQ(world.configuration(), AppConfiguration());
    store.dismissError();
    world.time.advance(600);
    EXPECT_EQ(world.error(), "");
}

TEST(StartUp, mailsARunThatACrashInterruptedLikeAnyOther) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.runs = {runningRecord(configuration.units[0], world.time.now() - 3600)};
    configuration.runs[0].emailSettings = test::mailToAnna();
    world.startWith(configuration);
    EXPECT_THAT(world.mailSubjects(), ElementsAre("Marrowbox · Snapshot interrupted · Papers"));
    EXPECT_TRUE(world.lastRun().emailSent);
}

TEST(StartUp, startsNoRunAndSavesNoSettingsWhenNothingMayBeWritten) {
    StoreWorld world;
    AppConfiguration later = test::oneUnit(world);
    later.schemaVersion = 2;
    AppStore& store = world.startWith(later);
    store.dismissError();
    store.run(world.unit(), 0);
    world.time.settle();
    EXPECT_EQ(world.error(), "") << "a run is refused in silence";
    EXPECT_FALSE(*world.state().activeUnitID);
    EXPECT_THROW(store.saveEmail(test::mailToAnna()), BackupError);
    EXPECT_EQ(world.configuration().email, later.email);
    EXPECT_EQ(world.written(), later);
}

TEST(StartUp, removesWhatAStopInTheMiddleOfAWriteLeft) {
    StoreWorld world;
    const auto planted = plantLeftovers(world.data);
    world.startWith(test::oneUnit(world));
    EXPECT_FALSE(fs::exists(planted[0]));
    EXPECT_FALSE(fs::exists(planted[1]));
    EXPECT_TRUE(fs::exists(planted[2])) << "nothing that is not its own";
    EXPECT_EQ(world.error(), "");
    EXPECT_EQ(world.configuration().units.size(), 1U);
}

TEST(StartUp, leavesEveryFileWhereNothingMayBeWritten) {
    StoreWorld world;
    AppConfiguration later = test::oneUnit(world);
    later.schemaVersion = 2;
    const auto planted = plantLeftovers(world.data);
    world.startWith(later);
    for (const fs::path& path : planted)
        EXPECT_TRUE(fs::exists(path)) << path;
}

TEST(StartUp, leavesTheWritesOfAnotherCopyAlone) {
    StoreWorld first;
    first.startWith(test::oneUnit(first));
    const auto planted = plantLeftovers(first.data);
    StoreWorld second;
    second.environment = {{"MARROW_DATA_DIR", first.data.string()}};
    second.start();
    EXPECT_FALSE(second.store->configurationIsReadable());
    for (const fs::path& path : planted)
        EXPECT_TRUE(fs::exists(path)) << path;
}

TEST(StartUp, takesOverOnceTheFirstCopyHasEnded) {
    StoreWorld first;
    first.write(test::oneUnit(first));
    first.start();
    StoreWorld second;
    fs::create_directory_symlink(first.data, second.data);
    second.start();
    EXPECT_FALSE(second.store->configurationIsReadable());
    second.end();
    first.end();
    second.start();
    EXPECT_TRUE(second.store->configurationIsReadable()) << second.error();
    EXPECT_EQ(second.configuration().units.size(), 1U);
}

} // namespace marrowbox
