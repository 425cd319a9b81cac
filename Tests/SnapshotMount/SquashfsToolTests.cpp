#include "SnapshotMount/SquashfsTool.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "Repository/LockBusyError.h"
#include "Repository/RepositoryLock.h"
#include "ScriptedMachine.h"
#include "Support/Coroutine.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <array>
#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
#include <fcntl.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

std::string recordedOutput(const std::string& name) {
    return readFile(fs::path(MARROWBOX_TEST_DATA) / name);
}

std::string findmntText(const std::string& source, const std::string& target) {
    return R"({"filesystems":[{"source":")" + source + R"(","target":")" + target + R"(","fstype":"fuse"}]})";
}

struct ScriptedSquashfs {
    test::ScratchFolder scratch;
    std::shared_ptr<test::ScriptedMachine> machine = std::make_shared<test::ScriptedMachine>();
    MountPointFolder points{fs::canonical(scratch.path()) / "marrowbox", ::getuid()};
    SquashfsTool squashfs{machine, points};

    std::optional<fs::path> attach(const fs::path& image = "/w/Snapshot.dmg") {
        return test::await(squashfs.attach(image, "Marrowbox A 11-21 1504", {}));
    }
    fs::path expectedPoint() const { return points.path() / "Marrowbox A 11-21 1504"; }
};

/// A machine whose mounts have a server, a pipe here, that ends when all others wait.
class ServedMachine final : public SnapshotMountSystem {
  public:
    asio::awaitable<ProcessRunner::Result> run(fs::path, std::vector<std::string>,
                                               std::map<std::string, std::string>, std::stop_token) override {
        const auto executor = co_await asio::this_coro::executor;
        asio::post(executor, [this] { server.close(); });
        co_return ProcessRunner::Result{0, ""};
    }
    std::vector<Descriptor> processesWithArguments(const std::vector<std::string>&) const override {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        server = Descriptor(ends[1]);
        std::vector<Descriptor> servers;
        servers.emplace_back(ends[0]);
        return servers;
    }
    mutable Descriptor server;
};

asio::awaitable<bool> hasEndedWithADetach(SquashfsTool& squashfs, const ServedMachine& machine) {
    const bool isDetached = co_await squashfs.detach({"/w/Snapshot.dmg", "/missing/point"}, {});
    EXPECT_TRUE(isDetached);
    co_return !machine.server;
}

} // namespace

TEST(SquashfsTool, packsAFolderWithoutCompressionAndLeavesNothingOut) {
    ScriptedSquashfs tool;
    tool.machine->answer("mksquashfs", ProcessRunner::Result{0, ""});
    EXPECT_TRUE(test::await(tool.squashfs.create("/w/Files", "M", "/w/Snapshot.dmg", {})));
    ASSERT_EQ(tool.machine->calls.size(), 1u);
    const ToolCommand& call = tool.machine->calls[0];
    EXPECT_EQ(call.executable, "/usr/bin/mksquashfs");
    EXPECT_EQ(call.arguments[0], "/w/Files");
    EXPECT_EQ(call.arguments[1], "/w/Snapshot.dmg");
    for (const std::string option :
         {"-noappend", "-no-recovery", "-exit-on-error", "-noI", "-noD", "-noF", "-noX", "-quiet"})
        EXPECT_TRUE(std::ranges::count(call.arguments, option) == 1) << option;
    tool.machine->answer("mksquashfs", ProcessRunner::Result{1, "FATAL ERROR"});
    EXPECT_FALSE(test::await(tool.squashfs.create("/w/Files", "M", "/w/Snapshot.dmg", {})));
}

TEST(SquashfsTool, attachesOnAPrivateFolderNamedByTheVolume) {
    ScriptedSquashfs tool;
    tool.machine->answer("squashfuse", ProcessRunner::Result{0, ""});
    tool.machine->answer("findmnt",
                         ProcessRunner::Result{0, findmntText("/w/Snapshot.dmg", tool.expectedPoint())});
    EXPECT_EQ(tool.attach(), tool.expectedPoint());
    const std::vector<ToolCommand> expected{
        {"/usr/bin/squashfuse",
         {"-o", "ro,fsname=/w/Snapshot.dmg", "/w/Snapshot.dmg", tool.expectedPoint().string()}},
        {"/usr/bin/findmnt", {"--json", "--list", "--output", "SOURCE,TARGET,FSTYPE,FS-OPTIONS"}}};
    EXPECT_EQ(tool.machine->calls, expected);
    EXPECT_EQ(linkStatus(tool.points.path())->st_mode, mode_t(S_IFDIR | 0700));
    EXPECT_EQ(linkStatus(tool.expectedPoint())->st_mode, mode_t(S_IFDIR | 0700));
}

TEST(SquashfsTool, keepsCommasAndBackslashesOfAPathOutOfTheMountOptions) {
    ScriptedSquashfs tool;
    tool.machine->answer("squashfuse", ProcessRunner::Result{1, ""});
    EXPECT_FALSE(tool.attach("/w,allow_other/a\\b/Snapshot.dmg"));
    EXPECT_EQ(tool.machine->calls[0].arguments[1], "ro,fsname=/w\\,allow_other/a\\\\b/Snapshot.dmg");
    EXPECT_EQ(tool.machine->calls[0].arguments[2], "/w,allow_other/a\\b/Snapshot.dmg");
}

TEST(SquashfsTool, removesTheMountPointOfAFailedAttach) {
    ScriptedSquashfs tool;
    tool.machine->answer("squashfuse", ProcessRunner::Result{1, "no fuse device"});
    EXPECT_FALSE(tool.attach());
    EXPECT_FALSE(fs::exists(tool.expectedPoint()));
    tool.machine->loseTools();
    EXPECT_THROW(tool.attach(), std::system_error);
    EXPECT_FALSE(fs::exists(tool.expectedPoint()));
}

TEST(SquashfsTool, believesTheListOfMountsAndNotTheStatus) {
    ScriptedSquashfs tool;
    tool.machine->answer("squashfuse", ProcessRunner::Result{0, ""});
    tool.machine->answer("findmnt", ProcessRunner::Result{0, R"({"filesystems":[]})"});
    EXPECT_FALSE(tool.attach());
}

TEST(SquashfsTool, waitsForNobodyWhoMakesAMountPoint) {
    ScriptedSquashfs tool;
    tool.points.prepare();
    const RepositoryLock lock(tool.points.lockFile(), "");
    EXPECT_EQ(test::thrown<LockBusyError>([&] { tool.attach(); }),
              "Another snapshot mount operation is still finishing. Try again in a moment.");
    EXPECT_FALSE(fs::exists(tool.expectedPoint()));
}

TEST(SquashfsTool, detachesWithoutForceAndRemovesTheMountPoint) {
    ScriptedSquashfs tool;
    tool.points.prepare();
    const fs::path point = tool.points.makeMountPoint("M");
    tool.machine->answerOnce("fusermount3", ProcessRunner::Result{1, "Device or resource busy"});
    tool.machine->answerOnce("fusermount3", ProcessRunner::Result{0, ""});
    EXPECT_FALSE(test::await(tool.squashfs.detach({"/w/Snapshot.dmg", point}, {})));
    EXPECT_TRUE(fs::exists(point));
    EXPECT_TRUE(test::await(tool.squashfs.detach({"/w/Snapshot.dmg", point}, {})));
    EXPECT_FALSE(fs::exists(point));
    const ToolCommand command{"/usr/bin/fusermount3", {"-u", point.string()}};
    EXPECT_EQ(tool.machine->calls, (std::vector{command, command}));
}

TEST(SquashfsTool, leavesAMountPointThatItDidNotMake) {
    ScriptedSquashfs tool;
    tool.points.prepare();
    const fs::path own = tool.scratch / "my mount";
    fs::create_directory(own);
    tool.machine->answer("fusermount3", ProcessRunner::Result{0, ""});
    EXPECT_TRUE(test::await(tool.squashfs.detach({"/w/Snapshot.dmg", own}, {})));
    EXPECT_TRUE(fs::exists(own));
}

TEST(SquashfsTool, asksForOpenFilesWithoutWarnings) {
    const ScriptedSquashfs tool;
    EXPECT_EQ(tool.squashfs.openFilesQuery("/w"), (ToolCommand{"/usr/bin/lsof", {"-w", "-Fn", "+D", "/w"}}));
}

TEST(SquashfsTool, findsTheFuseMountsInTheListOfMounts) {
    const std::vector<Attachment> expected{{"gvfsd-fuse", "/run/user/1000/gvfs"},
                                           {"portal", "/run/user/1000/doc"},
                                           {"/home/rené/.local/share/Marrowbox/MountedSnapshots/MountWork/"
                                            "0A0C7F5B-6A57-4C3B-9A30-3D2A0F5E9A11/Snapshot.dmg",
                                            "/run/user/1000/marrowbox/Marrowbox Papers 11-21 1504"},
                                           {"/home/rené/a \"quoted\"\nname, and a \\.dmg", "/mnt/x"}};
    EXPECT_EQ(SquashfsTool::inventory(recordedOutput("findmnt-desktop.json"), 1000), expected);
}

TEST(SquashfsTool, believesNoMountOfAnotherUser) {
    const std::string text = recordedOutput("findmnt-of-two-users.json");
    const fs::path image = "/home/anna/Snapshot.dmg";
    EXPECT_EQ(SquashfsTool::inventory(text, 1000),
              (std::vector<Attachment>{{image, "/run/user/1000/marrowbox/Papers"},
                                       {"/home/anna/other.dmg", "/mnt/of nobody known"}}));
    EXPECT_EQ(SquashfsTool::inventory(text, 1001),
              (std::vector<Attachment>{{image, "/home/mallory/mine"},
                                       {image, "/home/mallory/too"},
                                       {"/home/anna/other.dmg", "/mnt/of nobody known"}}));
}

TEST(SquashfsTool, handsOutNoFolderOnWhichAnotherUserMountedTheImagesName) {
    ScriptedSquashfs tool;
    tool.machine->answer("squashfuse", ProcessRunner::Result{1, ""});
    const std::string theirs = R"({"filesystems":[{"source":"/w/Snapshot.dmg","target":"/home/mallory/mine",)"
                               R"("fstype":"fuse","fs-options":"rw,user_id=)" +
                               std::to_string(::getuid() + 1) + R"(,group_id=0"}]})";
    tool.machine->answer("findmnt", ProcessRunner::Result{0, theirs});
    EXPECT_FALSE(tool.attach());
    tool.machine->answer("squashfuse", ProcessRunner::Result{0, ""});
    EXPECT_FALSE(tool.attach());
    EXPECT_TRUE(test::await(tool.squashfs.attached({})).empty());
}

TEST(SquashfsTool, acceptsPathsThatAreNotUTF8) {
    const auto mounts = SquashfsTool::inventory(findmntText("/w/\xe9.dmg", "/mnt/\xff"), 1000);
    EXPECT_EQ(mounts, (std::vector<Attachment>{{"/w/\xe9.dmg", "/mnt/\xff"}}));
}

TEST(SquashfsTool, failsTheWholeInventoryForOneMountThatIsNotComplete) {
    for (const std::string name :
         {"findmnt-fuse-without-source.json", "findmnt-fuse-without-target.json", "findmnt-empty-target.json",
          "findmnt-without-type.json", "findmnt-line-of-text.json"})
        EXPECT_EQ(test::thrown<BackupError>([&] { SquashfsTool::inventory(recordedOutput(name), 1000); }),
                  "The system returned an incomplete disk-image inventory.")
            << name;
}

TEST(SquashfsTool, failsAnInventoryOfAnotherShape) {
    for (const std::string name :
         {"findmnt-array.json", "findmnt-without-list.json", "findmnt-list-as-object.json",
          "findmnt-truncated.json", "findmnt-with-warning-behind.json"})
        EXPECT_EQ(test::thrown<BackupError>([&] { SquashfsTool::inventory(recordedOutput(name), 1000); }),
                  "The system returned ambiguous disk-image state.")
            << name;
}

TEST(SquashfsTool, saysThatTheInventoryCouldNotBeAskedFor) {
    ScriptedSquashfs tool;
    tool.machine->answer("findmnt", ProcessRunner::Result{1, recordedOutput("findmnt-desktop.json")});
    EXPECT_EQ(test::thrown<BackupError>([&] { test::await(tool.squashfs.attached({})); }),
              "The system’s disk-image state could not be inspected; temporary files were kept.");
}

TEST(SquashfsTool, endsADetachNoSoonerThanTheServerOfTheMount) {
    const auto machine = std::make_shared<ServedMachine>();
    SquashfsTool squashfs(machine, MountPointFolder("/missing", ::getuid()));
    EXPECT_TRUE(test::await(hasEndedWithADetach(squashfs, *machine)));
}

} // namespace marrowbox
