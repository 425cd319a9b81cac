// What is done with the snapshots of a backup: restoring, mounting, ejecting, keeping fewer of them.
#include "FlowOfLetters.h"
#include "TrayUser.h"

#include "Platform/Files.h"
#include "Platform/FuseSupport.h"

namespace marrowbox {

using test::FlowOfLetters;
using test::TrayUser;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

class FlowOfSnapshots : public FlowOfLetters {
  protected:
    std::vector<std::string> snapshots() const {
        const std::string unit = configuration().units.at(0).id.text();
        return directoryNames(disk / "Marrowbox" / unit / "Snapshots");
    }
    /// The last folder that the desktop has shown.
    fs::path shownFolder() {
        const std::string scheme = "file://";
        std::string address;
        EXPECT_TRUE(user.comesTo([&] {
            const auto opened = computer.opened();
            address = opened.empty() ? "" : opened.back();
            return address.starts_with(scheme);
        }));
        return QUrl(QString::fromStdString(address)).toLocalFile().toStdString();
    }
};

/// The same on a machine that can show volumes.
class FlowOfVolumes : public FlowOfSnapshots {
  protected:
    void SetUp() override {
        if (const auto reason = reasonForNoFUSE())
            GTEST_SKIP() << *reason;
    }
};

} // namespace

TEST_F(FlowOfSnapshots, restoresTheFirstOfTwo) {
    google.drive().replaceContent(hello_, "Dear Eve,\n");
    google.drive().addFile(letters_, "Later.txt", "Later\n", "text/plain");
    backUpAgain();
    EXPECT_TRUE(user.comesTo([this] { return user.names().filter(", 1 new · 1 updated").size() == 1; }));
    const QStringList first = user.names().filter(", 1 new · 0 updated");
    ASSERT_EQ(first.size(), 1);
    const fs::path restored = computer.folder("Restored");
    choose(restored);
    user.click("Snapshot actions", first.front());
    user.click("Restore to a folder…");
    const fs::path shown = shownFolder();
    EXPECT_EQ(shown.parent_path(), restored);
    EXPECT_THAT(shown.filename().string(), testing::StartsWith("Marrowbox Restore "));
    EXPECT_THAT(directoryNames(shown), ElementsAre("Hello.txt"));
    EXPECT_EQ(readFile(shown / "Hello.txt"), "Dear Ada,\n");
    EXPECT_TRUE(user.comesToShow("Explore snapshot"));
}

TEST_F(FlowOfSnapshots, restoresNothingWhenNoFolderIsChosen) {
    choose(std::nullopt);
    user.click("Snapshot actions");
    user.click("Restore to a folder…");
    EXPECT_TRUE(user.comesTo([this] { return asked().size() == 2; }));
    EXPECT_TRUE(user.comesToShow("Explore snapshot"));
    EXPECT_FALSE(user.shows("A little attention needed"));
}

TEST_F(FlowOfVolumes, mountsASnapshotAndEjectsIt) {
    user.click("Explore snapshot");
    EXPECT_TRUE(user.comesToShow("Eject snapshot"));
    EXPECT_TRUE(user.shows("Mounted"));
    const fs::path volume = shownFolder();
    EXPECT_EQ(readFile(volume / "Hello.txt"), "Dear Ada,\n");
    EXPECT_THROW(AtomicFile(volume / "New.txt"), std::system_error);
    user.click("Eject snapshot");
    EXPECT_TRUE(user.ceasesToShow("Eject snapshot"));
    EXPECT_FALSE(fs::exists(volume));
    EXPECT_FALSE(user.shows("Retry"));
}

TEST_F(FlowOfVolumes, mountsFromTheMenuOfARowByTheKeyboardAlone) {
    const QStringList rows = user.names().filter(", 1 new");
    ASSERT_FALSE(rows.isEmpty());
    user.tabTo(rows.front());
    user.press(Qt::Key_Return);
    EXPECT_TRUE(user.comesToShow("Mount read-only in file manager"));
    user.press(Qt::Key_Down);
    user.press(Qt::Key_Return);
    EXPECT_TRUE(user.comesToShow("Eject snapshot"));
    EXPECT_EQ(readFile(shownFolder() / "Hello.txt"), "Dear Ada,\n");
    user.tabTo("Eject snapshot");
    user.press(Qt::Key_Space);
    EXPECT_TRUE(user.ceasesToShow("Eject snapshot"));
}

TEST_F(FlowOfVolumes, opensAndEjectsASnapshotFromTheTray) {
    const TrayUser tray;
    user.click("Explore snapshot");
    EXPECT_TRUE(user.comesToShow("Eject snapshot"));
    const fs::path volume = shownFolder();
    const std::size_t opened = computer.opened().size();
    const QStringList rows = tray.rows();
    const QString snapshot = rows.value(rows.indexOf("Mounted snapshots") + 1);
    tray.click(snapshot, "Open in file manager");
    EXPECT_TRUE(user.comesTo([&] { return computer.opened().size() > opened; }));
    EXPECT_EQ(shownFolder(), volume);
    tray.click(snapshot, "Eject");
    EXPECT_TRUE(user.ceasesToShow("Eject snapshot"));
    EXPECT_FALSE(fs::exists(volume));
    EXPECT_FALSE(tray.rows().contains("Mounted snapshots"));
}

TEST_F(FlowOfVolumes, findsAMountedSnapshotAgainAtTheNextStart) {
    user.click("Explore snapshot");
    EXPECT_TRUE(user.comesToShow("Eject snapshot"));
    const fs::path volume = shownFolder();
    endProgram();
    EXPECT_EQ(readFile(volume / "Hello.txt"), "Dear Ada,\n");
    startProgram();
    EXPECT_TRUE(user.comesToShow("Eject snapshot"));
    user.click("Eject snapshot");
    EXPECT_TRUE(user.ceasesToShow("Eject snapshot"));
    EXPECT_FALSE(fs::exists(volume));
}

TEST_F(FlowOfSnapshots, shortensTheHistoryOnlyAfterItHasAsked) {
    const std::vector<std::string> first = snapshots();
    user.click("Backup settings");
    pick("Keep history", "30 days");
    user.click("Save");
    EXPECT_TRUE(user.comesToShow("Shorten backup history?"));
    user.press(Qt::Key_Escape);
    EXPECT_TRUE(user.ceasesToShow("Shorten backup history?"));
    EXPECT_TRUE(user.shows("Keep history"));
    EXPECT_FALSE(configuration().units.at(0).retentionDays);
    user.click("Save");
    user.click("Apply history limit");
    EXPECT_TRUE(user.ceasesToShow("Keep history"));
    EXPECT_EQ(configuration().units.at(0).retentionDays, 30);

    hoursAhead = 40 * 24;
    google.drive().replaceContent(hello_, "Dear Eve,\n");
    backUpAgain();
    EXPECT_EQ(snapshots().size(), 1U);
    EXPECT_NE(snapshots(), first);
}

TEST_F(FlowOfSnapshots, lengthensTheHistoryWithoutAQuestion) {
    user.click("Backup settings");
    pick("Keep history", "30 days");
    user.click("Save");
    user.click("Apply history limit");
    EXPECT_TRUE(user.ceasesToShow("Keep history"));
    user.click("Backup settings");
    pick("Keep history", "1 year");
    user.click("Save");
    EXPECT_TRUE(user.ceasesToShow("Keep history"));
    EXPECT_EQ(configuration().units.at(0).retentionDays, 365);
}

} // namespace marrowbox
