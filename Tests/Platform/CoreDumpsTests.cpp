#include "Platform/CoreDumps.h"

#include "Platform/ChildProcess.h"
#include "Platform/Files.h"
#include "Support/Coroutine.h"
#include "Support/ScratchFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace marrowbox {

TEST(CoreDumps, areForbiddenToTheProcessAndToWhatItStarts) {
    forbidCoreDumps();
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_CORE, &limit), 0);
    EXPECT_EQ(limit.rlim_cur, 0U);
    EXPECT_EQ(limit.rlim_max, 0U);

    const test::ScratchFolder folder;
    const Descriptor output = openFile(folder / "output", O_WRONLY | O_CREAT | O_EXCL, 0600);
    ChildProcess child({"/bin/sh", {"-c", "ulimit -S -c; ulimit -H -c"}, {}}, output);
    test::await(child.ended());
    child.reap();
    EXPECT_EQ(readFile(folder / "output"), "0\n0\n");
}

} // namespace marrowbox
