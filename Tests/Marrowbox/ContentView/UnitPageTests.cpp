#include "ScriptedState.h"
#include "StoreWorld.h"

#include "Marrowbox/ContentView/UnitPageModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::addRun;
using test::runOf;
using test::scripted;
using test::StoreWorld;

namespace {

/// A world with one unit, whose page the test reads.
struct PageWorld : StoreWorld {
    PageWorld() {
        write(test::oneUnit(*this));
        start();
    }

    template <typename Change>
    void changeUnit(Change change) {
        scripted(*store).configuration.change(
            [&](AppConfiguration& current) { change(current.units.front()); });
    }
    UnitPage page() const { return UnitPageModel(store).page(); }
};

std::string text(const QString& shown) {
    return shown.toStdString();
}

} // namespace

TEST(UnitPage, ofAUnitWithoutARunRecordWaitsForItsFirstSnapshotThoughSnapshotsExist) {
    PageWorld world;
    scripted(*world.store).snapshots.set(test::snapshotsOf(world.unit(), 3, world.time.now()));
    EXPECT_EQ(text(world.page().statusTitle), "Ready for your first snapshot.");
    EXPECT_EQ(text(world.page().lastResult), "");
}

TEST(UnitPage, saysInPlainWordsHowTheLastRunEnded) {
    const std::vector<std::pair<RunOutcome, std::string>> titles = {
        {RunOutcome::failed, "The last snapshot needs attention."},
        {RunOutcome::succeeded, "Your files are in a safe place."},
        {RunOutcome::cancelled, "Ready for your first snapshot."},
        {RunOutcome::interrupted, "Ready for your first snapshot."}};
    for (const auto& [outcome, title] : titles) {
        PageWorld world;
        addRun(*world.store, runOf(world.unit(), outcome, world.time.now()));
        EXPECT_EQ(text(world.page().statusTitle), title);
        EXPECT_EQ(world.page().lastResultIsGood, outcome == RunOutcome::succeeded);
    }
}

TEST(UnitPage, showsWhatTheLastRunOfThisUnitHadToSay) {
    PageWorld world;
    RunRecord run = runOf(world.unit(), RunOutcome::failed, world.time.now());
    run.detail = "The disk is full.";
    addRun(*world.store, run);
    SyncUnit other = world.unit();
    other.id = Uuid::random();
    addRun(*world.store, runOf(other, RunOutcome::succeeded, world.time.now()));
    EXPECT_EQ(text(world.page().lastResult), "The disk is full.");
    EXPECT_EQ(text(world.page().statusTitle), "The last snapshot needs attention.");
}

TEST(UnitPage, shiftsToTheRunWhileOneIsUnderWay) {
    PageWorld world;
    world.holdSources();
    UnitPageModel model(world.store);
    model.backUpNow();
    EXPECT_TRUE(model.page().isBusy);
    EXPECT_EQ(text(model.page().statusTitle), "Backing up your files.");
    EXPECT_EQ(text(model.page().nextText), "");
    EXPECT_EQ(text(model.progress()), "Preparing snapshot…");
    world.time.settle();
    EXPECT_EQ(text(model.progress()), "Reading Google Drive…");
    model.cancelBackup();
    world.time.settle();
    EXPECT_FALSE(model.page().isBusy);
    EXPECT_EQ(text(model.progress()), "");
    EXPECT_EQ(text(model.page().lastResult),
              "Cancelled before completion. Previously completed snapshots remain available.");
    EXPECT_FALSE(model.page().lastResultIsGood);
}

TEST(UnitPage, countsFilesWhereTheProgressNamesThem) {
    PageWorld world;
    UnitPageModel model(world.store);
    scripted(*world.store).activeUnitID.set(world.unit().id);
    scripted(*world.store).progress.set("Downloading 33–64 of 1250 changed files…");
    EXPECT_EQ(model.progressDone(), 32);
    EXPECT_EQ(model.progressTotal(), 1250);
    scripted(*world.store).progress.set("Verifying the backup…");
    EXPECT_EQ(model.progressDone(), 0);
    EXPECT_EQ(model.progressTotal(), 0);
}

TEST(UnitPage, ofAUnitSaysNothingOfTheRunOfAnother) {
    PageWorld world;
    UnitPageModel model(world.store);
    scripted(*world.store).activeUnitID.set(Uuid::random());
    scripted(*world.store).progress.set("Reading Google Drive…");
    EXPECT_FALSE(model.page().isBusy);
    EXPECT_EQ(text(model.progress()), "");
}

TEST(UnitPage, tellsWhenTheNextSnapshotComes) {
    PageWorld world;
    EXPECT_EQ(text(world.page().nextText), "Next snapshot Mar 3, 2026, 9:00\u00A0AM");
    EXPECT_EQ(text(world.page().scheduleDetail), "Next snapshot in 23 hr");
    EXPECT_EQ(text(world.page().schedule), "Daily at 09:00");
    world.changeUnit([&](SyncUnit& unit) { unit.nextRun = world.time.now(); });
    EXPECT_EQ(text(world.page().nextText), "The next snapshot is due now and starts in a moment.");
    EXPECT_EQ(text(world.page().scheduleDetail), "Due now");
    world.changeUnit([](SyncUnit& unit) { unit.nextRun.reset(); });
    EXPECT_EQ(text(world.page().nextText), "Back up whenever you’re ready.");
    EXPECT_EQ(text(world.page().scheduleDetail), "Catches up after sleep");
    world.changeUnit([](SyncUnit& unit) { unit.schedule.frequency = ScheduleFrequency::manual; });
    EXPECT_EQ(text(world.page().nextText), "Back up whenever you’re ready.");
    EXPECT_EQ(text(world.page().scheduleDetail), "Only when you start it");
    EXPECT_EQ(text(world.page().schedule), "On demand");
}

TEST(UnitPage, followsTheMinuteWithoutAnyChangeOfTheStore) {
    PageWorld world;
    UnitPageModel model(world.store);
    world.changeUnit([&](SyncUnit& unit) { unit.nextRun = world.time.now() + 7200; });
    EXPECT_EQ(text(model.page().scheduleDetail), "Next snapshot in 2 hr");
    world.store->removeAccount(test::anna()); // does nothing, and shows that it is no change that tells
    int changes = 0;
    QObject::connect(&model, &UnitPageModel::pageChanged, [&] { ++changes; });
    world.time.advance(60);
    EXPECT_EQ(text(model.page().scheduleDetail), "Next snapshot in 1 hr 59 min");
    EXPECT_EQ(changes, 1);
}

TEST(UnitPage, thatNobodySeesDoesNotFollowTheClock) {
    PageWorld world;
    UnitPageModel model(world.store);
    world.time.settle();
    const std::size_t waits = world.time.waits();
    model.setFollowsTime(false);
    world.time.settle();
    EXPECT_EQ(world.time.waits(), waits - 1);
    model.setFollowsTime(true);
    world.time.settle();
    EXPECT_EQ(world.time.waits(), waits);
}

TEST(UnitPage, asksToReconnectAnAccountWithoutItsCredential) {
    PageWorld world;
    world.removeCredential(test::anna());
    world.store->refreshCredentialAvailability();
    UnitPageModel model(world.store);
    EXPECT_TRUE(model.page().isDisconnected);
    EXPECT_EQ(text(model.page().reconnectTitle), "Reconnect");
    EXPECT_EQ(text(model.page().accountLine), "anna@example.org");
    EXPECT_EQ(text(model.page().nextText), "Reconnect this Google account to resume automatic backups.");
    EXPECT_EQ(text(model.page().scheduleDetail), "Stopped · reconnect Google");
    model.reconnect();
    EXPECT_EQ(text(model.page().reconnectTitle), "Waiting for Google…");
    EXPECT_TRUE(model.page().isConnecting);
    world.time.settle();
    EXPECT_EQ(world.desktop.count("openPage"), 1U);
}

TEST(UnitPage, asksForAnAccountWhereTheUnitsOwnIsUnknown) {
    PageWorld world;
    world.changeUnit([](SyncUnit& unit) { unit.accountID = "gone"; });
    EXPECT_TRUE(world.page().isDisconnected);
    EXPECT_EQ(text(world.page().reconnectTitle), "Connect Google account");
    EXPECT_EQ(text(world.page().accountLine), "Account disconnected");
}

TEST(UnitPage, namesItsOriginByTheKindOfSource) {
    struct Row {
        DriveLocation source;
        std::string eyebrow, origin, detail, icon, link;
    };
    const std::string links = "https://drive.google.com/drive/";
    const std::string user = "?authuser=anna%40example.org";
    const std::vector<Row> rows = {
        {{"root", "My Drive", {}},
         "GOOGLE DRIVE",
         "All of My Drive",
         "Folder in My Drive",
         "folder",
         links + "my-drive" + user},
        {{"f1", "Letters", {}},
         "GOOGLE DRIVE",
         "Letters",
         "Folder in My Drive",
         "folder",
         links + "folders/f1" + user},
        {{"f2", "Plans", "d1"},
         "SHARED DRIVE",
         "Plans",
         "Folder in a shared drive",
         "person.2.crop.square.stack",
         links + "folders/f2" + user},
        {{"d1", "Team", "d1"},
         "SHARED DRIVE",
         "Team",
         "Whole shared drive",
         "person.2.crop.square.stack",
         links + "folders/d1" + user},
    };
    PageWorld world;
    for (const Row& row : rows) {
        world.changeUnit([&](SyncUnit& unit) { unit.source = row.source; });
        const UnitPage page = world.page();
        EXPECT_EQ(text(page.eyebrow), row.eyebrow);
        EXPECT_EQ(text(page.origin), row.origin);
        EXPECT_EQ(text(page.originDetail), row.detail);
        EXPECT_EQ(text(page.originIcon), row.icon);
        EXPECT_EQ(text(page.originLink), row.link);
    }
}

TEST(UnitPage, opensItsOriginInTheBrowserUnlessItHasNoAddress) {
    PageWorld world;
    UnitPageModel(world.store).openOrigin();
    EXPECT_THAT(
        world.desktop.calls(),
        testing::Contains("openPage https://drive.google.com/drive/my-drive?authuser=anna%40example.org"));
    world.changeUnit([](SyncUnit& unit) { unit.source.id = "not an id"; });
    EXPECT_EQ(text(world.page().originLink), "");
    UnitPageModel(world.store).openOrigin();
    EXPECT_EQ(world.desktop.count("openPage"), 1U);
}

TEST(UnitPage, showsStorageOnlyWhenBothSizesAreKnownAndNothingAsZero) {
    PageWorld world;
    EXPECT_EQ(text(world.page().totalSize), "") << "no snapshot, no size of the latest";
    scripted(*world.store).storageUsage.set({.totalRetainedBytes = 1'500'000, .latestSnapshotBytes = {}});
    EXPECT_EQ(text(world.page().totalSize), "");
    scripted(*world.store).storageUsage.set({.totalRetainedBytes = 1'500'000, .latestSnapshotBytes = 0});
    EXPECT_EQ(text(world.page().totalSize), "1.5 MB");
    EXPECT_EQ(text(world.page().latestSize), "0 B");
}

TEST(UnitPage, offersToExploreTheNewestSnapshotAndOneAtATime) {
    PageWorld world;
    EXPECT_EQ(text(world.page().exploreTitle), "");
    EXPECT_EQ(text(world.page().destinationDetail), "0 saved snapshots");
    UnitPageModel model(world.store);
    model.explore(); // nothing to explore
    EXPECT_FALSE(model.page().isExploring);
    scripted(*world.store).snapshots.set(test::snapshotsOf(world.unit(), 1200, world.time.now()));
    EXPECT_EQ(text(model.page().exploreTitle), "Explore snapshot");
    EXPECT_EQ(text(model.page().destinationDetail), "1,200 saved snapshots");
    model.explore();
    EXPECT_TRUE(model.page().isExploring);
    EXPECT_EQ(text(model.page().exploreTitle), "Preparing snapshot…");
}

TEST(UnitPage, keepsTheDestinationAndItsProblem) {
    PageWorld world;
    EXPECT_EQ(text(world.page().destination), world.disk.string());
    scripted(*world.store).destinationIssue.set("The disk is not connected.");
    EXPECT_EQ(text(world.page().destinationIssue), "The disk is not connected.");
}

TEST(UnitPage, closesWhatWasOpenedWhenAnotherUnitIsSelected) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.push_back(test::dailyUnit(world, "Photos"));
    AppStore& store = world.startWith(configuration);
    UnitPageModel model(world.store);
    model.setConfirmsRemove(true);
    model.setShowsActivity(true);
    store.select(world.unit(1).id);
    EXPECT_EQ(text(model.page().name), "Photos");
    EXPECT_FALSE(model.confirmsRemove() || model.showsActivity());
}

TEST(UnitPage, asksForTheSettingsOfItsUnitByName) {
    PageWorld world;
    UnitPageModel model(world.store);
    std::vector<std::string> wanted;
    QObject::connect(&model, &UnitPageModel::optionsWanted,
                     [&](const QString& id) { wanted.push_back(text(id)); });
    model.openOptions();
    EXPECT_THAT(wanted, testing::ElementsAre(world.unit().id.text()));
}

TEST(UnitPage, doesNotCallAHistoryEmptyBeforeItHasBeenRead) {
    StoreWorld world;
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.push_back(test::dailyUnit(world, "Photos"));
    AppStore& store = world.startWith(configuration);
    store.run(world.unit(), 0);
    world.time.settle();
    store.select(world.unit(1).id);
    world.time.settle();
    UnitPageModel model(world.store);
    EXPECT_FALSE(model.page().isReading);
    store.select(world.unit(0).id);
    EXPECT_TRUE(model.page().isReading);
    EXPECT_TRUE(model.page().keepsStorageRoom) << "the unit has run, so its sizes are likely to come";
    world.time.settle();
    EXPECT_FALSE(model.page().isReading);
    EXPECT_EQ(text(model.page().totalSize), "9 bytes");
}

TEST(UnitPage, ceasesToAskForTheRemovalOnceARunBegins) {
    PageWorld world;
    world.holdSources();
    UnitPageModel model(world.store);
    model.setConfirmsRemove(true);
    scripted(*world.store).activeUnitID.set(Uuid::random());
    EXPECT_TRUE(model.confirmsRemove()) << "the run of another backup is none of its business";
    scripted(*world.store).activeUnitID.set(std::nullopt);
    world.store->run(world.unit(), 0);
    EXPECT_FALSE(model.confirmsRemove());
    EXPECT_EQ(world.configuration().units.size(), 1U);
}

TEST(UnitPage, removesTheUnitAndThenShowsTheNextOrNone) {
    PageWorld world;
    UnitPageModel model(world.store);
    EXPECT_EQ(text(model.page().removeQuestion), "Remove “Papers”?");
    model.setConfirmsRemove(true);
    model.remove();
    EXPECT_FALSE(model.confirmsRemove());
    EXPECT_FALSE(model.hasUnit());
    EXPECT_EQ(model.page(), UnitPage());
    EXPECT_TRUE(world.configuration().units.empty());
}

} // namespace marrowbox
