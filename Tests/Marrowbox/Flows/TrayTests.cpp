// The program without its window in front: its menu in the tray, and what it tells through the desktop.
#include "AppSupport/StandInNotifications.h"
#include "FlowOfLetters.h"
#include "Marrowbox/Platform/SessionManager.h"
#include "TrayUser.h"

#include <QDBusMessage>
#include <QQuickWindow>

namespace marrowbox {

using test::FlowOfLetters;
using test::StandInNotifications;
using test::TrayUser;
using testing::Contains;

namespace {

class FlowOfTheTray : public FlowOfLetters {
  protected:
    /// By the key, as at the title bar. Without a tray that shows the item, it goes no further than the task
    /// list.
    void closeWindow() {
        user.press(Qt::Key_W, Qt::ControlModifier);
        EXPECT_TRUE(user.comesTo([this] { return isAway(); }));
    }
    bool isAway() { return !window().isVisible() || window().windowState() == Qt::WindowMinimized; }
    bool comesToFront() {
        return user.comesTo([this] { return !isAway() && window().isActive(); });
    }

    TrayUser tray;
};

class FlowOfNotifications : public FlowOfTheTray {
  protected:
    FlowOfNotifications() { desktop.offerOn(computer.sessionBus.connect()); }

    bool comesToTell(const QString& notification) {
        return user.comesTo([&] { return desktop.shown.contains(notification); });
    }

    StandInNotifications desktop;
};

} // namespace

TEST_F(FlowOfTheTray, saysHowThingsStandAndStartsAndCancelsABackup) {
    EXPECT_EQ(tray.rows(), (QStringList{"Your backup companion", "Open Marrowbox", "-", "Back up Letters",
                                        "-", "Settings", "Quit Marrowbox"}));
    EXPECT_FALSE(tray.isEnabled("Your backup companion"));
    prepareSlowBackup();
    tray.click("Back up Letters");
    EXPECT_TRUE(user.comesToShow("Cancel snapshot"));
    EXPECT_TRUE(comesToWaitForSlowBackup());
    EXPECT_FALSE(tray.isEnabled("Back up Letters"));
    EXPECT_TRUE(user.shows(tray.rows().front()))
        << "the tray tells " << tray.rows().front().toStdString() << " but the page "
        << user.names().join(u'\n').toStdString();
    tray.click("Cancel backup");
    EXPECT_TRUE(comesToEnd(RunOutcome::cancelled));
    EXPECT_TRUE(user.comesTo([this] { return tray.isEnabled("Back up Letters"); }));
    EXPECT_EQ(tray.rows().front(), "Your backup companion");
}

TEST_F(FlowOfTheTray, opensTheWindowAgain) {
    closeWindow();
    EXPECT_FALSE(hasEnded());
    tray.click("Open Marrowbox");
    EXPECT_TRUE(comesToFront());
}

TEST_F(FlowOfTheTray, opensTheWindowAgainAsLargeAsItWas) {
    const auto fillsTheDesktop = [this] { return window().windowStates().testFlag(Qt::WindowMaximized); };
    window().showMaximized();
    EXPECT_TRUE(user.comesTo(fillsTheDesktop));
    tray.click("Open Marrowbox");
    EXPECT_TRUE(user.comesTo(fillsTheDesktop)) << "while it was in sight";
    closeWindow();
    tray.click("Open Marrowbox");
    EXPECT_TRUE(comesToFront());
    EXPECT_TRUE(user.comesTo(fillsTheDesktop));
}

TEST_F(FlowOfTheTray, backsUpWhileTheWindowIsClosed) {
    closeWindow();
    tray.click("Back up Letters");
    EXPECT_TRUE(comesToBeWritten([](const auto& written) {
        return written.runs.size() == 2 && written.runs.front().outcome == RunOutcome::succeeded;
    }));
    EXPECT_TRUE(isAway());
}

TEST_F(FlowOfTheTray, leavesTheScheduleRunningWhileTheWindowIsClosed) {
    QDBusConnection machine = computer.systemBus.connect();
    machine.registerService(sessionManager::service);
    closeWindow();
    hoursAhead = 2 * 24;
    QDBusMessage wokeUp = QDBusMessage::createSignal(sessionManager::path, sessionManager::interface,
                                                     QStringLiteral("PrepareForSleep"));
    machine.send(wokeUp << false);
    EXPECT_TRUE(comesToBeWritten([](const auto& written) {
        return written.runs.size() == 2 && written.runs.front().outcome == RunOutcome::succeeded;
    }));
    EXPECT_TRUE(isAway());
}

TEST_F(FlowOfTheTray, opensTheSettingsInTheWindow) {
    closeWindow();
    tray.click("Settings");
    EXPECT_TRUE(comesToFront());
    EXPECT_TRUE(user.comesToShow("Start Marrowbox at login"));
}

TEST_F(FlowOfTheTray, quitsAtOnceWhileNothingRuns) {
    closeWindow();
    tray.click("Quit Marrowbox");
    EXPECT_TRUE(user.comesTo([this] { return hasEnded(); }));
    EXPECT_TRUE(isAway());
}

TEST_F(FlowOfTheTray, bringsTheWindowToAskBeforeItQuitsDuringARun) {
    beginSlowBackup();
    closeWindow();
    tray.click("Quit Marrowbox");
    EXPECT_TRUE(comesToFront());
    EXPECT_TRUE(user.comesToShow("Quit Marrowbox?"));
    EXPECT_FALSE(hasEnded());
    user.click("Quit");
    EXPECT_TRUE(user.comesTo([this] { return hasEnded(); }));
    EXPECT_EQ(configuration().runs.at(0).outcome, RunOutcome::cancelled);
}

TEST_F(FlowOfNotifications, tellOfAFailedRunAndLeadToTheWindow) {
    google.inject(sandbox::Fault::on(sandbox::anyListing()).always().answer(403).reason("forbidden"));
    closeWindow();
    tray.click("Back up Letters");
    EXPECT_TRUE(comesToBeWritten(
        [](const auto& written) { return written.runs.front().outcome == RunOutcome::failed; }));
    const QString detail = QString::fromStdString(configuration().runs.at(0).detail.value());
    EXPECT_TRUE(comesToTell("Marrowbox|“Letters” was not backed up|" + detail));
    Q_EMIT desktop.ActionInvoked(1, QStringLiteral("default"));
    EXPECT_TRUE(comesToFront());
    EXPECT_TRUE(user.comesToShow("The last snapshot needs attention."));
}

TEST_F(FlowOfNotifications, tellOfARunThatCatchesUpOnMissedOnes) {
    endProgram();
    hoursAhead = 3 * 24;
    startProgram();
    EXPECT_TRUE(comesToTell("Marrowbox|“Letters” has caught up|A new snapshot makes up for those missed "
                            "while this computer was asleep or offline."));
    EXPECT_EQ(configuration().runs.at(0).outcome, RunOutcome::succeeded);
}

TEST_F(FlowOfNotifications, sayNothingOfARunThatTheUserSees) {
    backUpAgain();
    google.inject(sandbox::Fault::on(sandbox::anyListing()).always().answer(403).reason("forbidden"));
    user.click("Back up Letters");
    EXPECT_TRUE(user.comesTo([this] { return !desktop.shown.isEmpty(); }));
    EXPECT_EQ(desktop.shown.size(), 1); // the failure alone, which came last
}

} // namespace marrowbox
