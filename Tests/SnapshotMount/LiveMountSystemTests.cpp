#include "Platform/Files.h"
#include "SnapshotMount/SnapshotMountSystem.h"
#include "Support/Children.h"
#include "Support/Coroutine.h"
#include "Support/ScratchFolder.h"
#include "Support/Stranger.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace marrowbox {

namespace {

/// This machine to a program in whose environment one setting is as given.
LiveMountSystem machineWith(const std::string& setting, const std::string& value) {
    auto surroundings = ProcessSurroundings::ofThisProcess();
    surroundings.environment.insert_or_assign(setting, value);
    return LiveMountSystem(std::move(surroundings));
}

} // namespace

TEST(LiveMountSystem, listsWholeCommandsWhateverTheUsersShellSays) {
    const std::string mark = "a mark at the end of a long command";
    // Two commands, so that the shell stays, and its own line is in the list.
    const std::string script = "/bin/ps -axo command=; : " + std::string(200, 'x') + mark;
    const std::map<std::string, std::string> settings{
        {"COLUMNS", "40"}, {"CMD_ENV", "hp"}, {"PS_PERSONALITY", "hp"}};
    for (const auto& [setting, value] : settings) {
        LiveMountSystem machine = machineWith(setting, value);
        const auto answer = test::await(machine.run("/bin/sh", {"-c", script}, {}, {}));
        EXPECT_EQ(answer.status, 0) << setting;
        EXPECT_NE(answer.output.find(mark), std::string::npos) << setting;
    }
}

TEST(LiveMountSystem, hasToolsAnswerAsEverWhereADeveloperLooksIntoThem) {
    const test::ScratchFolder scratch;
    makeDirectory(scratch / "Files", 0700);
    const std::vector<std::string> question{"--json", "--list", "--output", "TARGET"};
    const std::map<std::string, std::string> settings{
        {"LIBMOUNT_DEBUG", "all"}, {"LIBSMARTCOLS_DEBUG", "all"}, {"SOURCE_DATE_EPOCH", "today"}};
    for (const auto& [setting, value] : settings) {
        LiveMountSystem machine = machineWith(setting, value);
        const auto mounts = test::await(machine.run("/usr/bin/findmnt", question, {}, {}));
        EXPECT_TRUE(mounts.output.starts_with("{\n")) << setting;
        const auto image = test::await(machine.run(
            "/usr/bin/mksquashfs", {scratch / "Files", scratch / setting, "-quiet", "-no-progress"}, {}, {}));
        EXPECT_EQ(image.status, 0) << setting;
    }
}

TEST(LiveMountSystem, waitsForNoProcessOfAnotherUser) {
    if (const auto reason = test::reasonForNoStranger())
        GTEST_SKIP() << *reason;
    const test::ScratchFolder scratch;
    fs::permissions(scratch.path(), fs::perms(0755));
    const test::NamedPipe never(scratch / "never");
    fs::permissions(never.path(), fs::perms(0666));
    const Descriptor held = never.hold();
    const test::NamedPipe ready(scratch / "ready");
    fs::permissions(ready.path(), fs::perms(0666));
    const std::string script =
        "echo ready >" + ready.path().string() + "; read line <" + never.path().string();
    const std::string mark = scratch / "Snapshot.dmg";
    const test::StrangerAtWork program([&] {
        ::execl("/bin/sh", "sh", "-c", script.c_str(), mark.c_str(), nullptr);
        return false;
    });
    EXPECT_EQ(ready.read(), "ready\n");
    LiveMountSystem machine(ProcessSurroundings::ofThisProcess());
    EXPECT_TRUE(machine.processesWithArguments({mark}).empty());
}

} // namespace marrowbox
