// From the first start to the first backup.
#include "FlowWorld.h"

#include "Platform/Files.h"

namespace marrowbox {

using test::Flow;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// Ada's letters: a folder with a file, a native document and a folder below it.
void fillDrive(sandbox::SandboxServer& google) {
    auto& drive = google.drive();
    const std::string letters = drive.addFolder("root", "Letters");
    drive.addFile(letters, "Hello.txt", "Dear Ada,\n", "text/plain");
    drive.addNative(letters, "Minutes", sandbox::NativeKind::document, "What was said.\n");
    const std::string year = drive.addFolder(letters, "2026");
    drive.addFile(year, "Plan.txt", "First of all\n", "text/plain");
    drive.addFolder("root", "Photos");
}

std::vector<std::string> snapshotFiles(const fs::path& disk, const SyncUnit& unit) {
    return directoryNames(disk / "Marrowbox" / unit.id.text() / "Snapshots");
}

} // namespace

TEST_F(Flow, leadsANewUserFromTheFirstStartToTheFirstBackup) {
    fillDrive(google);
    startProgram();
    EXPECT_TRUE(user.comesToShow("Welcome to Marrowbox"));
    user.click("Connect Google account");
    EXPECT_TRUE(user.comesToShow("Waiting for Google…"));
    allow();
    EXPECT_TRUE(user.comesToShow("You are connected!"));
    EXPECT_TRUE(user.shows("1 Google account connected"));
    user.click("Create your first backup");
    EXPECT_TRUE(user.comesToShow("A new backup"));
    user.click("My Drive");
    EXPECT_TRUE(user.comesToShow("Photos"));
    user.click("Letters");
    EXPECT_TRUE(user.comesToShow("2026"));
    user.click("Use this folder");
    EXPECT_EQ(user.description("Create backup"), "Choose a destination first.");
    choose(disk);
    user.click("Choose folder…");
    EXPECT_TRUE(user.comesToShow("Backup name"));
    EXPECT_EQ(user.textIn("Backup name"), "Letters");
    user.click("Create backup");
    EXPECT_TRUE(user.ceasesToShow("A new backup"));
    EXPECT_TRUE(user.comesToShow("Your files are in a safe place."));
    EXPECT_TRUE(user.comesToShow("Explore snapshot"));
    EXPECT_TRUE(comesToEnd(RunOutcome::succeeded));

    EXPECT_THAT(asked(), ElementsAre("Choose a folder on this computer, an external drive, or a NAS share "
                                     "mounted in your file manager."));
    const AppConfiguration written = configuration();
    ASSERT_EQ(written.units.size(), 1U);
    EXPECT_EQ(written.units[0].schedule.frequency, ScheduleFrequency::daily);
    EXPECT_EQ(written.units[0].schedule.hour, 9);
    EXPECT_GT(written.units[0].nextRun, systemClock()());
    EXPECT_EQ(written.runs.at(0).summary.added, 3);
    EXPECT_EQ(snapshotFiles(disk, written.units[0]).size(), 1U);
    EXPECT_EQ(google.requests().count(sandbox::media(google.drive().rootID())), 0U);
}

TEST_F(Flow, leadsThroughTheFirstBackupByTheKeyboardAlone) {
    fillDrive(google);
    startProgram();
    user.tabTo("Connect Google account");
    user.press(Qt::Key_Return);
    EXPECT_TRUE(user.comesToShow("Waiting for Google…"));
    EXPECT_EQ(user.focused(), "Cancel sign-in");
    allow();
    EXPECT_TRUE(user.comesToShow("You are connected!"));
    user.tabTo("Create your first backup");
    user.press(Qt::Key_Space);
    EXPECT_TRUE(user.comesToShow("My Drive"));
    user.tabTo("My Drive");
    user.press(Qt::Key_Return);
    EXPECT_TRUE(user.comesToShow("Letters"));
    user.tabTo("Letters");
    user.press(Qt::Key_Return);
    EXPECT_TRUE(user.comesToShow("2026"));
    user.tabTo("Use this folder");
    user.press(Qt::Key_Space);
    EXPECT_TRUE(user.comesToShow("Change source"));
    choose(disk);
    user.tabTo("Choose folder…");
    user.press(Qt::Key_Space);
    EXPECT_TRUE(user.comesToShow("Backup name"));
    user.tabTo("Backup name");
    user.press(Qt::Key_A, Qt::ControlModifier);
    user.type("My letters");
    user.tabTo("Create backup");
    user.press(Qt::Key_Return);
    EXPECT_TRUE(user.ceasesToShow("A new backup"));
    EXPECT_TRUE(comesToEnd(RunOutcome::succeeded));
    ASSERT_EQ(configuration().units.size(), 1U);
    EXPECT_EQ(configuration().units[0].name, "My letters");
}

TEST_F(Flow, letsAUserGiveUpSigningInAndTryAgain) {
    startProgram();
    user.click("Connect Google account");
    EXPECT_TRUE(user.comesToShow("Waiting for Google…"));
    user.click("Cancel sign-in");
    EXPECT_TRUE(user.comesToShow("Connect Google account"));
    EXPECT_FALSE(user.shows("A little attention needed"));
    user.click("Connect Google account");
    EXPECT_TRUE(user.comesTo([this] { return computer.opened().size() == 2; }));
    allow();
    EXPECT_TRUE(user.comesToShow("You are connected!"));
}

TEST_F(Flow, saysWhyAnAccountIsNotConnectedThatGoogleRefused) {
    startProgram();
    user.click("Connect Google account");
    answerGoogle("Deny");
    EXPECT_TRUE(user.comesToShow("A little attention needed"));
    user.click("OK");
    EXPECT_TRUE(user.ceasesToShow("A little attention needed"));
    EXPECT_TRUE(user.shows("Connect Google account"));
    EXPECT_THAT(configuration().accounts, testing::IsEmpty());
}

TEST_F(Flow, refusesADestinationInGooglesOwnFolder) {
    fillDrive(google);
    startProgram();
    connectAccount();
    user.click("Create your first backup");
    user.click("My Drive");
    user.click("Use this folder");
    const fs::path inside = computer.folder("Library/CloudStorage/GoogleDrive-ada@example.com/My Drive");
    const fs::path link = computer.folder("Links") / "Innocent";
    fs::create_directory_symlink(inside, link);
    choose(link);
    user.click("Choose folder…");
    const QString refusal = "Google Drive cannot be a backup destination. Choose a local disk or NAS folder.";
    EXPECT_TRUE(user.comesToShow(refusal));
    EXPECT_EQ(user.description("Create backup"), "Choose a destination first.");
    choose(disk);
    user.click("Choose folder…");
    EXPECT_TRUE(user.ceasesToShow(refusal));
    EXPECT_TRUE(user.comesToShow("Backup name"));
    user.press(Qt::Key_Escape);
    EXPECT_TRUE(user.ceasesToShow("A new backup"));
    EXPECT_THAT(configuration().units, testing::IsEmpty());
}

} // namespace marrowbox
