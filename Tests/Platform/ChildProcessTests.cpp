#include "Platform/ChildProcess.h"

#include "Platform/Files.h"
#include "Support/Children.h"
#include "Support/Coroutine.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace marrowbox {

namespace {

using test::NamedPipe;
using test::ScratchFolder;

Descriptor nullOutput() {
    return openFile("/dev/null", O_WRONLY);
}

TEST(ChildProcess, hasNoStatusUntilItHasEnded) {
    const ScratchFolder folder;
    const NamedPipe pipe(folder / "pipe");
    ChildProcess child({"/bin/cat", {pipe.path().string()}, {}}, nullOutput());
    EXPECT_EQ(child.reap(), std::nullopt);
    pipe.write("end");
    test::await(child.ended());
    EXPECT_EQ(child.reap(), 0);
    EXPECT_TRUE(test::hasNoChild());
}

TEST(ChildProcess, isEndedAndReapedWithTheObject) {
    const ScratchFolder folder;
    const NamedPipe pipe(folder / "pipe");
    const Descriptor held = pipe.hold();
    {
        const ChildProcess child({"/bin/cat", {pipe.path().string()}, {}}, nullOutput());
        EXPECT_FALSE(test::hasNoChild());
    }
    EXPECT_TRUE(test::hasNoChild());
}

TEST(ChildProcess, leavesNoChildWhenNoDescriptorIsLeftToWatchIt) {
    const ScratchFolder folder;
    const NamedPipe pipe(folder / "pipe");
    const Descriptor held = pipe.hold();
    const Descriptor output = nullOutput();
    // A first failure, since a sanitizer opens descriptors when it meets a type of error for the first time.
    EXPECT_THROW(ChildProcess({folder / "missing", {}, {}}, output), std::system_error);
    rlimit previous{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &previous), 0);
    rlimit used = previous;
    used.rlim_cur = static_cast<rlim_t>(output.number()) + 1;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &used), 0);
    std::exception_ptr failure;
    try {
        const ChildProcess child({"/bin/cat", {pipe.path().string()}, {}}, output);
    } catch (...) {
        failure = std::current_exception();
    }
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &previous), 0);
    ASSERT_TRUE(failure);
    EXPECT_EQ(test::thrown<std::system_error>([&] { std::rethrow_exception(failure); }),
              "pidfd_open: Too many open files");
    EXPECT_TRUE(test::hasNoChild());
}

TEST(ChildProcess, writesWhereItIsToldInAProgramWithoutStandardStreams) {
    const ScratchFolder folder;
    const auto path = folder / "output";
    // The output takes the number of the closed standard input.
    const Descriptor savedInput(::fcntl(0, F_DUPFD_CLOEXEC, 100));
    ::close(0);
    Descriptor output = openFile(path, O_WRONLY | O_CREAT);
    const int number = output.number();
    ChildProcess child({"/bin/sh", {"-c", "readlink /proc/$$/fd/0; echo said >&2"}, {}}, output);
    test::await(child.ended());
    const auto status = child.reap();
    output.close();
    ::dup2(savedInput.number(), 0);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(readFile(path), "/dev/null\nsaid\n");
}

} // namespace

} // namespace marrowbox
