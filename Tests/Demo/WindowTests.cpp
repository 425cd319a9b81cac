// The end of the demonstration: the program's own window on what was made.
#include "AppSupport/EventLoop.h"
#include "AppSupport/PrivateBus.h"
#include "Demo/Window.h"
#include "DemoProgram.h"
#include "Marrowbox/Platform/SingleInstance.h"
#include "Models/AppConfiguration.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Platform/Cancellation.h"
#include "Platform/Clock.h"
#include "Platform/Files.h"
#include "Processes/ProcessRunner.h"
#include "Support/Coroutine.h"
#include "Support/Thrown.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

using testing::HasSubstr;

class DemoWindow : public WithEventLoop {
  protected:
    /// A session with a display on which nothing is seen.
    std::map<std::string, std::string> session(const std::string& busAddress) const {
        return {{"DISPLAY", ":nowhere"},
                {"QT_QPA_PLATFORM", "offscreen"},
                {"QT_QUICK_BACKEND", "software"},
                {"DBUS_SESSION_BUS_ADDRESS", busAddress},
                {"DBUS_SYSTEM_BUS_ADDRESS", busAddress}};
    }
    /// Waits until the program with this data folder has its window and turns.
    static void awaitProgram(const QDBusConnection& bus, const fs::path& folder) {
        const QString name = instanceName({{"MARROW_DATA_DIR", folder.string()}});
        const QDBusServiceWatcher watcher(name, bus, QDBusServiceWatcher::WatchForRegistration);
        bool isThere = bus.interface()->isServiceRegistered(name);
        QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, [&isThere] { isThere = true; });
        ASSERT_TRUE(turnUntil([&isThere] { return isThere; }));
        auto call = QDBusMessage::createMethodCall(name, "/" + QString(name).replace('.', '/'),
                                                   "org.freedesktop.Application", "Activate");
        call << QVariantMap();
        const QDBusMessage answer = bus.call(call, QDBus::Block, 20000);
        EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
    }
    /// Looks at the limits of the program with this data folder.
    static void expectLeavesNoCoreDump(const QDBusConnection& bus, const fs::path& folder) {
        const QString name = instanceName({{"MARROW_DATA_DIR", folder.string()}});
        const unsigned process = bus.interface()->servicePid(name).value();
        EXPECT_THAT(readFile("/proc/" + std::to_string(process) + "/limits"),
                    testing::ContainsRegex("Max core file size +1 +1 "));
    }
};

} // namespace

TEST_F(DemoWindow, opensOnWhatWasMadeAndGoesWithCtrlC) {
    PrivateBus bus;
    DemoProgram demo(session(bus.address().toStdString()));
    demo.awaitWords("The window of Marrowbox opens on all this.");
    awaitProgram(bus.connect(), demo.folder());
    expectLeavesNoCoreDump(bus.connect(), demo.folder());
    demo.interrupt();
    EXPECT_EQ(demo.status(), 0) << demo.written();
    demo.expectNothingRunning();
    const auto configuration = JSONFile::read<AppConfiguration>(demo.folder() / "Configuration.json");
    EXPECT_EQ(configuration.units.size(), 2U);
    EXPECT_TRUE(configuration.usesImportedClient);
    for (const SyncUnit& unit :
         configuration.units) // the clock of the demonstration has come to that of the day
        EXPECT_LT(std::abs(unit.nextRun.value() - systemClock()()), 2 * 86'400.0) << unit.name;
}

TEST_F(DemoWindow, saysWhyItCannotBeShown) {
    const ScratchFolder folder;
    auto surroundings = ProcessSurroundings::ofThisProcess();
    surroundings.environment.insert_or_assign("QT_QPA_PLATFORM", "no-such-platform");
    const Environment session{{"DISPLAY", ":nowhere"}, {"PATH", "/usr/bin"}};
    const auto failure =
        thrown<BackupError>([&] { await(demo::showWindow(surroundings, session, folder.path(), {})); });
    EXPECT_THAT(failure, HasSubstr("The window could not be shown. "));
    EXPECT_THAT(failure, HasSubstr("no-such-platform"));
}

TEST_F(DemoWindow, staysClosedOnceStopped) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(await(demo::showWindow({}, {{"DISPLAY", ":0"}}, "/nowhere", stop.get_token())),
                 CancellationError);
}

TEST_F(DemoWindow, signsInWithoutABrowserAndOpensOtherPagesInTheUsersOwn) {
    const ScratchFolder folder;
    makeDirectory(folder / "own", 0700);
    writeAll(openFile(folder / "own/xdg-open", O_WRONLY | O_CREAT, 0700),
             "#!/bin/sh\necho \"$1 $HTTPS_PROXY\" >\"$0.opened\"\n");
    const fs::path opener = demo::writtenOpener(folder.path()) / "xdg-open";
    const std::string own = (folder / "own").string() + ":/usr/bin:/bin";
    auto surroundings = ProcessSurroundings::ofThisProcess();
    surroundings.environment.insert_or_assign("MARROWBOX_DEMO_PATH", own);
    surroundings.environment.insert_or_assign("HTTPS_PROXY", "http://127.0.0.1:1");
    surroundings.environment.insert_or_assign("SSL_CERT_FILE", "/nowhere");
    const auto opened = [&](const std::string& page) {
        return await(ProcessRunner::run(opener, {page}, {}, surroundings, {})).status;
    };
    EXPECT_EQ(opened("https://drive.google.com/drive"), 0);
    EXPECT_EQ(readFile(folder / "own/xdg-open.opened"), "https://drive.google.com/drive \n");
    fs::remove(folder / "own/xdg-open.opened");
    EXPECT_NE(opened("https://accounts.google.com/o/oauth2/v2/auth"), 0); // nothing listens at that proxy
    EXPECT_FALSE(fs::exists(folder / "own/xdg-open.opened"));
}

} // namespace marrowbox::test
