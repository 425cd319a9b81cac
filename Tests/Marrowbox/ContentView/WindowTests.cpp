#include "WindowWorld.h"

#include <gtest/gtest.h>

namespace marrowbox {

using test::scripted;
using test::WindowWorld;

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

TEST(Window, tellsWhatCanBePressedFromWhatCanOnlyBeRead) {
    WindowWorld world;
    world.show();
    EXPECT_TRUE(world.screen->find("Settings", QAccessible::Button));
    EXPECT_TRUE(world.screen->find("New backup", QAccessible::Button));
    EXPECT_TRUE(world.screen->find("Papers", QAccessible::ListItem));
    EXPECT_TRUE(world.screen->find("ORIGIN: All of My Drive", QAccessible::Button));
    const QString destination = "DESTINATION: " + QString::fromStdString(world.disk.string());
    for (const QString& fact : {destination, QStringLiteral("SCHEDULE: Daily at 09:00")}) {
        EXPECT_TRUE(world.screen->find(fact, QAccessible::Grouping)) << fact.toStdString();
        EXPECT_FALSE(world.screen->find(fact, QAccessible::Button)) << fact.toStdString();
    }
    EXPECT_EQ(world.screen->description("SCHEDULE: Daily at 09:00"), "Next snapshot in 22 hr 59 min");
}

TEST(Window, hasNoListWithoutABackup) {
    WindowWorld world([](AppConfiguration& configuration) { configuration.units.clear(); });
    world.show();
    EXPECT_TRUE(world.screen->shows("A Google Drive folder.\nA place to keep it safe."));
    EXPECT_FALSE(world.screen->shows("BACKUPS"));
    EXPECT_FALSE(world.screen->shows("Backups"));
    EXPECT_FALSE(world.screen->shows("New backup"));
    world.screen->click("Settings");
    EXPECT_TRUE(*world.state().showSettings);
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

} // namespace marrowbox
