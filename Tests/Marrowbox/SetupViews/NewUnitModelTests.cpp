#include "Marrowbox/SetupViews/NewUnitModel.h"

#include "Models/BackupError.h"
#include "SetupWorld.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace marrowbox {

using test::namesIn;
using test::SetupWorld;

namespace {

/// Shows the sheet and lets it list what it can.
void open(SetupWorld& world, NewUnitModel& sheet) {
    sheet.appear();
    world.time.settle();
}

/// Goes to the folder "Letters" of Anna's My Drive.
void openLetters(SetupWorld& world, NewUnitModel& sheet) {
    open(world, sheet);
    sheet.browser()->open(0);
    world.time.settle();
    sheet.browser()->open(0);
    world.time.settle();
}

void chooseDisk(SetupWorld& world, NewUnitModel& sheet) {
    world.desktop.choose(world.disk);
    sheet.chooseDestination();
    world.time.settle();
}

} // namespace

TEST(NewUnitModel, takesTheFirstAccountAndListsItsRoots) {
    SetupWorld world;
    world.startWith({test::anna(), test::ben()});
    NewUnitModel sheet(world.store);
    sheet.appear();
    EXPECT_TRUE(sheet.browser()->isLoading());
    world.time.settle();
    EXPECT_FALSE(sheet.browser()->isLoading());
    EXPECT_EQ(sheet.accountID(), "anna");
    EXPECT_EQ(namesIn(*sheet.browser()), QStringList({"My Drive", "Studio"}));
}

TEST(NewUnitModel, takesAnAccountThatWasConnectedWhileItIsOpen) {
    SetupWorld world;
    world.startWith({});
    NewUnitModel sheet(world.store);
    sheet.appear();
    EXPECT_FALSE(sheet.browser()->isLoading());
    sheet.connection()->connectAccount();
    world.consent(test::anna());
    EXPECT_EQ(sheet.accountID(), "anna");
    EXPECT_EQ(namesIn(*sheet.browser()), QStringList({"My Drive", "Studio"}));
}

TEST(NewUnitModel, saysWhichAccountHasToBeConnectedAgain) {
    SetupWorld world;
    world.startWith({test::anna(), test::ben()});
    NewUnitModel sheet(world.store);
    world.removeCredential(test::ben());
    world.store->refreshCredentialAvailability();
    EXPECT_EQ(sheet.accounts().at(0).toMap().value("detail"), "");
    EXPECT_EQ(sheet.accounts().at(1).toMap().value("detail"), "Reconnect required");
}

TEST(NewUnitModel, beginsAnewWithAnotherAccount) {
    SetupWorld world;
    world.startWith({test::anna(), test::ben()});
    NewUnitModel sheet(world.store);
    openLetters(world, sheet);
    sheet.useFolder();
    ASSERT_TRUE(sheet.hasSource());
    sheet.selectAccount("ben");
    EXPECT_FALSE(sheet.hasSource());
    EXPECT_TRUE(sheet.browser()->isAtRoots());
    EXPECT_TRUE(namesIn(*sheet.browser()).isEmpty());
    world.time.settle();
    EXPECT_EQ(namesIn(*sheet.browser()), QStringList({"My Drive", "Studio"}));
}

TEST(NewUnitModel, dropsTheRootsOfAnAccountThatIsNoLongerChosen) {
    SetupWorld world;
    world.startWith({test::anna(), test::ben()});
    world.drive.hold("drives");
    NewUnitModel sheet(world.store);
    open(world, sheet);
    sheet.selectAccount("");
    world.drive.letGo("drives");
    world.time.settle();
    EXPECT_TRUE(namesIn(*sheet.browser()).isEmpty());
    EXPECT_FALSE(sheet.browser()->isLoading());
    EXPECT_EQ(sheet.error(), "");
}

TEST(NewUnitModel, walksDownAndUpTheFolders) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    openLetters(world, sheet);
    EXPECT_EQ(sheet.browser()->placeName(), "Letters");
    EXPECT_EQ(namesIn(*sheet.browser()), QStringList({"Old"}));
    sheet.browser()->open(0);
    world.time.settle();
    EXPECT_TRUE(sheet.browser()->hasNoSubfolders());
    sheet.browser()->goBack();
    world.time.settle();
    EXPECT_EQ(namesIn(*sheet.browser()), QStringList({"Old"}));
    sheet.browser()->goBack();
    sheet.browser()->goBack();
    world.time.settle();
    EXPECT_TRUE(sheet.browser()->isAtRoots());
    EXPECT_EQ(namesIn(*sheet.browser()), QStringList({"My Drive", "Studio"}));
}

TEST(NewUnitModel, goesBackToTheRootsWithoutListingThemAgain) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    open(world, sheet);
    sheet.browser()->open(1);
    world.time.settle();
    const std::size_t asked = world.drive.asked().size();
    sheet.browser()->goBack();
    EXPECT_FALSE(sheet.browser()->isLoading());
    EXPECT_EQ(namesIn(*sheet.browser()), QStringList({"My Drive", "Studio"}));
    world.time.settle();
    EXPECT_EQ(world.drive.asked().size(), asked);
}

TEST(NewUnitModel, leavesAFolderThatCannotBeListedWithoutItsFailure) {
    SetupWorld world;
    world.startWith({test::anna()});
    world.drive.fail("root", "Google is on holiday.");
    NewUnitModel sheet(world.store);
    open(world, sheet);
    sheet.browser()->open(0);
    world.time.settle();
    EXPECT_TRUE(sheet.browser()->hasFailed());
    sheet.browser()->goBack();
    EXPECT_FALSE(sheet.browser()->hasFailed());
    EXPECT_EQ(sheet.error(), "");
    EXPECT_EQ(namesIn(*sheet.browser()), QStringList({"My Drive", "Studio"}));
}

TEST(NewUnitModel, showsNothingOfAnAccountOnceNoneIsChosen) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    openLetters(world, sheet);
    sheet.useFolder();
    sheet.selectAccount("");
    world.time.settle();
    EXPECT_FALSE(sheet.hasSource());
    EXPECT_TRUE(namesIn(*sheet.browser()).isEmpty());
    EXPECT_EQ(sheet.missing(), "Choose a Google account first.");
}

TEST(NewUnitModel, marksASharedDriveAndNotTheFoldersInIt) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    open(world, sheet);
    const auto symbol = [&](int row) {
        return sheet.browser()->locations()->index(row).data(LocationList::SymbolRole).toString();
    };
    EXPECT_EQ(symbol(0), "folder");
    EXPECT_EQ(symbol(1), "person.2.crop.square.stack");
    sheet.browser()->open(1);
    world.time.settle();
    EXPECT_EQ(symbol(0), "folder");
    sheet.browser()->open(0);
    sheet.useFolder();
    EXPECT_EQ(sheet.sourceName(), "Plans");
    EXPECT_EQ(sheet.sourceKind(), "Shared drive source");
    EXPECT_EQ(sheet.sourceSymbol(), "person.2.crop.square.stack.fill");
}

TEST(NewUnitModel, dropsAListingThatTheUserWentBackFrom) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    open(world, sheet);
    world.drive.hold("root");
    sheet.browser()->open(0);
    world.time.settle();
    EXPECT_TRUE(sheet.browser()->isLoading());
    EXPECT_FALSE(sheet.browser()->hasNoSubfolders());
    sheet.browser()->goBack();
    world.time.settle();
    world.drive.letGo("root");
    world.time.settle();
    EXPECT_EQ(namesIn(*sheet.browser()), QStringList({"My Drive", "Studio"}));
    EXPECT_FALSE(sheet.browser()->isLoading());
}

TEST(NewUnitModel, dropsTheFailureOfAListingThatTheUserWentBackFrom) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    open(world, sheet);
    world.drive.hold("root");
    world.drive.fail("root", "No.");
    sheet.browser()->open(0);
    world.time.settle();
    sheet.browser()->goBack();
    world.drive.letGo("root");
    world.time.settle();
    EXPECT_EQ(sheet.error(), "");
}

TEST(NewUnitModel, showsWhyAListingFailedAndTriesAgain) {
    SetupWorld world;
    world.startWith({test::anna()});
    world.drive.fail("drives", "Google is on holiday.");
    NewUnitModel sheet(world.store);
    open(world, sheet);
    EXPECT_EQ(sheet.error(), "Google is on holiday.");
    EXPECT_FALSE(sheet.browser()->isLoading());
    EXPECT_FALSE(sheet.browser()->hasNoSubfolders());
    world.drive.fail("drives", "");
    sheet.browser()->reload();
    EXPECT_EQ(sheet.error(), "");
    world.time.settle();
    EXPECT_EQ(namesIn(*sheet.browser()), QStringList({"My Drive", "Studio"}));
}

TEST(NewUnitModel, leavesNoErrorOfAListingThatWasCancelled) {
    SetupWorld world;
    world.startWith({test::anna()});
    world.drive.hold("drives");
    NewUnitModel sheet(world.store);
    open(world, sheet);
    sheet.dismiss();
    world.drive.letGo("drives");
    world.time.settle();
    EXPECT_EQ(sheet.error(), "");
    EXPECT_FALSE(sheet.browser()->isLoading());
}

TEST(NewUnitModel, mayGoWhileItsWorkIsUnderWay) {
    SetupWorld world;
    world.startWith({test::anna()});
    world.drive.hold("drives");
    {
        NewUnitModel sheet(world.store);
        sheet.appear();
        sheet.chooseDestination();
        world.time.settle();
    }
    world.drive.letGo("drives");
    world.desktop.choose(world.disk);
    world.time.settle();
    EXPECT_EQ(world.error(), "");
}

TEST(NewUnitModel, namesTheBackupAsItsSourceUnlessItHasAName) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    openLetters(world, sheet);
    sheet.useFolder();
    EXPECT_EQ(sheet.sourceName(), "Letters");
    EXPECT_EQ(sheet.sourceKind(), "Google Drive folder");
    EXPECT_EQ(sheet.sourceSymbol(), "folder.fill");
    EXPECT_EQ(sheet.name(), "Letters");
    sheet.changeSource();
    EXPECT_FALSE(sheet.hasSource());
    EXPECT_EQ(sheet.browser()->placeName(), "Letters");
    sheet.browser()->open(0);
    sheet.useFolder();
    EXPECT_EQ(sheet.sourceName(), "Old");
    EXPECT_EQ(sheet.name(), "Letters");
}

TEST(NewUnitModel, takesAWholeSharedDrive) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    open(world, sheet);
    sheet.browser()->open(1);
    sheet.useFolder();
    EXPECT_EQ(sheet.sourceName(), "Studio");
    EXPECT_EQ(sheet.sourceKind(), "Shared drive source");
    EXPECT_EQ(sheet.sourceSymbol(), "person.2.crop.square.stack.fill");
}

TEST(NewUnitModel, asksForADestinationAndKeepsItWhenTheUserCancels) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    EXPECT_EQ(sheet.destinationText().toStdString(), "A folder on your computer, disk, or NAS");
    chooseDisk(world, sheet);
    EXPECT_EQ(sheet.destinationText().toStdString(), world.disk.string());
    EXPECT_EQ(world.desktop.calls().back(),
              "chooseFolder Choose a folder on this computer, an external drive, "
              "or a NAS share mounted in your file manager.");
    world.desktop.choose(std::nullopt);
    sheet.chooseDestination();
    world.time.settle();
    EXPECT_EQ(sheet.destinationText().toStdString(), world.disk.string());
    EXPECT_FALSE(sheet.isChoosing());
}

TEST(NewUnitModel, opensOneChooserAtATime) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    sheet.chooseDestination();
    sheet.chooseDestination();
    world.time.settle();
    EXPECT_EQ(world.desktop.count("chooseFolder"), 1U);
    world.desktop.choose(std::nullopt);
    world.time.settle();
}

TEST(NewUnitModel, refusesAFolderOfGoogleDriveAlsoBehindALinkAndKeepsTheOneBefore) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    chooseDisk(world, sheet);
    const auto drive = world.home / "Library/CloudStorage/GoogleDrive-anna@example.org/My Drive";
    std::filesystem::create_directories(drive);
    std::filesystem::create_directory_symlink(drive, world.home / "Link");
    world.desktop.choose(world.home / "Link");
    sheet.chooseDestination();
    world.time.settle();
    EXPECT_EQ(sheet.error(),
              "Google Drive cannot be a backup destination. Choose a local disk or NAS folder.");
    EXPECT_EQ(sheet.destinationText().toStdString(), world.disk.string());
    chooseDisk(world, sheet);
    EXPECT_EQ(sheet.error(), "");
}

TEST(NewUnitModel, resolvesALinkToTheDestination) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    std::filesystem::create_directory_symlink(world.disk, world.home / "Link");
    world.desktop.choose(world.home / "Link");
    sheet.chooseDestination();
    world.time.settle();
    EXPECT_EQ(sheet.destinationText().toStdString(), world.disk.string());
}

TEST(NewUnitModel, saysWhatIsMissingUntilTheBackupCanBeMade) {
    SetupWorld world;
    world.startWith({test::anna()});
    NewUnitModel sheet(world.store);
    EXPECT_EQ(sheet.missing(), "Choose a Google account first.");
    openLetters(world, sheet);
    EXPECT_EQ(sheet.missing(), "Choose your source first.");
    sheet.useFolder();
    EXPECT_EQ(sheet.missing(), "Choose a destination first.");
    EXPECT_FALSE(sheet.canCreate());
    chooseDisk(world, sheet);
    EXPECT_TRUE(sheet.canCreate());
    sheet.setName(" \n\t ");
    EXPECT_FALSE(sheet.canCreate());
    sheet.create();
    world.time.settle();
    EXPECT_TRUE(world.configuration().units.empty());
}

TEST(NewUnitModel, makesADailyBackupAndCloses) {
    SetupWorld world;
    AppStore& store = world.startWith({test::anna()});
    store.showNewUnit(true);
    NewUnitModel sheet(world.store);
    openLetters(world, sheet);
    sheet.useFolder();
    chooseDisk(world, sheet);
    sheet.setName("  Anna’s letters\n");
    sheet.create();
    EXPECT_TRUE(sheet.isCreating());
    EXPECT_FALSE(sheet.canCreate());
    world.time.settle();
    ASSERT_EQ(world.configuration().units.size(), 1U);
    SyncUnit expected = world.unit();
    EXPECT_EQ(expected.name, "Anna’s letters");
    EXPECT_EQ(expected.accountID, "anna");
    EXPECT_EQ(expected.source, (DriveLocation{.id = "letters", .name = "Letters"}));
    EXPECT_EQ(expected.destinationPath, world.disk.string());
    EXPECT_EQ(expected.destinationBookmark, world.desktop.bookmark(world.disk));
    EXPECT_EQ(expected.schedule,
              (BackupSchedule{.frequency = ScheduleFrequency::daily, .hour = 9, .minute = 0, .weekday = 2}));
    EXPECT_EQ(expected.retentionDays, std::nullopt);
    EXPECT_EQ(expected.theme, AccentTheme::blue);
    EXPECT_EQ(expected.notifications, NotificationPolicy::all);
    EXPECT_TRUE(expected.nextRun);
    EXPECT_EQ(*store.state().selectedUnitID, expected.id);
    EXPECT_FALSE(*store.state().showNewUnit);
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
}

TEST(NewUnitModel, staysOpenWithTheReasonWhenTheBookmarkFails) {
    SetupWorld world;
    AppStore& store = world.startWith({test::anna()});
    store.showNewUnit(true);
    NewUnitModel sheet(world.store);
    openLetters(world, sheet);
    sheet.useFolder();
    chooseDisk(world, sheet);
    world.desktop.makingFailure = std::make_exception_ptr(BackupError("The disk is gone."));
    sheet.create();
    world.time.settle();
    EXPECT_EQ(sheet.error(), "The disk is gone.");
    EXPECT_TRUE(*store.state().showNewUnit);
    EXPECT_TRUE(world.configuration().units.empty());
    EXPECT_TRUE(sheet.canCreate());
}

TEST(NewUnitModel, staysOpenWithTheReasonWhenTheRepositoryCannotBeMade) {
    SetupWorld world;
    AppStore& store = world.startWith({test::anna()});
    store.showNewUnit(true);
    NewUnitModel sheet(world.store);
    openLetters(world, sheet);
    sheet.useFolder();
    chooseDisk(world, sheet);
    std::filesystem::remove_all(world.disk);
    sheet.create();
    world.time.settle();
    EXPECT_NE(sheet.error(), "");
    EXPECT_TRUE(*store.state().showNewUnit);
    EXPECT_TRUE(world.configuration().units.empty());
}

} // namespace marrowbox
