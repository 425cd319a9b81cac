// What a program that is killed in the middle of an eject, or of a start that finds mounts, leaves of real
// mounts. Each call and each failure is tried on mounts that stand in a file; here the tools are real.
#include "BareWorkFolders.h"
#include "LinuxWorld.h"
#include "Reconciliations.h"
#include "Support/Spread.h"
#include "Support/WatchedProgram.h"

#include "Platform/Files.h"

#include <csignal>
#include <gtest/gtest.h>
#include <iostream>
#include <set>
#include <sys/wait.h>

namespace marrowbox {

namespace {

class KilledEject : public ::testing::Test {
  protected:
    void SetUp() override {
        if (const auto reason = test::reasonForNoVolumes())
            GTEST_SKIP() << *reason;
        if (::geteuid() != 0)
            GTEST_SKIP() << "a watched program may not use programs with more rights than its own";
        if (const auto reason = test::reasonForNoWatching())
            GTEST_SKIP() << *reason;
        world.emplace();
        mounts = world->start();
    }

    /// Does the job in a program of its own and kills it before the call of this number, if it comes to so
    /// many.
    void kill(const std::string& job, int number) {
        test::WatchedProgram program({MARROWBOX_CRASH_MOUNT, world->directory, world->runtime, "", job});
        calls = 0;
        test::BareWorkFolders bare(world->workRoot());
        const int status = program.run([&](const test::FileCall& call) {
            const bool counts = call.isWithin(world->directory) || call.isWithin(world->runtime);
            if (counts && ++calls == number)
                return test::Answer::kill();
            if (counts && !bare.paths().empty())
                callsWithBareWork.insert(calls);
            bare.note(call);
            return test::Answer::proceed();
        });
        const bool wasKilled = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        EXPECT_TRUE(wasKilled ? number == calls : status == 0) << program.words();
        left = bare.paths();
    }

    /// What the next start makes of it: the mount is there with every byte, or nothing is left of it but a
    /// work folder that lost its marker, until a person takes it away.
    void expectMountedForgottenOrKept() {
        const auto found = test::await(mounts->reconcile({}));
        EXPECT_TRUE(found.isAuthoritative);
        EXPECT_EQ(found.issue, left.empty() ? std::nullopt : std::optional(test::invalidEntry));
        EXPECT_EQ(world->folder().load().entries.size(), found.mounted.size() + left.size());
        for (const auto& mounted : found.mounted) {
            world->backup.expectWholeSnapshot(mounted.volume);
            test::await(mounts->unmount(mounted, {}));
        }
        for (const fs::path& folder : left)
            EXPECT_TRUE(fs::remove(folder)) << "an empty folder";
        if (!left.empty())
            EXPECT_EQ(test::await(mounts->reconcile({})).issue, std::nullopt);
        EXPECT_TRUE(world->hasNoWork());
    }

    /// So many calls of the job in which to kill it, and all with a work folder that has no marker.
    std::set<int> points(const std::string& job, int atMost) {
        callsWithBareWork.clear();
        kill(job, 0);
        inAll = calls;
        EXPECT_GT(calls, 0);
        std::set<int> numbers = callsWithBareWork;
        EXPECT_FALSE(numbers.empty());
        for (const int number : test::spread(calls, atMost))
            numbers.insert(number);
        return numbers;
    }

    void expectUsable() {
        const auto again = world->mount(*mounts);
        world->backup.expectWholeSnapshot(again.volume);
        test::await(mounts->unmount(again, {}));
        EXPECT_TRUE(world->hasNoWork());
    }

    std::optional<test::LinuxWorld> world;
    std::unique_ptr<SnapshotMount> mounts;
    std::set<fs::path> left; ///< Work folders without a marker.
    std::set<int> callsWithBareWork;
    int calls = 0; ///< Of the last program.
    int inAll = 0; ///< Of one that was not killed.
};

} // namespace

TEST_F(KilledEject, atAnyCallIsMadeUpForByTheNextStart) {
    world->mount(*mounts);
    const std::set<int> tried = points("eject", 8);
    for (const int number : tried) {
        SCOPED_TRACE("killed before call " + std::to_string(number));
        world->mount(*mounts);
        kill("eject", number);
        expectMountedForgottenOrKept();
        if (HasFailure())
            break;
    }
    expectUsable();
    std::cout << tried.size() << " ejects killed, of " << inAll << " calls\n";
}

TEST_F(KilledEject, inTheMiddleOfAReconciliationIsMadeUpForByTheNextOne) {
    world->unmountBehindTheBack(world->mount(*mounts));
    const std::set<int> tried = points("reconcile", 6);
    for (const int number : tried) {
        SCOPED_TRACE("killed before call " + std::to_string(number));
        world->unmountBehindTheBack(world->mount(*mounts));
        kill("reconcile", number);
        expectMountedForgottenOrKept();
        if (HasFailure())
            break;
    }
    expectUsable();
    std::cout << tried.size() << " reconciliations killed, of " << inAll << " calls\n";
}

TEST_F(KilledEject, leavesAMountThatAKilledStartHasFound) {
    const auto mounted = world->mount(*mounts);
    kill("reconcile", 0);
    for (const int number : test::spread(calls, 4)) {
        kill("reconcile", number);
        const auto found = test::await(mounts->reconcile({}));
        EXPECT_EQ(found.issue, std::nullopt);
        EXPECT_EQ(found.mounted, std::vector{mounted});
    }
    world->backup.expectWholeSnapshot(mounted.volume);
    test::await(mounts->unmount(mounted, {}));
    EXPECT_TRUE(world->hasNoWork());
}

} // namespace marrowbox
