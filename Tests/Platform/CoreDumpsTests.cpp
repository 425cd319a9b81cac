#include "Platform/CoreDumps.h"

#include "Platform/ChildProcess.h"
#include "Platform/Files.h"
#include "Support/Coroutine.h"
#include "Support/ScratchFolder.h"

#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

namespace marrowbox {

namespace {

/// What the kernel takes for "none to a file, and none to a program": by a limit of 0 a program would get
/// all.
constexpr rlim_t noDumpAtAll = 1;

} // namespace

TEST(CoreDumps, areForbiddenToTheProcessAndToWhatItStarts) {
    forbidCoreDumps();
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_CORE, &limit), 0);
    EXPECT_EQ(limit.rlim_cur, noDumpAtAll);
    EXPECT_EQ(limit.rlim_max, noDumpAtAll);

    const test::ScratchFolder folder;
    const Descriptor output = openFile(folder / "output", O_WRONLY | O_CREAT | O_EXCL, 0600);
    ChildProcess child({"/bin/grep", {"Max core file size", "/proc/self/limits"}, {}}, output);
    test::await(child.ended());
    child.reap();
    EXPECT_THAT(readFile(folder / "output"), testing::ContainsRegex("size +1 +1 +bytes"));
}

TEST(CoreDumps, areNotMadeOfAProcessThatCrashes) {
    const test::ScratchFolder folder;
    const pid_t child = ::fork();
    if (child == 0) {
        forbidCoreDumps();
        if (::chdir(folder.path().c_str()) == 0)
            ::signal(SIGABRT, SIG_DFL);
        ::kill(::getpid(), SIGABRT);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT);
    EXPECT_FALSE(WCOREDUMP(status));
    EXPECT_EQ(directoryNames(folder.path()), std::vector<std::string>());
}

} // namespace marrowbox
