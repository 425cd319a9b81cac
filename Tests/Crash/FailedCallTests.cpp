#include "Disturbance.h"
#include "DisturbedRunTest.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace marrowbox::test {

namespace {

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, name) != names.end();
}

/// Calls for which a disk needs room.
bool needsRoom(const FileCall& call) {
    return isOneOf(call.name, {"open", "openat", "write", "pwrite64", "writev", "mkdir", "mkdirat", "rename",
                               "renameat", "renameat2", "link", "linkat", "fsync", "fdatasync", "fallocate"});
}

/// Calls that a signal can interrupt.
bool mayBeInterrupted(const FileCall& call) {
    return isOneOf(call.name, {"open", "openat", "write", "pwrite64", "writev", "fsync", "fdatasync"});
}

bool isWrite(const FileCall& call) {
    return call.name == "write";
}

/// Calls whose failure changes nothing about the run: they remove its work folder, or only hint.
bool isIgnored(const FileCall& call) {
    return isOneOf(call.name, {"unlink", "unlinkat", "rmdir", "sync_file_range"});
}

/// The last call of a run, which has published by then. Closing the file lets go of its lock as well.
bool isUnlocking(const FileCall& call) {
    return call.name == "unlock";
}

} // namespace

class FailedCall : public DisturbedRunTest {
  protected:
    /// Fails calls of one kind, one a run, and expects that each run either says so or needed no such call.
    void expectHonestRuns(int error, const Condition& counts) {
        const Destination before = GetParam().before();
        const int calls = countCalls(before, GetParam().generation, counts);
        int tried = 0;
        for (const int number : spread(calls, 32)) {
            const Destination destination(before);
            const DisturbedEnd end =
                runDisturbed(destination, GetParam().generation, number, Answer::fail(error), counts);
            SCOPED_TRACE("failed call " + std::to_string(number) + ": " + end.text());
            tried += end.wasReached() ? 1 : 0;
            ASSERT_TRUE(WIFEXITED(end.status));
            const bool isBorne = !end.wasReached() || isIgnored(end.disturbed) || isUnlocking(end.disturbed);
            EXPECT_EQ(WEXITSTATUS(end.status), isBorne ? 0 : refused);
            EXPECT_EQ(end.words.empty(), isBorne);
            if (!isIgnored(end.disturbed))
                EXPECT_EQ(destination.workFolders(), before.workFolders());
            expectUnharmed(destination, GetParam());
            if (HasFailure())
                break;
        }
        report("calls that failed", tried, calls);
    }

    /// Disturbs calls in a way that a run has to bear.
    void expectSuccess(Answer answer, const Condition& counts) {
        const Destination before = GetParam().before();
        const int calls = countCalls(before, GetParam().generation, counts);
        int tried = 0;
        for (const int number : spread(calls, 20)) {
            const Destination destination(before);
            const DisturbedEnd end = runDisturbed(destination, GetParam().generation, number, answer, counts);
            SCOPED_TRACE("disturbed call " + std::to_string(number) + ": " + end.text());
            tried += end.wasReached() ? 1 : 0;
            EXPECT_EQ(end.status, 0);
            std::vector<int> history = GetParam().historyBefore();
            history.push_back(GetParam().generation);
            destination.expectHistory(history);
            if (HasFailure())
                break;
        }
        report("calls that were disturbed", tried, calls);
    }
};

TEST_P(FailedCall, endsTheRunAndLeavesTheHistoryWholeOnAFullDisk) {
    expectHonestRuns(ENOSPC, needsRoom);
}

TEST_P(FailedCall, endsTheRunAndLeavesTheHistoryWholeOnABrokenDisk) {
    expectHonestRuns(EIO, everyCall);
}

TEST_P(FailedCall, endsTheRunAndLeavesTheHistoryWholeOnADiskThatTurnsReadOnly) {
    expectHonestRuns(EROFS, everyCall);
}

TEST_P(FailedCall, isRepeatedWhenASignalInterruptedIt) {
    expectSuccess(Answer::fail(EINTR), mayBeInterrupted);
}

TEST_P(FailedCall, goesOnWithTheRestAfterAShortWrite) {
    expectSuccess(Answer::writeHalf(), isWrite);
}

INSTANTIATE_TEST_SUITE_P(, FailedCall, testing::ValuesIn(scenes()), sceneName);

} // namespace marrowbox::test
