#include "ScriptedState.h"
#include "StoreWorld.h"

#include "Marrowbox/ContentView/MainWindowModel.h"

#include <QAbstractItemModelTester>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::scripted;
using test::StoreWorld;
using testing::ElementsAre;

namespace {

std::vector<std::string> column(const QAbstractItemModel& model, int role) {
    std::vector<std::string> texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts.push_back(model.index(row, 0).data(role).toString().toStdString());
    return texts;
}

AppConfiguration threeUnits(StoreWorld& world) {
    AppConfiguration configuration = test::oneUnit(world);
    configuration.units.push_back(test::dailyUnit(world, "Photos"));
    configuration.units.push_back(test::dailyUnit(world, "Team"));
    configuration.units[1].theme = AccentTheme::sunshine;
    configuration.units[2].source = {.id = "d1", .name = "Team", .sharedDriveID = "d1"};
    configuration.units[2].accountID = "gone";
    return configuration;
}

} // namespace

TEST(MainWindow, listsTheUnitsInTheirOrderAndSaysWhichCannotRun) {
    StoreWorld world;
    world.startWith(threeUnits(world));
    MainWindowModel window(world.store);
    const UnitListModel& units = *window.units();
    EXPECT_THAT(column(units, UnitListModel::name), ElementsAre("Papers", "Photos", "Team"));
    EXPECT_THAT(column(units, UnitListModel::icon),
                ElementsAre("folder", "folder", "person.2.crop.square.stack"));
    EXPECT_THAT(column(units, UnitListModel::theme), ElementsAre("blue", "sunshine", "blue"));
    EXPECT_THAT(column(units, UnitListModel::stopNote), ElementsAre("", "", "Stopped · reconnect"));
    world.removeCredential(test::anna());
    world.store->refreshCredentialAvailability();
    EXPECT_EQ(column(units, UnitListModel::stopNote), std::vector<std::string>(3, "Stopped · reconnect"));
}

TEST(MainWindow, keepsItsRowsWhenOneIsAddedRemovedOrRenamed) {
    StoreWorld world;
    AppStore& store = world.startWith(threeUnits(world));
    MainWindowModel window(world.store);
    UnitListModel& units = *window.units();
    const QAbstractItemModelTester tester(&units, QAbstractItemModelTester::FailureReportingMode::Fatal);
    int resets = 0;
    QObject::connect(&units, &QAbstractItemModel::modelReset, [&] { ++resets; });
    const QPersistentModelIndex last(units.index(2));
    store.removeUnit(world.unit(1));
    EXPECT_EQ(last.row(), 1);
    EXPECT_THAT(column(units, UnitListModel::name), ElementsAre("Papers", "Team"));
    SyncUnit renamed = world.unit(0);
    renamed.name = "Letters";
    store.updateUnit(renamed);
    EXPECT_THAT(column(units, UnitListModel::name), ElementsAre("Letters", "Team"));
    world.finish(store.addUnit(test::dailyUnit(world, "Music"), world.disk));
    EXPECT_THAT(column(units, UnitListModel::name), ElementsAre("Letters", "Team", "Music"));
    EXPECT_EQ(units.selectedRow(), 2);
    EXPECT_EQ(resets, 0);
}

TEST(MainWindow, selectsAUnitByItsRowAndTakesItsColour) {
    StoreWorld world;
    world.startWith(threeUnits(world));
    MainWindowModel window(world.store);
    EXPECT_EQ(window.units()->selectedRow(), 0);
    EXPECT_EQ(window.accent(), "blue");
    window.units()->select(1);
    EXPECT_EQ(window.units()->selectedRow(), 1);
    EXPECT_EQ(*world.state().selectedUnitID, world.unit(1).id);
    EXPECT_EQ(window.accent(), "sunshine");
    EXPECT_EQ(window.unitPage()->page().name, "Photos");
    window.units()->select(7);
    EXPECT_EQ(window.units()->selectedRow(), 1);
}

TEST(MainWindow, hasNoUnitToShowOnAFirstStart) {
    StoreWorld world;
    world.start();
    MainWindowModel window(world.store);
    EXPECT_EQ(window.units()->count(), 0);
    EXPECT_EQ(window.units()->selectedRow(), -1);
    EXPECT_FALSE(window.unitPage()->hasUnit());
    EXPECT_EQ(window.accent(), "blue");
}

TEST(MainWindow, keepsTheMountBannerUntilAPassClearsIt) {
    StoreWorld world;
    world.startWith(test::oneUnit(world));
    world.time.advance(1);
    MainWindowModel window(world.store);
    EXPECT_EQ(window.mountIssue(), "");
    scripted(*world.store).mountIssue.set("The snapshot could not be ejected.");
    EXPECT_EQ(window.mountIssue(), "The snapshot could not be ejected.");
    window.retryMounts();
    world.time.settle();
    EXPECT_EQ(window.mountIssue(), "The snapshot could not be ejected.");
    world.time.advance(1);
    EXPECT_EQ(window.mountIssue(), "");
}

TEST(MainWindow, showsAFailureUntilItIsDismissed) {
    StoreWorld world;
    world.start();
    MainWindowModel window(world.store);
    std::vector<std::string> seen;
    QObject::connect(&window, &MainWindowModel::errorMessageChanged,
                     [&] { seen.push_back(window.errorMessage().toStdString()); });
    scripted(*world.store).errorMessage.set("The disk is full.");
    window.dismissError();
    EXPECT_THAT(seen, ElementsAre("The disk is full.", ""));
    EXPECT_FALSE(*world.state().errorMessage);
}

TEST(MainWindow, opensAndClosesItsSheetsThroughTheStore) {
    StoreWorld world;
    world.start();
    MainWindowModel window(world.store);
    window.setShowsNewUnit(true);
    window.setShowsSettings(true);
    EXPECT_TRUE(*world.state().showNewUnit);
    EXPECT_TRUE(*world.state().showSettings);
    world.store->showNewUnit(false);
    world.store->showSettings(false);
    EXPECT_FALSE(window.showsNewUnit() || window.showsSettings());
}

} // namespace marrowbox
