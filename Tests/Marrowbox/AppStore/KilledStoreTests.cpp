#include "Models/JSONFile.h"
#include "StoreWorld.h"
#include "Support/Spread.h"
#include "Support/WatchedProgram.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <set>
#include <sys/wait.h>

namespace marrowbox::test {

namespace {

using Decide = std::function<Answer(const FileCall&)>;

/// A data folder with a unit and a year of runs, and the store that works on copies of it as a program of its
/// own. Skipped where the system does not let a process watch another.
class KilledStore : public testing::Test {
  protected:
    void SetUp() override {
        AppConfiguration configuration = oneUnit(world);
        const SyncUnit& unit = configuration.units[0];
        for (int day = 0; day < 365; ++day) {
            configuration.runs.push_back(mailedRun(unit, world.time.now() - 86'400 * (day + 1)));
            configuration.runs.back().emailSent = day > 1;
        }
        world.write(configuration);
        if (const auto reason = reasonForNoWatching())
            GTEST_SKIP() << *reason;
    }

    /// Runs the program on a fresh copy of the folder and answers its calls in the watched folder.
    int run(const Decide& decide) {
        fs::remove_all(data);
        fs::copy(world.data, data, fs::copy_options::recursive);
        WatchedProgram program(
            {"/usr/bin/env", "TMPDIR=" + world.home.string(), MARROWBOX_CRASH_STORE, data, world.disk});
        const int status = program.run(
            [&](const FileCall& call) { return call.isWithin(watched) ? decide(call) : Answer::proceed(); });
        words = program.words();
        return status;
    }
    int countCalls() {
        int calls = 0;
        EXPECT_EQ(run([&](const FileCall&) { return ++calls, Answer::proceed(); }), 0) << words;
        return calls;
    }
    /// Runs it with another answer to its n-th call.
    int runDisturbed(int number, Answer answer) {
        int calls = 0;
        return run([&](const FileCall&) { return ++calls == number ? answer : Answer::proceed(); });
    }

    /// Starts the program again on what was left, and expects that it can be used as ever. Gives the number
    /// of runs that the end of the first one interrupted.
    int expectUsable() {
        const auto left = JSONFile::read<AppConfiguration>(file);
        StoreWorld next;
        next.environment = {{"MARROW_DATA_DIR", data.string()}};
        next.start();
        EXPECT_TRUE(next.store->configurationIsReadable()) << next.error();
        for (const std::string& name : directoryNames(data))
            EXPECT_FALSE(name.starts_with(".Configuration.") || name.starts_with(".GoogleOAuth.")) << name;
        EXPECT_GE(next.configuration().runs.size(), 365U);
        int interrupted = 0;
        for (std::size_t index = 0; index < left.runs.size(); ++index) {
            const RunOutcome outcome = next.configuration().runs[index].outcome;
            if (left.runs[index].outcome == RunOutcome::running)
                EXPECT_EQ(outcome, RunOutcome::interrupted);
            interrupted += outcome == RunOutcome::interrupted ? 1 : 0;
        }
        return interrupted;
    }

    StoreWorld world;
    const fs::path data = world.home / "Copy";
    const fs::path file = data / "Configuration.json";
    fs::path watched = data;
    std::string words;
};

} // namespace

TEST_F(KilledStore, replacesItsConfigurationInOneStepAndNeverWritesInPlace) {
    std::string expected;
    int replacements = 0;
    const int status = run([&](const FileCall& call) {
        if (expected.empty())
            expected = readFile(file);
        EXPECT_EQ(readFile(file), expected) << call.name << ' ' << call.path;
        if (call.target == file) {
            expected = readFile(call.path);
            EXPECT_NO_THROW(decodeJSON<AppConfiguration>(expected));
            ++replacements;
        }
        return Answer::proceed();
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(words, "");
    EXPECT_EQ(readFile(file), expected);
    EXPECT_GE(replacements, 10);
}

TEST_F(KilledStore, leavesAWholeConfigurationAndTellsOfTheInterruptedRun) {
    const int calls = countCalls();
    const std::vector<int> points = spread(calls, 60);
    int interrupted = 0;
    for (const int number : points) {
        const int status = runDisturbed(number, Answer::kill());
        SCOPED_TRACE("killed before call " + std::to_string(number));
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << words;
        interrupted += expectUsable();
        if (HasFailure())
            break;
    }
    EXPECT_GE(interrupted, 1) << "no kill met a run";
    std::cout << points.size() << " points at which the program was killed, of " << calls << " calls; "
              << interrupted << " met a run\n";
}

TEST_F(KilledStore, leavesAWholeConfigurationWhateverCallTheDiskFailsAndHowever) {
    const int calls = countCalls();
    for (const int error : {ENOSPC, EIO, EROFS}) {
        const int atMost = error == ENOSPC ? 40 : 14; // a full disk is what happens most
        for (const int number : spread(calls, atMost)) {
            const int status = runDisturbed(number, Answer::fail(error));
            SCOPED_TRACE("call " + std::to_string(number) + ", " + std::strerror(error) + ": " + words);
            EXPECT_EQ(status, 0);
            expectUsable();
            if (HasFailure())
                return;
        }
    }
}

TEST_F(KilledStore, repeatsACallThatASignalInterrupted) {
    const auto isInterruptible = [](const FileCall& call) {
        return call.name == "openat" || call.name == "open" || call.name == "write" || call.name == "fsync";
    };
    const auto runInterrupted = [&](int number) {
        int calls = 0;
        const int status = run([&](const FileCall& call) {
            return isInterruptible(call) && ++calls == number ? Answer::fail(EINTR) : Answer::proceed();
        });
        EXPECT_EQ(status, 0);
        EXPECT_EQ(words, "");
        return calls;
    };
    for (const int number : spread(runInterrupted(0), 14)) {
        runInterrupted(number);
        SCOPED_TRACE("call " + std::to_string(number));
        expectUsable();
    }
}

TEST_F(KilledStore, goesOnAfterAWriteThatWasCutShort) {
    for (const int number : spread(countCalls(), 12)) {
        EXPECT_EQ(runDisturbed(number, Answer::writeHalf()), 0);
        SCOPED_TRACE("call " + std::to_string(number));
        expectUsable();
    }
}

TEST_F(KilledStore, hasEachNewContentOnTheDiskBeforeItTakesItsNameAndTheNameSoonAfter) {
    const std::set<fs::path> kept{file, data / "GoogleOAuth.json"};
    std::set<fs::path> onDisk;
    std::set<fs::path> replaced;
    bool areNamesOnDisk = true;
    run([&](const FileCall& call) {
        const bool synchronises = call.name == "fsync" || call.name == "fdatasync";
        if (kept.contains(call.target)) {
            EXPECT_TRUE(onDisk.contains(call.path)) << call.target;
            replaced.insert(call.target);
            areNamesOnDisk = false;
        } else if (synchronises) {
            onDisk.insert(call.path);
            areNamesOnDisk = areNamesOnDisk || call.path == data;
        } else if (call.name.find("write") != std::string_view::npos) {
            onDisk.erase(call.path);
        }
        return Answer::proceed();
    });
    EXPECT_EQ(replaced, kept);
    EXPECT_TRUE(areNamesOnDisk);
}

TEST_F(KilledStore, hasTheIdentityOfANewRepositoryOnTheDiskBeforeItsFirstSnapshot) {
    watched = world.disk;
    std::set<fs::path> onDisk;
    std::set<fs::path> identified;
    int snapshots = 0;
    run([&](const FileCall& call) {
        if (call.name == "fsync" || call.name == "fdatasync")
            onDisk.insert(call.path);
        if (call.target.filename() == "Repository.json") {
            EXPECT_TRUE(onDisk.contains(call.path));
            identified.insert(call.target.parent_path());
            onDisk.erase(call.target.parent_path());
        }
        const fs::path repository = call.target.parent_path().parent_path();
        if (call.target.parent_path().filename() == "Snapshots" && identified.contains(repository)) {
            EXPECT_TRUE(onDisk.contains(repository)) << "its name";
            ++snapshots;
        }
        return Answer::proceed();
    });
    EXPECT_EQ(identified.size(), 1U);
    EXPECT_GE(snapshots, 1);
}

} // namespace marrowbox::test
