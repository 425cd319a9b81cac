#include "AppSupport/EventLoop.h"
#include "AppSupport/PrivateBus.h"
#include "AppSupport/PrivateMounts.h"
#include "Marrowbox/Platform/LinuxDesktop.h"
#include "Platform/Files.h"
#include "Support/Coroutine.h"

#include <QFileSystemWatcher>
#include <fstream>
#include <gmock/gmock.h>

namespace marrowbox::test {

namespace {

asio::awaitable<std::optional<fs::path>> answerWith(std::string message) {
    co_return "/chosen/" + message;
}

asio::awaitable<std::optional<fs::path>> cancel(std::string /*message*/) {
    co_return std::nullopt;
}

class LinuxDesktops : public WithEventLoop {
  protected:
    void makeProgram(const std::string& name, const std::string& script) const {
        std::ofstream(folder / name) << "#!/bin/sh\n" << script << "\n";
        fs::permissions(folder / name, fs::perms::owner_all);
    }
    void makeRecorder(const std::string& name) const {
        makeProgram(name, "printf '%s\\n' \"$0\" \"$@\" > " + (folder / "new").string() + "\n/bin/mv " +
                              (folder / "new").string() + " " + (folder / "told").string());
    }
    std::string told() const {
        QFileSystemWatcher changes({QString::fromStdString(folder.path())});
        return turnUntil([&] { return fs::exists(folder / "told"); }) ? readFile(folder / "told") : "nothing";
    }

    ScratchFolder folder;
    PrivateBus bus;
    LinuxDesktop desktop{{.sessionBus = bus.connect(),
                          .systemBus = bus.connect(),
                          .environment = {{"PATH", folder.path().string()},
                                          {"HOME", folder.path().string()},
                                          {"XDG_CURRENT_DESKTOP", "XFCE"}},
                          .executable = "/usr/bin/marrowbox",
                          .chooseJSONFile = answerWith,
                          .chooseFolder = cancel,
                          .openingPatience = std::chrono::seconds(20)}};
};

} // namespace

TEST_F(LinuxDesktops, keepTheLoginItemInTheUsersSettings) {
    EXPECT_EQ(desktop.loginItemStatus(), LoginItemStatus::disabled);
    desktop.registerLoginItem();
    EXPECT_EQ(desktop.loginItemStatus(), LoginItemStatus::enabled);
    EXPECT_TRUE(fs::exists(folder / ".config/autostart/marrowbox.desktop"));
    desktop.unregisterLoginItem();
    EXPECT_EQ(desktop.loginItemStatus(), LoginItemStatus::disabled);
}

TEST_F(LinuxDesktops, openTheDesktopsPageOfLoginItems) {
    makeRecorder("xfce4-session-settings");
    desktop.openLoginItemSettings();
    EXPECT_EQ(told(), (folder / "xfce4-session-settings").string() + "\n");
}

TEST_F(LinuxDesktops, showTheFolderOfLoginItemsWhereThereIsNoPage) {
    makeRecorder("xdg-open");
    desktop.openLoginItemSettings();
    EXPECT_EQ(told(),
              (folder / "xdg-open").string() + "\nfile://" + (folder / ".config/autostart").string() + "\n");
}

TEST_F(LinuxDesktops, openPagesAndNothingElse) {
    makeRecorder("xdg-open");
    EXPECT_FALSE(desktop.openPage("--help"));
    EXPECT_FALSE(desktop.openPage("file:///etc/passwd"));
    EXPECT_TRUE(desktop.openPage("https://a.example/?b=c"));
    EXPECT_EQ(told(), (folder / "xdg-open").string() + "\nhttps://a.example/?b=c\n");
}

TEST_F(LinuxDesktops, sayWhenAPageCannotBeOpened) {
    EXPECT_FALSE(desktop.openPage("https://a.example/"));
    makeProgram("xdg-open", "exit 3");
    EXPECT_FALSE(desktop.openPage("https://a.example/"));
}

TEST_F(LinuxDesktops, askTheUserThroughTheChoosers) {
    EXPECT_EQ(await(desktop.chooseJSONFile("client")), "/chosen/client");
    EXPECT_EQ(await(desktop.chooseFolder("folder")), std::nullopt);
}

TEST_F(LinuxDesktops, beginActivitiesOnAnyMachine) {
    EXPECT_TRUE(desktop.beginActivity("Working"));
}

TEST_F(LinuxDesktops, findTheirBookmarksAgain) {
    const auto bookmark = desktop.makeBookmark(folder.path());
    EXPECT_EQ(desktop.resolveBookmark(bookmark), (ResolvedBookmark{.path = fs::canonical(folder.path())}));
}

TEST_F(LinuxDesktops, tellOfVolumesToTheLatestObserver) {
    if (!enterPrivateMounts())
        GTEST_SKIP() << "This user may not mount.";
    bool hasAppeared = false;
    desktop.observe({.volumeAppeared = [] { FAIL(); }});
    desktop.observe({.volumeAppeared = [&] { hasAppeared = true; }});
    fs::create_directory(folder / "volume");
    const MemoryVolume volume(folder / "volume");
    EXPECT_TRUE(turnUntil([&] { return hasAppeared; }));
}

} // namespace marrowbox::test
