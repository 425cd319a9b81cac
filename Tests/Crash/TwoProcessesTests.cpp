#include "DisturbedRunTest.h"

#include "Repository/LockBusyError.h"
#include "Support/Thrown.h"

#include <gtest/gtest.h>

namespace marrowbox::test {

class TwoProcesses : public DisturbedRunTest {};

TEST_P(TwoProcesses, doNotWorkOnOneRepositoryAtATime) {
    const Destination destination(GetParam().generation - 1);
    std::string refusal;
    WatchedProgram program({MARROWBOX_CRASH_RUN, destination.path(), std::to_string(GetParam().generation)});
    const int status = program.run([&](const FileCall& call) {
        // The first download finds the other process in the middle of its run.
        if (refusal.empty() && call.isWithin(destination.repository().root() / "Staging") &&
            call.name == "write")
            refusal = thrown<LockBusyError>([&] { destination.backUp(GetParam().generation); });
        return Answer::proceed();
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(refusal, "This backup is already in use. Wait for the other job to finish.");
    std::vector<int> history = GetParam().historyBefore();
    history.push_back(GetParam().generation);
    destination.expectHistory(history);
    EXPECT_TRUE(destination.workFolders().empty());
}

INSTANTIATE_TEST_SUITE_P(, TwoProcesses, testing::ValuesIn(scenes()), sceneName);

} // namespace marrowbox::test
