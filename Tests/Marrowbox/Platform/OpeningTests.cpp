#include "AppSupport/EventLoop.h"
#include "AppSupport/PrivateBus.h"
#include "Marrowbox/Platform/FileManager.h"
#include "Marrowbox/Platform/ProgramLauncher.h"
#include "Platform/Files.h"
#include "Support/Children.h"

#include <QFileSystemWatcher>
#include <QStringList>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/wait.h>

namespace marrowbox::test {

class StandInFileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

  public:
    QStringList shown;

  public Q_SLOTS:
    void ShowFolders(const QStringList& addresses, const QString& /*startupId*/) { shown += addresses; }
};

namespace {

constexpr std::chrono::seconds plenty = std::chrono::seconds(20);

/// Programs of the test's own, alone on their PATH.
class Openers : public WithEventLoop {
  protected:
    void SetUp() override {
        // Earlier tests in this process did not stay to see the last of what they started.
        while (::waitpid(-1, nullptr, 0) > 0) {
        }
    }
    void makeProgram(const std::string& name, const std::string& script) const {
        std::ofstream(folder / name) << "#!/bin/sh\n" << script << "\n";
        fs::permissions(folder / name, fs::perms::owner_all);
    }
    /// A program that writes down its arguments in one step.
    void makeRecorder(const std::string& name) const {
        makeProgram(name, "printf '%s\\n' \"$@\" > " + (folder / "new").string() + "\n/bin/mv " +
                              (folder / "new").string() + " " + (folder / "told").string());
    }
    std::string told() const {
        QFileSystemWatcher changes({QString::fromStdString(folder.path())});
        return turnUntil([&] { return fs::exists(folder / "told"); }) ? readFile(folder / "told") : "nothing";
    }

    ScratchFolder folder;
    ProgramLauncher launcher{{{"PATH", folder.path().string()}}};
};

} // namespace

TEST_F(Openers, passTheirArgumentsAsTheyAre) {
    makeRecorder("opener");
    EXPECT_TRUE(launcher.start("opener", {"https://a.example/?b=c&d=%20 $HOME", ""}));
    EXPECT_EQ(told(), "https://a.example/?b=c&d=%20 $HOME\n\n");
    EXPECT_TRUE(turnUntil([] { return hasNoChild(); }));
}

TEST_F(Openers, failWithoutTheProgram) {
    EXPECT_FALSE(launcher.start("opener", {}));
    EXPECT_FALSE(launcher.run("opener", {}, plenty));
}

TEST_F(Openers, tellWhetherAProgramFailed) {
    makeProgram("good", "exit 0");
    makeProgram("bad", "exit 4");
    makeProgram("killed", "kill -9 $$");
    EXPECT_TRUE(launcher.run("good", {}, plenty));
    EXPECT_FALSE(launcher.run("bad", {}, plenty));
    EXPECT_FALSE(launcher.run("killed", {}, plenty));
    EXPECT_TRUE(hasNoChild());
}

TEST_F(Openers, takeAProgramThatRunsOnForASuccessAndLeaveNoneBehind) {
    const NamedPipe pipe(folder / "pipe");
    makeProgram("browser", "read line < " + pipe.path().string());
    EXPECT_TRUE(launcher.run("browser", {}, std::chrono::milliseconds(1)));
    EXPECT_FALSE(hasNoChild());
    pipe.write("enough\n");
    EXPECT_TRUE(turnUntil([] { return hasNoChild(); }));
}

TEST_F(Openers, startProgramsInASessionOfTheirOwnWithoutOurDescriptors) {
    makeProgram("program",
                "/usr/bin/readlink /proc/self/fd/0 > " + (folder / "new").string() +
                    "\n/bin/ls /proc/self/fd | /usr/bin/tr '\\n' ' ' >> " + (folder / "new").string() +
                    "\n/usr/bin/test $(/usr/bin/cut -d ' ' -f 6 /proc/$$/stat) = $$ && echo own >> " +
                    (folder / "new").string() + "\n/bin/mv " + (folder / "new").string() + " " +
                    (folder / "told").string());
    const Descriptor inherited(::open("/dev/null", O_RDONLY)); // not close-on-exec
    EXPECT_TRUE(launcher.start("program", {}));
    EXPECT_EQ(told(), "/dev/null\n0 1 2 3 own\n"); // the fourth is the folder that lists them
}

TEST_F(Openers, ignoreFoldersThatDependOnWhereTheProgramRuns) {
    makeRecorder("opener");
    fs::current_path(folder.path());
    ProgramLauncher relative({{"PATH", ":.:" + folder.path().filename().string()}});
    EXPECT_FALSE(relative.start("opener", {}));
    fs::current_path("/");
}

TEST_F(Openers, leaveFoldersToTheFileManagerOnTheBus) {
    makeRecorder("xdg-open");
    PrivateBus bus;
    StandInFileManager manager;
    auto service = bus.connect();
    service.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager,
                           QDBusConnection::ExportAllContents);
    service.registerService(QStringLiteral("org.freedesktop.FileManager1"));
    FileManager fileManager(bus.connect(), launcher);
    fileManager.show("/media/My Disk/100% ä#?\xFF");
    EXPECT_TRUE(turnUntil([&] { return !manager.shown.isEmpty(); }));
    EXPECT_EQ(manager.shown, QStringList("file:///media/My%20Disk/100%25%20%C3%A4%23%3F%FF"));
    EXPECT_FALSE(fs::exists(folder / "told"));
}

TEST_F(Openers, showFoldersThemselvesWithoutAFileManagerOnTheBus) {
    makeRecorder("xdg-open");
    PrivateBus bus;
    FileManager fileManager(bus.connect(), launcher);
    fileManager.show("/media/My Disk");
    EXPECT_EQ(told(), "file:///media/My%20Disk\n");
}

TEST_F(Openers, showFoldersThemselvesWithoutABus) {
    makeRecorder("xdg-open");
    FileManager fileManager(withoutBus(), launcher);
    fileManager.show("/media");
    EXPECT_EQ(told(), "file:///media\n");
}

} // namespace marrowbox::test

#include "OpeningTests.moc"
