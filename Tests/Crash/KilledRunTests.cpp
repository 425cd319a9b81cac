#include "DisturbedRunTest.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace marrowbox::test {

class KilledRun : public DisturbedRunTest {};

TEST_P(KilledRun, leavesAWholeHistoryWhereverItIsKilled) {
    const Destination before = GetParam().before();
    const int calls = countCalls(before, GetParam().generation, everyCall);
    int killed = 0;
    const std::vector<int> points = spread(calls, 120);
    for (const int number : points) {
        const Destination destination(before);
        const DisturbedEnd end =
            runDisturbed(destination, GetParam().generation, number, Answer::kill(), everyCall);
        SCOPED_TRACE("killed before call " + std::to_string(number) + ": " + end.text());
        // Threads share the work differently each time, so that the last calls may not be reached.
        if (end.wasReached()) {
            ++killed;
            EXPECT_TRUE(WIFSIGNALED(end.status) && WTERMSIG(end.status) == SIGKILL);
        }
        expectUnharmed(destination, GetParam());
        if (HasFailure())
            break;
    }
    EXPECT_GE(killed, static_cast<int>(points.size()) * 9 / 10);
    report("points at which a run was killed", killed, calls);
}

INSTANTIATE_TEST_SUITE_P(, KilledRun, testing::ValuesIn(scenes()), sceneName);

} // namespace marrowbox::test
