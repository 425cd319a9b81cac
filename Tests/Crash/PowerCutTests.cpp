// The power is cut while a job is at work, in several ways, and the next user finds everything whole. With
// MARROWBOX_EVERY_MOMENT in the environment it is cut after each change; otherwise some are left out where
// there are many.
#include "PowerCutScene.h"
#include "Support/ScratchFolder.h"
#include "Support/Spread.h"

#include <climits>
#include <csignal>
#include <gtest/gtest.h>
#include <iostream>
#include <sys/wait.h>

namespace marrowbox::test {

class PowerCuts : public testing::TestWithParam<PowerCutScene> {
  protected:
    void SetUp() override {
        if (const auto reason = reasonForNoWatching())
            GTEST_SKIP() << *reason;
        fs::create_directory(destination);
        GetParam().prepare(destination);
    }

    /// Does a step on the destination while its changes are recorded.
    void record(const PowerCutStep& step, StorageRecording& recording) {
        bool isDying = false;
        WatchedProgram program({MARROWBOX_CRASH_RUN, destination, step.job});
        const int status = program.run([&](const FileCall& call) {
            if (isDying && call.wasHeld) // nobody is in the middle of a call
                return Answer::kill();
            if (step.dies && !isDying && !call.wasHeld && step.dies(call)) {
                isDying = true;
                return Answer::whenQuiet();
            }
            return recording.note(call);
        });
        EXPECT_EQ(isDying, step.dies != nullptr);
        EXPECT_EQ(status, isDying ? SIGKILL : 0) << program.words();
        recording.endOfProgram();
    }

    const ScratchFolder scratch{fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()};
    const fs::path destination = scratch / "Disk";
};

TEST_P(PowerCuts, leaveWhatServesTheNextUser) {
    StorageRecording recording(destination);
    for (const PowerCutStep& step : GetParam().steps)
        record(step, recording);
    PowerCutMoments moments = GetParam().moments;
    if (triesEveryMoment())
        moments.atMost = INT_MAX;
    const PowerCutCount count = cutPowerEverywhere(recording, moments, [&](const LeftByPowerCut& left) {
        SCOPED_TRACE("cut " + left.words);
        // In the same place, since a registry of mounts says where it stands.
        fs::remove_all(destination);
        fs::create_directory(destination);
        writeTree(left.tree, destination);
        EXPECT_NO_THROW(GetParam().expectWhole(destination, left.programsEnded));
        return !HasFailure();
    });
    RecordProperty("cuts", static_cast<int>(count.cuts));
    std::cout << GetParam().name << ": " << count.cuts << " power cuts in " << count.changes << " changes, "
              << count.states << " states\n";
}

INSTANTIATE_TEST_SUITE_P(, PowerCuts, testing::ValuesIn(powerCutScenes()),
                         [](const auto& info) { return info.param.name; });

} // namespace marrowbox::test
