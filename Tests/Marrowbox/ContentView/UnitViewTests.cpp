// The page of a backup, by mouse and keyboard.
#include "WindowWorld.h"

#include <QQuickItem>
#include <gtest/gtest.h>

namespace marrowbox {

using test::scripted;
using test::WindowWorld;

TEST(UnitView, hasNoLinkToAnOriginWithoutAnAddress) {
    WindowWorld world([](AppConfiguration& configuration) {
        configuration.units[0].source = {.id = "not an id", .name = "Letters"};
    });
    world.show();
    EXPECT_TRUE(world.screen->find("ORIGIN: Letters", QAccessible::Grouping));
    EXPECT_EQ(world.screen->description("ORIGIN: Letters"), "Folder in My Drive");
}

TEST(UnitView, startsARunShowsItAndCancelsIt) {
    WindowWorld world;
    world.show();
    world.holdSources();
    world.screen->click("Back up Papers");
    EXPECT_TRUE(world.screen->comesToShow("Cancel snapshot"));
    EXPECT_TRUE(world.screen->shows("Backing up your files."));
    EXPECT_EQ(world.screen->description("Reading Google Drive…"), "Under way");
    scripted(*world.store).progress.set("Downloading 33–64 of 128 changed files…");
    EXPECT_EQ(world.screen->description("Downloading 33–64 of 128 changed files…"), "25 percent");
    EXPECT_EQ(world.screen->description("Remove backup…"),
              "Wait until the backup has finished, or cancel it first.");
    world.screen->click("Cancel snapshot");
    EXPECT_TRUE(world.screen->comesToShow("Back up Papers"));
    EXPECT_TRUE(
        world.screen->shows("Cancelled before completion. Previously completed snapshots remain available."));
}

TEST(UnitView, staysWithTheRunWhereTheKeyboardStartedIt) {
    WindowWorld world;
    world.show();
    world.holdSources();
    world.screen->tabTo("Back up Papers");
    world.screen->press(Qt::Key_Space);
    EXPECT_TRUE(world.screen->comesToShow("Cancel snapshot"));
    EXPECT_EQ(world.screen->focused(), "Cancel snapshot");
    world.screen->press(Qt::Key_Space);
    EXPECT_TRUE(world.screen->comesToShow("Back up Papers"));
    EXPECT_EQ(world.screen->focused(), "Back up Papers");
}

TEST(UnitView, refusesToRemoveABackupWhileItRuns) {
    WindowWorld world;
    world.show();
    world.holdSources();
    world.screen->click("Remove backup…");
    EXPECT_TRUE(world.screen->comesToShow("Remove “Papers”?"));
    world.store->run(world.unit(), 0); // as the schedule does it
    EXPECT_TRUE(world.screen->ceasesToShow("Remove “Papers”?"));
    world.screen->click("Remove backup…");
    EXPECT_FALSE(world.screen->shows("Remove “Papers”?"));
    EXPECT_EQ(world.configuration().units.size(), 2U);
}

TEST(UnitView, exploresMountsAndEjectsASnapshot) {
    WindowWorld world;
    world.backUp();
    world.show();
    world.screen->click("Explore snapshot");
    world.time.advance(1);
    EXPECT_TRUE(world.screen->comesToShow("Eject snapshot"));
    EXPECT_TRUE(world.screen->shows("Mounted"));
    EXPECT_EQ(world.desktop.count("openFolder"), 1U);
    world.screen->click("Eject snapshot");
    world.time.advance(1);
    EXPECT_TRUE(world.screen->ceasesToShow("Eject snapshot"));
    EXPECT_TRUE(world.state().mounted->empty());
    world.screen->click("Snapshot actions");
    world.screen->click("Mount read-only in file manager");
    world.time.advance(1);
    EXPECT_TRUE(world.screen->comesToShow("Eject snapshot"));
}

TEST(UnitView, keepsItsColumnsBesideAMountedSnapshot) {
    WindowWorld world;
    const SnapshotList snapshots = test::snapshotsOf(world.unit(), 2, world.time.now());
    const Uuid newest = snapshots->front().id;
    scripted(*world.store).snapshots.set(snapshots);
    scripted(*world.store).mounted.set({{newest, {.id = newest, .displayName = "Papers"}}});
    world.show();
    EXPECT_TRUE(world.screen->comesToShow("Eject snapshot"));
    const auto endOfMenuButton = [&](int row) {
        const QAbstractItemModel& history = *world.window->unitPage()->history();
        const QString name = history.index(row, 0).data(HistoryModel::spokenName).toString();
        const auto* const button = world.screen->item(name)->property("menuButton").value<QQuickItem*>();
        return button->mapToScene(QPointF(button->width(), 0)).x();
    };
    EXPECT_EQ(endOfMenuButton(0), endOfMenuButton(1));
}

TEST(UnitView, restoresASnapshotByTheKeyboardAlone) {
    WindowWorld world;
    world.backUp();
    world.show();
    const fs::path chosen = world.home / "Chosen";
    fs::create_directory(chosen);
    world.desktop.choose(chosen);
    const QString row =
        world.window->unitPage()->history()->index(0).data(HistoryModel::spokenName).toString();
    world.screen->tabTo(row);
    world.screen->press(Qt::Key_Return);
    EXPECT_TRUE(world.screen->comesToShow("Restore to a folder…"));
    world.screen->press(Qt::Key_Down);
    world.screen->press(Qt::Key_Down);
    world.screen->press(Qt::Key_Return);
    world.time.advance(1);
    EXPECT_EQ(world.error(), "");
    EXPECT_FALSE(fs::is_empty(chosen));
}

TEST(UnitView, offersNoSecondSnapshotActionWhileOneIsUnderWay) {
    WindowWorld world;
    world.backUp();
    world.show();
    scripted(*world.store).isExploring.set(true);
    EXPECT_TRUE(world.screen->comesToShow("Preparing snapshot…"));
    const QString reason = "Another snapshot is being prepared or restored.";
    EXPECT_EQ(world.screen->description("Preparing snapshot…"), reason);
    EXPECT_EQ(world.screen->description("Snapshot actions"), reason);
    world.screen->click("Snapshot actions");
    EXPECT_FALSE(world.screen->shows("Restore to a folder…"));
}

TEST(UnitView, opensTheOriginInTheBrowser) {
    WindowWorld world;
    world.show();
    EXPECT_EQ(world.screen->description("ORIGIN: All of My Drive"), "Open in Google Drive");
    world.screen->tabTo("ORIGIN: All of My Drive");
    world.screen->press(Qt::Key_Space);
    EXPECT_EQ(world.desktop.count("openPage"), 1U);
}

TEST(UnitView, keepsRoomForTheSizesWithoutSpeakingOfThem) {
    WindowWorld world;
    test::addRun(*world.store, test::runOf(world.unit(), RunOutcome::succeeded, world.time.now()));
    scripted(*world.store).isReadingHistory.set(true);
    world.show();
    const QString total = "All retained versions · deduplicated";
    const auto placeOfHistory = [&] {
        QAccessibleInterface* const heading = world.screen->find("Backup history", QAccessible::Heading);
        return qobject_cast<QQuickItem*>(heading->object())->mapToScene(QPointF()).y();
    };
    const qreal before = placeOfHistory();
    EXPECT_FALSE(world.screen->shows(total));
    scripted(*world.store).storageUsage.set({.totalRetainedBytes = 1'500'000, .latestSnapshotBytes = 900});
    scripted(*world.store).isReadingHistory.set(false);
    EXPECT_TRUE(world.screen->comesToShow(total));
    EXPECT_TRUE(world.screen->shows("TOTAL BACKUP DATA: 1.5 MB"));
    EXPECT_EQ(placeOfHistory(), before);
}

TEST(UnitView, asksBeforeItRemovesABackup) {
    WindowWorld world;
    world.show();
    world.screen->click("Remove backup…");
    EXPECT_TRUE(world.screen->comesToShow("Remove “Papers”?"));
    world.screen->press(Qt::Key_Escape);
    EXPECT_TRUE(world.screen->ceasesToShow("Remove “Papers”?"));
    world.screen->click("Remove backup…");
    EXPECT_TRUE(world.screen->comesToShow("Remove “Papers”?"));
    world.screen->click("Cancel");
    EXPECT_TRUE(world.screen->ceasesToShow("Remove “Papers”?"));
    EXPECT_EQ(world.configuration().units.size(), 2U);
    world.screen->click("Remove backup…");
    EXPECT_TRUE(world.screen->comesToShow("Remove backup"));
    world.screen->click("Remove backup");
    EXPECT_TRUE(world.screen->comesToShow("Back up Photos"));
    EXPECT_EQ(world.configuration().units.size(), 1U);
}

TEST(UnitView, reconnectsTheAccountOfABackupThatHasStopped) {
    WindowWorld world;
    world.show();
    EXPECT_FALSE(world.screen->shows("Reconnect"));
    world.removeCredential(test::anna());
    world.store->refreshCredentialAvailability();
    EXPECT_TRUE(world.screen->comesToShow("This backup is not running. Its Google account is disconnected."));
    EXPECT_EQ(world.screen->description("Papers"), "Stopped · reconnect");
    world.screen->click("Reconnect");
    EXPECT_TRUE(world.screen->comesToShow("Waiting for Google…"));
    EXPECT_TRUE(*world.state().isConnecting);
}

TEST(UnitView, opensAndClosesTheRecentActivityAndClosesItForAnotherBackup) {
    WindowWorld world;
    world.backUp();
    world.show();
    const QString section = "Recent activity & email delivery";
    EXPECT_TRUE(world.screen->description(section).startsWith("Collapsed"));
    EXPECT_FALSE(world.screen->shows("Succeeded"));
    world.screen->click(section);
    EXPECT_TRUE(world.screen->comesToShow("Succeeded"));
    EXPECT_TRUE(world.screen->shows("No email — summaries were off"));
    world.screen->click("Photos");
    world.screen->click("Papers");
    EXPECT_TRUE(world.screen->comesToShow(section));
    EXPECT_TRUE(world.screen->description(section).startsWith("Collapsed"));
}

TEST(UnitView, tellsOfEachSnapshotAndRunAsALineOfAList) {
    WindowWorld world;
    world.backUp();
    world.show();
    world.screen->click("Recent activity & email delivery");
    UnitPageModel& page = *world.window->unitPage();
    const QString snapshot = page.history()->index(0).data(HistoryModel::spokenName).toString();
    const QString run = page.activity()->index(0).data(ActivityModel::spokenName).toString();
    EXPECT_TRUE(world.screen->find("Backup history", QAccessible::List));
    EXPECT_TRUE(world.screen->find(snapshot, QAccessible::ListItem));
    EXPECT_TRUE(world.screen->find(run, QAccessible::ListItem));
    world.screen->activate(snapshot);
    EXPECT_TRUE(world.screen->comesToShow("Restore to a folder…"));
}

TEST(UnitView, makesOnlyTheRowsOfALongHistoryThatAreInSight) {
    WindowWorld world;
    scripted(*world.store).snapshots.set(test::snapshotsOf(world.unit(), 5000, world.time.now()));
    world.show();
    const auto rows = [&] {
        const QString end = QStringLiteral("1,200 unchanged");
        return world.screen->names().filter(end).size();
    };
    EXPECT_LT(rows(), 20);
    const HistoryModel& history = *world.window->unitPage()->history();
    const QString first = history.index(0).data(HistoryModel::spokenName).toString();
    const QString last = history.index(4999).data(HistoryModel::spokenName).toString();
    EXPECT_TRUE(world.screen->shows(first));
    world.screen->tabTo("Remove backup…"); // the page follows the keyboard to its end
    EXPECT_TRUE(world.screen->comesToShow(last));
    EXPECT_LT(rows(), 60);
}

} // namespace marrowbox
