// What is done with a backup: its schedule, its account, its removal; and the end of the program during a
// run.
#include "FlowOfLetters.h"

#include "Platform/Files.h"

#include <QQuickWindow>

namespace marrowbox {

using test::FlowOfLetters;
using testing::IsEmpty;

namespace {

class FlowOfABackup : public FlowOfLetters {
  protected:
    /// The program says that it may end.
    bool comesToQuit() {
        return user.comesTo([this] { return hasEnded(); });
    }
};

} // namespace

TEST_F(FlowOfABackup, changesItsSchedule) {
    user.click("Backup settings");
    EXPECT_TRUE(user.comesToShow("Frequency"));
    pick("Frequency", "Weekly");
    pick("Weekday", "Friday");
    fill("Hour", "14");
    fill("Minute", "30");
    user.click("Save");
    EXPECT_TRUE(user.ceasesToShow("Frequency"));
    EXPECT_TRUE(user.comesToShow("SCHEDULE: Friday at 14:30"));
    const SyncUnit changed = unit();
    EXPECT_EQ(changed.schedule.frequency, ScheduleFrequency::weekly);
    EXPECT_EQ(changed.schedule.weekday, 6);
    EXPECT_EQ(changed.schedule.hour, 14);
    EXPECT_EQ(changed.schedule.minute, 30);
    EXPECT_GT(changed.nextRun, systemClock()());
}

TEST_F(FlowOfABackup, changesItsScheduleByTheKeyboardAlone) {
    user.tabTo("Backup settings");
    user.press(Qt::Key_Return);
    EXPECT_TRUE(user.comesToShow("Frequency"));
    user.tabTo("Frequency");
    user.press(Qt::Key_Down); // the next choice, with the list closed
    EXPECT_TRUE(user.comesToShow("Weekday"));
    user.tabTo("Weekday");
    user.press(Qt::Key_Return);
    user.press(Qt::Key_Down);
    user.press(Qt::Key_Return);
    user.tabTo("Hour");
    user.press(Qt::Key_Up);
    user.tabTo("Save");
    user.press(Qt::Key_Return);
    EXPECT_TRUE(user.ceasesToShow("Frequency"));
    EXPECT_TRUE(user.comesToShow("SCHEDULE: Tuesday at 10:00"));
    EXPECT_EQ(unit().schedule.frequency, ScheduleFrequency::weekly);
    EXPECT_EQ(unit().schedule.weekday, 3);
    EXPECT_EQ(unit().schedule.hour, 10);
}

TEST_F(FlowOfABackup, keepsEverythingWhenItsSettingsAreLeft) {
    const SyncUnit before = unit();
    user.click("Backup settings");
    fill("Name", "Other");
    pick("Frequency", "Manual");
    user.click("Cancel");
    EXPECT_TRUE(user.ceasesToShow("Frequency"));
    EXPECT_EQ(unit(), before);
    EXPECT_TRUE(user.shows("Back up Letters"));
}

TEST_F(FlowOfABackup, stopsWithoutItsAccountAndGoesOnOnceReconnected) {
    endProgram();
    fs::remove_all(computer.dataFolder() / "Credentials");
    startProgram();
    EXPECT_TRUE(user.comesToShow("This backup is not running. Its Google account is disconnected."));
    EXPECT_EQ(user.description("Letters"), "Stopped · reconnect");
    EXPECT_TRUE(user.shows("Reconnect this Google account to resume automatic backups."));
    user.click("Reconnect");
    EXPECT_TRUE(user.comesToShow("Waiting for Google…"));
    allow();
    EXPECT_TRUE(user.ceasesToShow("This backup is not running. Its Google account is disconnected."));
    EXPECT_EQ(user.description("Letters"), "");
    user.click("Back up Letters");
    EXPECT_TRUE(comesToBeWritten([](const auto& written) { return written.runs.size() == 2; }));
    EXPECT_TRUE(comesToEnd(RunOutcome::succeeded));
}

TEST_F(FlowOfABackup, isRemovedOnlyAfterAQuestionAndKeepsItsFiles) {
    const SyncUnit removed = unit();
    user.click("Remove backup…");
    EXPECT_TRUE(user.comesToShow("Remove “Letters”?"));
    user.click("Cancel");
    EXPECT_TRUE(user.ceasesToShow("Remove “Letters”?"));
    EXPECT_EQ(configuration().units.size(), 1U);
    user.click("Remove backup…");
    user.click("Remove backup");
    EXPECT_TRUE(user.comesToShow("Create your first backup"));
    EXPECT_FALSE(user.shows("BACKUPS"));
    EXPECT_THAT(configuration().units, IsEmpty());
    EXPECT_EQ(directoryNames(disk / "Marrowbox" / removed.id.text() / "Snapshots").size(), 1U);
}

TEST_F(FlowOfABackup, endsAtOnceWhileNothingRuns) {
    user.press(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(hasEnded());
    EXPECT_FALSE(user.shows("Quit Marrowbox?"));
}

TEST_F(FlowOfABackup, goesOnWhenItIsKeptRunningAndWindsDownWhenQuit) {
    beginSlowBackup();
    user.press(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(user.comesToShow("Quit Marrowbox?"));
    EXPECT_EQ(user.focused(), "Keep running");
    user.press(Qt::Key_Return);
    EXPECT_TRUE(user.ceasesToShow("Quit Marrowbox?"));
    EXPECT_TRUE(user.shows("Cancel snapshot"));
    user.click("Marrowbox menu");
    user.click("Quit Marrowbox");
    EXPECT_TRUE(user.comesToShow("Quit Marrowbox?"));
    EXPECT_FALSE(hasEnded());
    user.click("Quit");
    EXPECT_TRUE(comesToQuit());
    EXPECT_EQ(configuration().runs.at(0).outcome, RunOutcome::cancelled);
    endProgram();
    EXPECT_THAT(directoryNames(disk / "Marrowbox" / unit().id.text() / "Staging"), IsEmpty());
}

TEST_F(FlowOfABackup, isCancelledAndCanBeBackedUpAgain) {
    beginSlowBackup();
    EXPECT_EQ(user.description("Remove backup…"), "Wait until the backup has finished, or cancel it first.");
    user.click("Cancel snapshot");
    EXPECT_TRUE(comesToEnd(RunOutcome::cancelled));
    EXPECT_TRUE(
        user.comesToShow("Cancelled before completion. Previously completed snapshots remain available."));
    google.clearFaults();
    user.click("Back up Letters");
    EXPECT_TRUE(comesToEnd(RunOutcome::succeeded));
    EXPECT_TRUE(user.comesToShow("Your files are in a safe place."));
}

TEST_F(FlowOfABackup, saysWhatWentWrongAndSucceedsOnceThatIsMended) {
    google.inject(sandbox::Fault::on(sandbox::anyListing()).always().answer(403).reason("forbidden"));
    user.click("Back up Letters");
    EXPECT_TRUE(comesToEnd(RunOutcome::failed));
    EXPECT_TRUE(user.comesToShow("The last snapshot needs attention."));
    google.clearFaults();
    user.click("Back up Letters");
    EXPECT_TRUE(comesToEnd(RunOutcome::succeeded));
    EXPECT_TRUE(user.comesToShow("Your files are in a safe place."));
    user.click("Recent activity & email delivery");
    EXPECT_TRUE(user.comesToShow("Failed"));
}

} // namespace marrowbox
