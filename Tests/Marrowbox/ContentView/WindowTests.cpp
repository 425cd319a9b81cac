#include "ScreenSupport/Screen.h"
#include "ScriptedState.h"
#include "StoreWorld.h"

#include "Marrowbox/ContentView/InstallContentView.h"
#include "Marrowbox/ContentView/MainWindowModel.h"

#include <QQuickItem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::scripted;
using test::Screen;
using test::StoreWorld;

namespace {

/// The main window of a program with two backups, Papers and Photos, as a person uses it.
struct WindowWorld : StoreWorld {
    explicit WindowWorld(const std::function<void(AppConfiguration&)>& change = [](AppConfiguration&) {}) {
        AppConfiguration configuration = test::oneUnit(*this);
        configuration.units.push_back(test::dailyUnit(*this, "Photos"));
        change(configuration);
        write(configuration);
        start();
        time.advance(1);
        window = std::make_unique<MainWindowModel>(store);
    }

    void backUp() {
        store->run(unit(), 0);
        time.settle();
    }

    void show() {
        screen = std::make_unique<Screen>(
            QUrl(QStringLiteral("qrc:/Marrowbox/ContentView/MainView.qml")),
            QVariantMap{{QStringLiteral("model"), QVariant::fromValue(window.get())}},
            [](QQmlEngine&) { installContentView(); }, [this] { time.settle(); });
    }

    std::unique_ptr<MainWindowModel> window;
    std::unique_ptr<Screen> screen;
};

} // namespace

TEST(Window, changesToTheBackupThatIsClicked) {
    WindowWorld world;
    world.show();
    EXPECT_TRUE(world.screen->shows("Back up Papers"));
    world.screen->click("Photos");
    EXPECT_TRUE(world.screen->comesToShow("Back up Photos"));
    EXPECT_EQ(*world.state().selectedUnitID, world.unit(1).id);
}

TEST(Window, changesToTheBackupThatTheKeyboardChooses) {
    WindowWorld world;
    world.show();
    world.screen->tabTo("Papers");
    world.screen->press(Qt::Key_Down);
    EXPECT_EQ(world.screen->focused(), "Photos");
    world.screen->press(Qt::Key_Return);
    EXPECT_TRUE(world.screen->comesToShow("Back up Photos"));
}

TEST(Window, leadsToANewBackupAndToTheSettings) {
    WindowWorld world;
    world.show();
    world.screen->click("New backup");
    EXPECT_TRUE(*world.state().showNewUnit);
    world.screen->tabTo("Settings");
    world.screen->press(Qt::Key_Space);
    EXPECT_TRUE(*world.state().showSettings);
    std::string wanted;
    QObject::connect(world.window->unitPage(), &UnitPageModel::optionsWanted,
                     [&](const QString& id) { wanted = id.toStdString(); });
    world.screen->click("Backup settings");
    EXPECT_EQ(wanted, world.unit().id.text());
}

TEST(Window, hasNoListWithoutABackup) {
    WindowWorld world([](AppConfiguration& configuration) { configuration.units.clear(); });
    world.show();
    EXPECT_TRUE(world.screen->shows("A Google Drive folder.\nA place to keep it safe."));
    EXPECT_FALSE(world.screen->shows("BACKUPS"));
    EXPECT_FALSE(world.screen->shows("New backup"));
    world.screen->click("Settings");
    EXPECT_TRUE(*world.state().showSettings);
}

TEST(Window, startsARunShowsItAndCancelsIt) {
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

TEST(Window, exploresMountsAndEjectsASnapshot) {
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

TEST(Window, restoresASnapshotByTheKeyboardAlone) {
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

TEST(Window, offersNoSecondSnapshotActionWhileOneIsUnderWay) {
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

TEST(Window, opensTheOriginInTheBrowser) {
    WindowWorld world;
    world.show();
    EXPECT_EQ(world.screen->description("ORIGIN: All of My Drive"), "Open in Google Drive");
    world.screen->tabTo("ORIGIN: All of My Drive");
    world.screen->press(Qt::Key_Space);
    EXPECT_EQ(world.desktop.count("openPage"), 1U);
}

TEST(Window, asksBeforeItRemovesABackup) {
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

TEST(Window, showsAFailureUntilItIsRead) {
    WindowWorld world;
    world.show();
    scripted(*world.store).errorMessage.set("The disk is full.");
    EXPECT_TRUE(world.screen->comesToShow("The disk is full."));
    EXPECT_TRUE(world.screen->shows("A little attention needed"));
    world.screen->click("OK");
    EXPECT_TRUE(world.screen->ceasesToShow("The disk is full."));
    EXPECT_FALSE(*world.state().errorMessage);
    scripted(*world.store).errorMessage.set("The disk is gone.");
    EXPECT_TRUE(world.screen->comesToShow("The disk is gone."));
    world.screen->press(Qt::Key_Escape);
    EXPECT_FALSE(*world.state().errorMessage);
}

TEST(Window, keepsTheMountBannerUntilAPassClearsIt) {
    WindowWorld world;
    world.show();
    scripted(*world.store).mountIssue.set("The snapshot is still in use.");
    EXPECT_TRUE(world.screen->comesToShow("The snapshot is still in use."));
    world.screen->click("Retry");
    EXPECT_TRUE(world.screen->shows("The snapshot is still in use."));
    world.time.advance(1);
    EXPECT_TRUE(world.screen->ceasesToShow("The snapshot is still in use."));
}

TEST(Window, reconnectsTheAccountOfABackupThatHasStopped) {
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

TEST(Window, opensAndClosesTheRecentActivityAndClosesItForAnotherBackup) {
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

TEST(Window, makesOnlyTheRowsOfALongHistoryThatAreInSight) {
    WindowWorld world;
    scripted(*world.store).snapshots.set(test::snapshotsOf(world.unit(), 5000, world.time.now()));
    world.show();
    const auto rows = [&] {
        const QString end = QStringLiteral("1,200 unchanged");
        return world.screen->names().filter(end).size();
    };
    EXPECT_LT(rows(), 60);
    const HistoryModel& history = *world.window->unitPage()->history();
    const QString first = history.index(0).data(HistoryModel::spokenName).toString();
    const QString last = history.index(4999).data(HistoryModel::spokenName).toString();
    EXPECT_TRUE(world.screen->shows(first));
    world.screen->tabTo("Remove backup…"); // the page follows the keyboard to its end
    EXPECT_TRUE(world.screen->comesToShow(last));
    EXPECT_LT(rows(), 60);
}

} // namespace marrowbox
