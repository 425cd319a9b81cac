// The flows of the welcome screen and the sheets, by mouse and keyboard.
#include "Marrowbox/SetupViews/InstallSetupViews.h"
#include "Marrowbox/SetupViews/SetupScreens.h"
#include "ScreenSupport/Screen.h"
#include "SetupWorld.h"

#include <gtest/gtest.h>
#include <optional>

namespace marrowbox {

using test::Screen;
using test::SetupWorld;

namespace {

/// A world with its screens in a window.
class Screens : public testing::Test {
  protected:
    ~Screens() override {
        shown_.reset();
        screens_.reset();
    }

    Screen& show() {
        screens_.emplace(world.store);
        shown_.emplace(
            QUrl::fromLocalFile(QStringLiteral(MARROWBOX_TEST_DATA "/Screens.qml")),
            QVariantMap{{"screens", QVariant::fromValue(&*screens_)}},
            [](QQmlEngine&) { installSetupViews(); }, [this] { world.time.settle(); });
        return *shown_;
    }
    Screen& showWith(std::vector<GoogleAccount> accounts) {
        world.startWith(std::move(accounts));
        return show();
    }
    /// The settings of Anna's unit, from wherever the page opens them.
    Screen& showUnitSettings(const EmailSettings& email = {},
                             std::optional<std::int64_t> retentionDays = std::nullopt) {
        AppConfiguration configuration = test::oneUnit(world);
        configuration.email = email;
        configuration.units[0].retentionDays = retentionDays;
        world.write(configuration);
        world.start();
        Screen& screen = show();
        screens_->editUnit(QString::fromStdString(world.unit().id.text()));
        EXPECT_TRUE(screen.comesToShow("Backup settings"));
        return screen;
    }
    void pick(Screen& screen, const QString& picker, const QString& choice) {
        screen.click(picker);
        screen.click(choice);
    }

    SetupWorld world;

  private:
    std::optional<SetupScreens> screens_;
    std::optional<Screen> shown_;
};

} // namespace

TEST_F(Screens, leadANewUserFromTheFirstStartToTheFirstBackup) {
    Screen& screen = showWith({});
    EXPECT_TRUE(screen.shows("Welcome to Marrowbox"));
    screen.click("Connect Google account");
    EXPECT_TRUE(screen.comesToShow("Waiting for Google…"));
    world.consent(test::anna());
    EXPECT_TRUE(screen.comesToShow("You are connected!"));
    EXPECT_TRUE(screen.shows("1 Google account connected"));
    screen.click("Create your first backup");
    EXPECT_TRUE(screen.comesToShow("A new backup"));
    screen.click("My Drive");
    screen.click("Letters");
    screen.click("Use this folder");
    EXPECT_TRUE(screen.comesToShow("Change source"));
    EXPECT_EQ(screen.description("Create backup"), "Choose a destination first.");
    world.desktop.choose(world.disk);
    screen.click("Choose folder…");
    EXPECT_TRUE(screen.comesToShow("Backup name"));
    EXPECT_EQ(screen.textIn("Backup name"), "Letters");
    screen.click("Create backup");
    EXPECT_TRUE(screen.ceasesToShow("A new backup"));
    ASSERT_EQ(world.configuration().units.size(), 1U);
    EXPECT_EQ(world.lastRun().outcome, RunOutcome::succeeded);
}

TEST_F(Screens, makeABackupWithTheKeyboardAlone) {
    Screen& screen = showWith({test::anna()});
    screen.tabTo("Create your first backup");
    screen.press(Qt::Key_Return);
    EXPECT_TRUE(screen.comesToShow("Studio"));
    screen.tabTo("My Drive");
    screen.press(Qt::Key_Return);
    EXPECT_TRUE(screen.comesToShow("Photos"));
    screen.tabTo("Use this folder");
    screen.press(Qt::Key_Space);
    world.desktop.choose(world.disk);
    screen.tabTo("Choose folder…");
    screen.press(Qt::Key_Space);
    EXPECT_TRUE(screen.comesToShow("Backup name"));
    screen.tabTo("Backup name");
    screen.press(Qt::Key_A, Qt::ControlModifier);
    screen.type("Everything");
    screen.tabTo("Create backup");
    screen.press(Qt::Key_Return);
    EXPECT_TRUE(screen.ceasesToShow("A new backup"));
    ASSERT_EQ(world.configuration().units.size(), 1U);
    EXPECT_EQ(world.unit().name, "Everything");
}

TEST_F(Screens, leaveTheNewBackupByEscape) {
    Screen& screen = showWith({test::anna()});
    screen.click("Create your first backup");
    EXPECT_TRUE(screen.comesToShow("A new backup"));
    screen.press(Qt::Key_Escape);
    EXPECT_TRUE(screen.ceasesToShow("A new backup"));
    EXPECT_FALSE(*world.state().showNewUnit);
    screen.click("Create your first backup");
    EXPECT_TRUE(screen.comesToShow("A new backup"));
    screen.click("Close");
    EXPECT_TRUE(screen.ceasesToShow("A new backup"));
}

TEST_F(Screens, keepTheKeyboardWhereSomethingCanBePressed) {
    Screen& screen = showWith({test::anna()});
    world.store->showNewUnit(true);
    EXPECT_TRUE(screen.comesToShow("Studio"));
    screen.tabTo("Studio");
    screen.press(Qt::Key_Return);
    EXPECT_TRUE(screen.comesToShow("Plans"));
    screen.tabTo("Back");
    screen.press(Qt::Key_Space);
    EXPECT_TRUE(screen.comesToShow("My Drive"));
    EXPECT_TRUE(screen.shows(screen.focused())) << screen.focused().toStdString();
    screen.tabTo("My Drive");
    screen.press(Qt::Key_Return);
    screen.tabTo("Use this folder");
    screen.press(Qt::Key_Space);
    EXPECT_TRUE(screen.comesToShow("Change source"));
    EXPECT_EQ(screen.focused(), "Choose folder…");
    screen.press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(screen.focused(), "Change source");
    screen.press(Qt::Key_Space);
    EXPECT_TRUE(screen.ceasesToShow("Change source"));
    EXPECT_EQ(screen.focused(), "Back");
}

TEST_F(Screens, sayWhyNoSecondFolderCanBeChosenYet) {
    Screen& screen = showWith({test::anna()});
    world.store->showNewUnit(true);
    screen.click("Choose folder…");
    EXPECT_EQ(screen.description("Choose folder…"), "Choose a folder in the window that has opened.");
    world.desktop.choose(std::nullopt);
    EXPECT_TRUE(screen.comesTo([&] { return screen.description("Choose folder…").isEmpty(); }));
}

TEST_F(Screens, letTheUserTakeTheAccountBack) {
    Screen& screen = showWith({test::anna()});
    world.store->showNewUnit(true);
    EXPECT_TRUE(screen.comesToShow("Studio"));
    EXPECT_EQ(screen.description("Google account"), "anna@example.org");
    pick(screen, "Google account", "Choose an account");
    EXPECT_TRUE(screen.ceasesToShow("Studio"));
    EXPECT_EQ(screen.description("Google account"), "Choose an account");
    pick(screen, "Google account", "anna@example.org");
    EXPECT_TRUE(screen.comesToShow("Studio"));
}

TEST_F(Screens, headTheirPartsWithHeadings) {
    Screen& screen = showWith({test::anna()});
    EXPECT_EQ(screen.role("Welcome to Marrowbox"), QAccessible::Heading);
    world.store->showNewUnit(true);
    EXPECT_EQ(screen.role("A new backup"), QAccessible::Heading);
    EXPECT_EQ(screen.role("2. Choose your source"), QAccessible::Heading);
}

TEST_F(Screens, goBackFromAFolderWithoutSubfolders) {
    Screen& screen = showWith({test::anna()});
    world.store->showNewUnit(true);
    screen.click("Studio");
    screen.click("Plans");
    EXPECT_TRUE(screen.comesToShow("No subfolders. Use this folder to include its files."));
    screen.click("Back");
    EXPECT_TRUE(screen.comesToShow("Plans"));
    screen.click("Back");
    EXPECT_TRUE(screen.comesToShow("My Drive"));
}

TEST_F(Screens, showWhyGoogleDriveIsNoDestination) {
    Screen& screen = showWith({test::anna()});
    world.store->showNewUnit(true);
    const auto drive = world.home / "Library/CloudStorage/GoogleDrive-anna@example.org";
    std::filesystem::create_directories(drive);
    world.desktop.choose(drive);
    screen.click("Choose folder…");
    EXPECT_TRUE(screen.comesToShow(
        "Google Drive cannot be a backup destination. Choose a local disk or NAS folder."));
    EXPECT_TRUE(screen.shows("A folder on your computer, disk, or NAS"));
}

TEST_F(Screens, setUpEmail) {
    Screen& screen = showWith({test::anna()});
    world.store->showSettings(true);
    EXPECT_TRUE(screen.comesToShow("Settings"));
    screen.click("Email");
    EXPECT_EQ(screen.description("Save email settings"), "There is nothing to save.");
    pick(screen, "Send summaries with", "Gmail");
    pick(screen, "Google account", "anna@example.org");
    screen.click("Save email settings");
    EXPECT_TRUE(screen.comesToShow("Enter a valid recipient email address."));
    screen.click("Send to");
    screen.type("anna@example.org");
    screen.click("Save email settings");
    EXPECT_TRUE(screen.comesToShow("Saved"));
    EXPECT_EQ(world.configuration().email, test::mailToAnna());
    screen.click("Done");
    EXPECT_TRUE(screen.ceasesToShow("Settings"));
    EXPECT_FALSE(*world.state().showSettings);
}

TEST_F(Screens, switchTheStartAtLogin) {
    Screen& screen = showWith({});
    world.store->showSettings(true);
    screen.click("Start Marrowbox at login");
    EXPECT_TRUE(*world.state().startAtLogin);
    EXPECT_TRUE(screen.isChecked("Start Marrowbox at login"));
}

TEST_F(Screens, importAClientFileAndGoBackToTheBuiltInOne) {
    Screen& screen = showWith({});
    world.store->showSettings(true);
    EXPECT_FALSE(screen.shows("Import Desktop OAuth JSON…"));
    screen.click("Developer connection");
    EXPECT_TRUE(screen.comesToShow("Built in"));
    world.desktop.choose(world.bundledClient);
    screen.click("Import Desktop OAuth JSON…");
    EXPECT_TRUE(screen.comesToShow("Use the built-in client"));
    EXPECT_TRUE(world.configuration().usesImportedClient);
    screen.click("Use the built-in client");
    EXPECT_TRUE(screen.comesToShow("Built in"));
    EXPECT_FALSE(world.configuration().usesImportedClient);
}

TEST_F(Screens, disconnectAnAccount) {
    Screen& screen = showWith({test::anna(), test::ben()});
    world.store->showSettings(true);
    screen.click("Accounts");
    screen.click("Actions for ben@example.org");
    EXPECT_TRUE(screen.comesToShow("Enable Gmail sending…"));
    screen.click("Disconnect");
    EXPECT_TRUE(screen.ceasesToShow("Actions for ben@example.org"));
    EXPECT_EQ(world.configuration().accounts.size(), 1U);
}

TEST_F(Screens, reconnectAnAccountAndCancel) {
    Screen& screen = showWith({test::anna()});
    world.store->showSettings(true);
    screen.click("Accounts");
    screen.click("Actions for anna@example.org");
    EXPECT_FALSE(screen.shows("Enable Gmail sending…"));
    screen.click("Reconnect account");
    EXPECT_TRUE(screen.comesToShow("Waiting for Google…"));
    screen.click("Cancel sign-in");
    EXPECT_TRUE(screen.comesToShow("Connect Google account"));
    EXPECT_EQ(world.error(), "");
}

TEST_F(Screens, leadNoKeyToWhatAnAccountIsNotOffered) {
    Screen& screen = showWith({test::anna()});
    world.store->showSettings(true);
    screen.click("Accounts");
    screen.tabTo("Actions for anna@example.org");
    screen.press(Qt::Key_Space);
    EXPECT_TRUE(screen.comesToShow("Disconnect"));
    EXPECT_FALSE(screen.shows("Enable Gmail sending…"));
    screen.press(Qt::Key_Down);
    screen.press(Qt::Key_Down);
    screen.press(Qt::Key_Return);
    EXPECT_FALSE(*world.state().isConnecting);
    EXPECT_TRUE(world.configuration().accounts.empty());
}

TEST_F(Screens, sayWhyNoSecondSignInCanBegin) {
    Screen& screen = showWith({test::ben()});
    world.store->showSettings(true);
    screen.click("Accounts");
    screen.click("Connect Google account");
    screen.click("Actions for ben@example.org");
    EXPECT_EQ(screen.description("Reconnect account"), "Finish signing in with your browser.");
    EXPECT_EQ(screen.description("Enable Gmail sending…"), "Finish signing in with your browser.");
    screen.press(Qt::Key_Escape);
    screen.click("Cancel sign-in");
    EXPECT_TRUE(screen.comesToShow("Connect Google account"));
}

TEST_F(Screens, goOnWithTheKeyboardOnceTheEmailIsSaved) {
    Screen& screen = showWith({test::anna()});
    world.store->showSettings(true);
    screen.click("Email");
    pick(screen, "Send summaries with", "Gmail");
    pick(screen, "Google account", "anna@example.org");
    screen.tabTo("Send to");
    screen.type("anna@example.org");
    screen.tabTo("Save email settings");
    screen.press(Qt::Key_Space);
    EXPECT_TRUE(screen.comesToShow("Saved"));
    EXPECT_EQ(screen.focused(), "Done");
}

TEST_F(Screens, changeTheSchedule) {
    Screen& screen = showUnitSettings(test::mailToAnna());
    pick(screen, "Frequency", "Weekly");
    pick(screen, "Weekday", "Friday");
    screen.tabTo("Hour");
    screen.press(Qt::Key_Up);
    screen.click("Coral accent");
    screen.click("Save");
    EXPECT_TRUE(screen.ceasesToShow("Backup settings"));
    EXPECT_EQ(world.unit().schedule.frequency, ScheduleFrequency::weekly);
    EXPECT_EQ(world.unit().schedule.weekday, 6);
    EXPECT_EQ(world.unit().schedule.hour, 10);
    EXPECT_EQ(world.unit().theme, AccentTheme::coral);
}

TEST_F(Screens, askBeforeTheyShortenTheHistory) {
    Screen& screen = showUnitSettings(test::mailToAnna());
    pick(screen, "Keep history", "30 days");
    screen.click("Save");
    EXPECT_TRUE(screen.comesToShow("Shorten backup history?"));
    screen.press(Qt::Key_Escape);
    EXPECT_TRUE(screen.ceasesToShow("Shorten backup history?"));
    EXPECT_TRUE(screen.shows("Backup settings"));
    EXPECT_EQ(world.unit().retentionDays, std::nullopt);
    screen.click("Save");
    screen.click("Apply history limit");
    EXPECT_TRUE(screen.ceasesToShow("Backup settings"));
    EXPECT_EQ(world.unit().retentionDays, 30);
}

TEST_F(Screens, lengthenTheHistoryWithoutAQuestion) {
    Screen& screen = showUnitSettings(test::mailToAnna(), 30);
    pick(screen, "Keep history", "1 year");
    screen.click("Save");
    EXPECT_TRUE(screen.ceasesToShow("Backup settings"));
    EXPECT_EQ(world.unit().retentionDays, 365);
}

TEST_F(Screens, discardAllEditsOnCancel) {
    Screen& screen = showUnitSettings(test::mailToAnna());
    const AppConfiguration before = world.configuration();
    screen.click("Name");
    screen.type("Archive ");
    pick(screen, "Frequency", "Manual");
    screen.click("Cancel");
    EXPECT_TRUE(screen.ceasesToShow("Backup settings"));
    EXPECT_EQ(world.configuration(), before);
}

TEST_F(Screens, leadFromABackupToTheEmailSettingsOfAll) {
    Screen& screen = showUnitSettings();
    EXPECT_EQ(screen.description("Send"), "Disabled: turn on email summary in global settings");
    screen.click("Open Settings → Email");
    EXPECT_TRUE(screen.ceasesToShow("Backup settings"));
    world.time.advance(0.3);
    EXPECT_TRUE(screen.comesToShow("Send summaries with"));
}

TEST_F(Screens, sayWhatAPolicyIsAlsoWhileEmailIsOff) {
    Screen& screen = showUnitSettings();
    EXPECT_TRUE(screen.shows("Disabled: turn on email summary in global settings"));
    EXPECT_TRUE(screen.shows("An email after every snapshot."));
}

} // namespace marrowbox
