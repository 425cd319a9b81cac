// Every job but the run is stopped before each of its calls that change the disk, and has each of them fail
// in every way that disks fail.
#include "Disturbance.h"
#include "Job.h"
#include "Support/Spread.h"
#include "Support/WatchedProgram.h"

#include <gtest/gtest.h>
#include <iostream>
#include <sys/wait.h>

namespace marrowbox::test {

namespace {

struct JobEnd {
    int status = 0;
    int calls = 0;
    std::string disturbed;
    std::string words;
};

} // namespace

class DisturbedJob : public testing::TestWithParam<std::tuple<Job, Disturbance>> {
  protected:
    void SetUp() override {
        if (const auto reason = reasonForNoWatching())
            GTEST_SKIP() << *reason;
        fs::create_directory(before());
        job().prepare(before());
    }

    const Job& job() const { return std::get<0>(GetParam()); }
    const Disturbance& disturbance() const { return std::get<1>(GetParam()); }
    bool mayRefuse() const {
        return !disturbance().isBorne || (disturbance().isSignal && !job().repeatsInterrupted);
    }
    fs::path before() const { return scratch_ / "Before"; }

    bool counts(const FileCall& call, const fs::path& destination) const {
        return call.isWithin(destination) && disturbance().suits(call);
    }

    /// Does the job on a copy of what it finds and disturbs the call of this number, or none.
    JobEnd work(const fs::path& destination, int number) const {
        fs::copy(before(), destination, fs::copy_options::recursive);
        JobEnd end;
        WatchedProgram program({MARROWBOX_CRASH_RUN, destination, job().name});
        end.status = program.run([&](const FileCall& call) {
            if (!counts(call, destination) || ++end.calls != number)
                return Answer::proceed();
            end.disturbed = std::string(call.name) + " " + call.path.string();
            return disturbance().answer;
        });
        end.words = program.words();
        return end;
    }

    void expectHonestEnd(const JobEnd& end, const fs::path& destination) const {
        if (WIFSIGNALED(end.status))
            return;
        const int status = WEXITSTATUS(end.status);
        EXPECT_TRUE(status == 0 || (status == refused && mayRefuse()));
        EXPECT_EQ(end.words.empty(), status == 0);
        if (status == 0)
            job().expectDone(destination);
    }

    const ScratchFolder scratch_{fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()};
};

TEST_P(DisturbedJob, isHonestAboutItsEndAndLosesNothing) {
    const int calls = work(scratch_ / "0", 0).calls;
    ASSERT_GT(calls, 0);
    int tried = 0;
    for (const int number : spread(calls, 32)) {
        const fs::path destination = scratch_ / std::to_string(number);
        const JobEnd end = work(destination, number);
        SCOPED_TRACE("disturbed call " + std::to_string(number) + ": " + end.disturbed + ", status " +
                     std::to_string(end.status) + ", " + end.words);
        tried += end.disturbed.empty() ? 0 : 1;
        expectHonestEnd(end, destination);
        job().expectUnharmed(destination);
        if (HasFailure())
            break;
        fs::remove_all(destination);
    }
    RecordProperty("tried", tried);
    std::cout << tried << " calls disturbed, of " << calls << "\n";
}

INSTANTIATE_TEST_SUITE_P(, DisturbedJob,
                         testing::Combine(testing::ValuesIn(jobs()), testing::ValuesIn(disturbances())),
                         [](const auto& info) {
                             return std::get<0>(info.param).name + std::get<1>(info.param).name;
                         });

} // namespace marrowbox::test
