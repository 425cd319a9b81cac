// What a program that is killed in the middle of a mount leaves, and what the next one makes of it.
#include "KillSwitch.h"
#include "LinuxWorld.h"
#include "Reconciliations.h"
#include "Support/TreeState.h"

#include "Platform/Files.h"
#include "SnapshotMount/ProcessEnd.h"

#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace marrowbox {

namespace {

/// Runs one tool through a shell script, in which "$@" is the tool's own command.
class ScriptedTool final : public SnapshotMountSystem {
  public:
    ScriptedTool(std::shared_ptr<SnapshotMountSystem> machine, std::string tool, std::string script)
        : machine_(std::move(machine)), tool_(std::move(tool)), script_(std::move(script)) {}

    asio::awaitable<ProcessRunner::Result> run(fs::path executable, std::vector<std::string> arguments,
                                               std::map<std::string, std::string> environment,
                                               std::stop_token stop) override {
        if (executable.filename() != tool_)
            return machine_->run(executable, arguments, environment, stop);
        std::vector<std::string> scripted{"-c", script_, "sh", executable};
        scripted.insert(scripted.end(), arguments.begin(), arguments.end());
        return machine_->run("/bin/sh", scripted, environment, stop);
    }

  private:
    std::shared_ptr<SnapshotMountSystem> machine_;
    std::string tool_;
    std::string script_;
};

class KilledMount : public ::testing::Test {
  protected:
    void SetUp() override {
        if (const auto reason = test::reasonForNoVolumes())
            GTEST_SKIP() << *reason;
        world.emplace();
    }

    /// Mounts in a child process. True when the child was killed, false when the mount ended.
    bool mountInChild(const std::shared_ptr<SnapshotMountSystem>& system, const test::KillRule& rule) {
        const pid_t child = ::fork();
        if (child == 0) {
            test::killBefore(rule);
            asio::io_context context;
            const auto program = world->start(context.get_executor(), system);
            asio::co_spawn(
                context,
                program->mount(world->backup.snapshot, world->backup.unit, world->backup.destination, {}),
                [](std::exception_ptr failure, auto) { ::_exit(failure ? 1 : 0); });
            context.run();
            ::_exit(2);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        if (WIFSIGNALED(status))
            EXPECT_EQ(WTERMSIG(status), SIGKILL);
        if (WIFEXITED(status))
            EXPECT_EQ(WEXITSTATUS(status), 0) << "the mount failed in the child";
        return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    }
    void killBefore(const test::KillRule& rule) { ASSERT_TRUE(mountInChild(world->machine, rule)); }
    void killWhile(const std::string& tool, const std::string& script) {
        ASSERT_TRUE(mountInChild(std::make_shared<ScriptedTool>(world->machine, tool, script), {}));
    }

    /// What the next run of the program makes of it.
    SnapshotMount::Reconciliation reconcile() {
        mounts = world->start();
        return test::await(mounts->reconcile({}));
    }
    SnapshotMount::Reconciliation unchangingReconcile() {
        const std::string before = test::treeState(world->directory);
        auto reconciliation = reconcile();
        EXPECT_EQ(test::treeState(world->directory), before);
        return reconciliation;
    }
    void expectAdoptedAndEjected() {
        const auto reconciliation = unchangingReconcile();
        EXPECT_EQ(reconciliation.issue, std::nullopt);
        ASSERT_EQ(reconciliation.mounted.size(), 1u);
        world->backup.expectWholeSnapshot(reconciliation.mounted[0].volume);
        test::await(mounts->unmount(reconciliation.mounted[0], {}));
        EXPECT_TRUE(world->hasNoWork());
    }
    MountEntry entry() const {
        const auto entries = world->folder().load().entries;
        EXPECT_EQ(entries.size(), 1u);
        return entries.at(0);
    }
    fs::path workFolder() const { return entry().workingDirectory.path(); }

    std::optional<test::LinuxWorld> world;
    std::unique_ptr<SnapshotMount> mounts;
};

test::KillRule onceAt(std::string call, std::string end) {
    return
        [=](std::string_view made, const std::string& path) { return made == call && path.ends_with(end); };
}

} // namespace

TEST_F(KilledMount, beforeItIsRecordedLeavesNothing) {
    killBefore(onceAt("rename", "mounts.json"));
    EXPECT_TRUE(world->hasNoWork());
    EXPECT_EQ(reconcile(), test::nothingToTell);
    EXPECT_EQ(unchangingReconcile(), test::nothingToTell);
    EXPECT_THAT(directoryNames(world->directory),
                ::testing::UnorderedElementsAre("MountWork", "mounts.lock"));
}

TEST_F(KilledMount, beforeItsWorkFolderIsMadeLosesItsEntry) {
    killBefore([this](std::string_view call, const std::string& path) {
        return call == "mkdir" && fs::path(path).parent_path() == world->workRoot();
    });
    EXPECT_FALSE(fs::exists(workFolder()));
    EXPECT_EQ(reconcile(), test::nothingToTell);
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(KilledMount, beforeItsMarkerStandsIsRetainedOnEveryPass) {
    killBefore(onceAt("rename", ".marrowbox-mount.json"));
    EXPECT_TRUE(fs::exists(workFolder()));
    const SnapshotMount::Reconciliation retained{.issue = test::invalidEntry, .isAuthoritative = true};
    EXPECT_EQ(unchangingReconcile(), retained);
    EXPECT_EQ(unchangingReconcile(), retained);
}

TEST_F(KilledMount, inTheMiddleOfTheRestoreIsDeleted) {
    killBefore([](std::string_view, const std::string& path) {
        return path.find("/Files/nested/deep/") != std::string::npos;
    });
    // Several threads restore, so no other file is sure to stand yet.
    EXPECT_TRUE(fs::exists(workFolder() / "Files"));
    EXPECT_FALSE(fs::exists(entry().image.path()));
    EXPECT_EQ(entry().phase, MountPhase::preparing);
    EXPECT_EQ(reconcile(), test::nothingToTell);
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(KilledMount, whoseImageIsStillMadeIsDeletedWhenTheToolHasEnded) {
    // The tool kills the program, and goes on when the test opens the gate.
    const fs::path gate = world->runtime / "gate";
    ASSERT_EQ(::mkfifo(gate.c_str(), 0600), 0);
    killWhile("mksquashfs", "kill -KILL $PPID; read line < '" + gate.string() + "'; exec \"$@\"");
    const fs::path image = entry().image.path();
    EXPECT_EQ(unchangingReconcile(), (SnapshotMount::Reconciliation{
                                         .issue = "Snapshot preparation is still running and was retained.",
                                         .isAuthoritative = true}));
    // Found before it goes on: a process that is just starting another program shows no arguments.
    auto tool = world->machine->processesWithArguments({image});
    ASSERT_EQ(tool.size(), 1u);
    writeAll(openFile(gate, O_WRONLY), "go\n");
    ASSERT_TRUE(test::await(processesEnded(std::move(tool), std::chrono::seconds(60))));
    EXPECT_TRUE(fs::exists(image)) << "the tool outlived the program";
    EXPECT_EQ(reconcile(), test::nothingToTell);
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(KilledMount, whoseImageIsPartialIsDeleted) {
    killWhile("mksquashfs", "printf hsqs > \"$3\"; kill -KILL $PPID");
    EXPECT_TRUE(fs::exists(entry().image.path()));
    world->awaitEndOfProcesses(entry().image.path());
    EXPECT_EQ(reconcile(), test::nothingToTell);
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(KilledMount, beforeItIsAttachedIsDeleted) {
    killWhile("squashfuse", "kill -KILL $PPID");
    EXPECT_TRUE(fs::exists(entry().image.path()));
    world->awaitEndOfProcesses(entry().image.path());
    EXPECT_EQ(reconcile(), test::nothingToTell);
    EXPECT_TRUE(world->hasNoWork());
}

TEST_F(KilledMount, whoseImageComesUpAfterwardsIsAdopted) {
    killWhile("squashfuse", "kill -KILL $PPID; exec \"$@\"");
    world->awaitMount(entry().image.path());
    expectAdoptedAndEjected();
}

TEST_F(KilledMount, afterItWasAttachedIsAdopted) {
    killWhile("squashfuse", "\"$@\"; kill -KILL $PPID");
    EXPECT_EQ(entry().phase, MountPhase::preparing);
    EXPECT_EQ(entry().volume, std::nullopt);
    expectAdoptedAndEjected();
}

TEST_F(KilledMount, beforeItsVolumeIsRecordedIsAdopted) {
    int records = 0;
    killBefore([&](std::string_view call, const std::string& path) {
        return call == "rename" && path.ends_with("mounts.json") && ++records == 2;
    });
    const MountEntry before = entry();
    EXPECT_EQ(before.phase, MountPhase::preparing);
    EXPECT_EQ(reconcile().mounted.size(), 1u); // and the registry that never got its name goes
    EXPECT_EQ(entry(), before);
    expectAdoptedAndEjected();
}

TEST_F(KilledMount, afterItsVolumeWasRecordedIsReportedAsMounted) {
    ASSERT_FALSE(mountInChild(world->machine, {}));
    EXPECT_EQ(entry().phase, MountPhase::attached);
    expectAdoptedAndEjected();
}

TEST_F(KilledMount, atAnyCallIsHealedOrRetainedAsAWhole) {
    // The small registry files are what every call of a mount besides the copies is about.
    int retained = 0;
    int killed = 0;
    while (true) {
        mounts.reset();
        world.emplace();
        const bool wasKilled =
            mountInChild(world->machine, [&, count = 0](std::string_view, const std::string& path) mutable {
                return path.starts_with(world->directory.native()) && count++ == killed;
            });
        const auto reconciliation = reconcile();
        EXPECT_TRUE(reconciliation.isAuthoritative) << killed;
        if (reconciliation.issue) {
            EXPECT_EQ(reconciliation.issue, test::invalidEntry) << killed;
            EXPECT_FALSE(fs::exists(workFolder() / ".marrowbox-mount.json")) << killed;
            ++retained;
        } else {
            for (const auto& mounted : reconciliation.mounted)
                test::await(mounts->unmount(mounted, {}));
            EXPECT_TRUE(world->hasNoWork()) << killed;
            const auto again = world->mount(*mounts);
            test::await(mounts->unmount(again, {}));
        }
        if (!wasKilled)
            break;
        ++killed;
    }
    EXPECT_GT(killed, 10);
    EXPECT_GT(retained, 0);
    EXPECT_LT(retained, 6) << "only a work folder without its marker is kept";
}

} // namespace marrowbox
