#include "Platform/StandardStreams.h"

#include "Platform/Files.h"

#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace marrowbox {

namespace {

bool isNullDevice(int stream) {
    struct stat status{};
    struct stat null{};
    return ::fstat(stream, &status) == 0 && ::stat("/dev/null", &null) == 0 &&
           status.st_rdev == null.st_rdev && ::fcntl(stream, F_GETFD) == 0;
}

/// Whether something holds in a process that was started without these streams.
bool holdsWithout(std::initializer_list<int> streams, const std::function<bool()>& condition) {
    const pid_t child = ::fork();
    if (child == 0) {
        for (const int stream : streams)
            ::close(stream);
        occupyStandardStreams();
        ::_exit(condition() ? 0 : 1);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && status == 0;
}

} // namespace

TEST(StandardStreams, thatAreMissingLeadToTheNullDevice) {
    EXPECT_TRUE(
        holdsWithout({0, 1, 2}, [] { return isNullDevice(0) && isNullDevice(1) && isNullDevice(2); }));
    EXPECT_TRUE(holdsWithout({1}, [] { return isNullDevice(1); }));
    EXPECT_TRUE(holdsWithout({2}, [] { return isNullDevice(2); }));
}

TEST(StandardStreams, areNeverTheNumberOfAFile) {
    EXPECT_TRUE(holdsWithout({0, 1, 2}, [] { return openFile("/", O_RDONLY).number() > 2; }));
}

TEST(StandardStreams, thatAreThereStayAsTheyAre) {
    struct stat before{};
    ASSERT_EQ(::fstat(1, &before), 0);
    EXPECT_TRUE(holdsWithout({0, 2}, [&] {
        struct stat after{};
        return ::fstat(1, &after) == 0 && after.st_ino == before.st_ino && after.st_dev == before.st_dev &&
               openFile("/", O_RDONLY).number() > 2;
    }));
}

} // namespace marrowbox
