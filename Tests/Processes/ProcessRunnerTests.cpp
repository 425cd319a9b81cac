#include "Processes/ProcessRunner.h"

#include "Platform/Files.h"
#include "Support/Children.h"
#include "Support/Coroutine.h"
#include "TestSurroundings.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>

namespace marrowbox {

namespace {

using test::TestSurroundings;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

ProcessRunner::Result runShell(const TestSurroundings& surroundings, std::string script,
                               std::map<std::string, std::string> environment = {}) {
    std::vector<std::string> arguments{"-c", std::move(script)};
    return test::await(ProcessRunner::run("/bin/sh", std::move(arguments), std::move(environment),
                                          surroundings.value, std::stop_token()));
}

TEST(ProcessRunner, givesTheOutputOfBothStreams) {
    const TestSurroundings surroundings;
    const auto result = runShell(surroundings, "echo one; echo two >&2; echo three");
    EXPECT_EQ(result, (ProcessRunner::Result{0, "one\ntwo\nthree\n"}));
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
}

TEST(ProcessRunner, handsArgumentsOverWithoutAShell) {
    const TestSurroundings surroundings;
    std::vector<std::string> arguments{"[%s]", "", "two words", "$HOME", "*", "'\"", "–\n"};
    const auto result = test::await(ProcessRunner::run("/usr/bin/printf", std::move(arguments), {},
                                                       surroundings.value, std::stop_token()));
    EXPECT_EQ(result, (ProcessRunner::Result{0, "[][two words][$HOME][*]['\"][–\n]"}));
}

TEST(ProcessRunner, keepsMoreThanAPipeHoldsInTheOrderOfWriting) {
    const TestSurroundings surroundings;
    const std::string padding(100, 'x');
    const auto result = runShell(surroundings, "i=0; while [ $i -lt 2000 ]; do echo o${i}" + padding +
                                                   "; echo e${i}" + padding + " >&2; i=$((i+1)); done");
    std::string expected;
    for (int line = 0; line < 2000; ++line) {
        const auto number = std::to_string(line);
        expected.append("o").append(number).append(padding).append("\ne");
        expected.append(number).append(padding).append("\n");
    }
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output == expected);
}

TEST(ProcessRunner, givesTheExitCodeAsStatus) {
    const TestSurroundings surroundings;
    EXPECT_EQ(runShell(surroundings, "echo said; exit 7"), (ProcessRunner::Result{7, "said\n"}));
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
}

TEST(ProcessRunner, givesTheSignalsNumberAsStatus) {
    const TestSurroundings surroundings;
    EXPECT_EQ(runShell(surroundings, "echo said; kill -9 $$"), (ProcessRunner::Result{9, "said\n"}));
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
}

TEST(ProcessRunner, givesTheStatusInAProgramThatWasStartedWithTheEndsOfChildrenIgnored) {
    const TestSurroundings surroundings;
    const auto previous = std::signal(SIGCHLD, SIG_IGN);
    const auto result = runShell(surroundings, "echo said; exit 7");
    std::signal(SIGCHLD, previous);
    EXPECT_EQ(result, (ProcessRunner::Result{7, "said\n"}));
    EXPECT_TRUE(test::hasNoChild());
}

TEST(ProcessRunner, withholdsInheritedRcloneVariablesAndNoOther) {
    TestSurroundings surroundings;
    surroundings.value.environment["RCLONE_CONFIG"] = "/home/somebody/rclone.conf";
    surroundings.value.environment["RCLONE_"] = "bare";
    surroundings.value.environment["RCLONEX"] = "kept";
    surroundings.value.environment["MY_RCLONE_CONFIG"] = "kept";
    surroundings.value.environment["EMPTY"] = "";
    const auto result = test::await(ProcessRunner::run("/usr/bin/env", {}, {}, surroundings.value, {}));
    EXPECT_EQ(result.output, "EMPTY=\nMY_RCLONE_CONFIG=kept\nPATH=/usr/bin:/bin\nRCLONEX=kept\n");
}

TEST(ProcessRunner, addsTheCallersVariablesAndLetsThemWin) {
    TestSurroundings surroundings;
    surroundings.value.environment["RCLONE_CONFIG"] = "inherited";
    surroundings.value.environment["LANG"] = "inherited";
    std::map<std::string, std::string> given{{"RCLONE_CONFIG", "given"}, {"LANG", "C"}, {"NEW", "a=b\nc"}};
    const auto result = test::await(ProcessRunner::run("/usr/bin/env", {}, given, surroundings.value, {}));
    EXPECT_EQ(result.output, "LANG=C\nNEW=a=b\nc\nPATH=/usr/bin:/bin\nRCLONE_CONFIG=given\n");
}

TEST(ProcessRunner, takesTheSurroundingsOfThisProcessWhenNoneAreGiven) {
    const auto surroundings = ProcessSurroundings::ofThisProcess();
    ASSERT_TRUE(surroundings.environment.contains("PATH"));
    const auto result = test::await(ProcessRunner::run("/usr/bin/printenv", {"PATH"}, {}, std::stop_token()));
    EXPECT_EQ(result.output, surroundings.environment.at("PATH") + "\n");
}

TEST(ProcessRunner, failsWithTheSystemsWordsWhenTheProgramIsMissing) {
    const TestSurroundings surroundings;
    try {
        test::await(ProcessRunner::run(surroundings / "missing", {}, {}, surroundings.value, {}));
        FAIL() << "a missing program was started";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
    EXPECT_TRUE(test::hasNoChild());
}

TEST(ProcessRunner, failsWithTheSystemsWordsWhenTheProgramMayNotBeRun) {
    const TestSurroundings surroundings;
    writeAll(openFile(surroundings / "plain", O_WRONLY | O_CREAT), "no program");
    try {
        test::await(ProcessRunner::run(surroundings / "plain", {}, {}, surroundings.value, {}));
        FAIL() << "a plain file was started";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::permission_denied);
    }
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
}

TEST(ProcessRunner, refusesAnArgumentThatANulWouldCutShort) {
    const TestSurroundings surroundings;
    std::vector<std::string> arguments{std::string("cut\0short", 9)};
    EXPECT_THROW(
        test::await(ProcessRunner::run("/bin/echo", std::move(arguments), {}, surroundings.value, {})),
        std::system_error);
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
}

TEST(ProcessRunner, failsWithTheSystemsWordsWhenThereIsNoTemporaryFolder) {
    TestSurroundings surroundings;
    surroundings.value.temporaryFolder = surroundings / "missing";
    try {
        test::await(ProcessRunner::run("/bin/true", {}, {}, surroundings.value, {}));
        FAIL() << "a scratch folder was made without its parent";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
}

TEST(ProcessRunner, keepsTheOutputInAPrivateFolderWhileTheChildRuns) {
    const TestSurroundings surroundings;
    const auto previous = ::umask(0277); // neither looser nor stricter than told, whatever the user's mask
    const auto result = runShell(surroundings, "f=$(readlink /proc/$$/fd/1); echo $f; stat -c %a $f ${f%/*}");
    ::umask(previous);
    const std::regex expected(
        surroundings.value.temporaryFolder.string() +
        "/marrowbox-process-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}/output\n600\n700\n");
    EXPECT_TRUE(std::regex_match(result.output, expected)) << result.output;
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
}

TEST(ProcessRunner, letsTheChildReadEndOfFile) {
    const TestSurroundings surroundings;
    const auto result = runShell(surroundings, "readlink /proc/$$/fd/0; cat; echo ended");
    EXPECT_EQ(result.output, "/dev/null\nended\n");
}

TEST(ProcessRunner, handsNoDescriptorOver) {
    const TestSurroundings surroundings;
    const Descriptor leaky(::open("/dev/null", O_RDONLY)); // without close-on-exec, as a library may do
    const Descriptor high(::fcntl(leaky.number(), F_DUPFD, 200));
    ASSERT_TRUE(leaky && high);
    const auto result =
        test::await(ProcessRunner::run("/bin/ls", {"/proc/self/fd"}, {}, surroundings.value, {}));
    EXPECT_EQ(result.output, "0\n1\n2\n3\n"); // the last is the folder that ls reads
}

TEST(ProcessRunner, startsTheChildWithFreshSignals) {
    const TestSurroundings surroundings;
    sigset_t blocked{};
    sigset_t previous{};
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::sigaddset(&blocked, SIGUSR1);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, &previous), 0);
    const auto pipe = std::signal(SIGPIPE, SIG_IGN);
    const auto hangup = std::signal(SIGHUP, SIG_IGN);

    const auto result = test::await(
        ProcessRunner::run("/bin/grep", {"^Sig[BI]", "/proc/self/status"}, {}, surroundings.value, {}));

    std::signal(SIGHUP, hangup);
    std::signal(SIGPIPE, pipe);
    ASSERT_EQ(::pthread_sigmask(SIG_SETMASK, &previous, nullptr), 0);
    EXPECT_EQ(result.output, "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
}

asio::awaitable<void> runOften(ProcessSurroundings surroundings, int count) {
    for (int run = 0; run < count; ++run) {
        const auto result = co_await ProcessRunner::run("/bin/echo", {"done"}, {}, surroundings, {});
        EXPECT_EQ(result, (ProcessRunner::Result{0, "done\n"}));
    }
}

TEST(ProcessRunner, leavesNothingBehindAfterAThousandRuns) {
    const TestSurroundings surroundings;
    asio::thread_pool pool(2);
    asio::co_spawn(pool, runOften(surroundings.value, 1), asio::use_future)
        .get(); // the reactor's own descriptors
    const auto before = test::openDescriptorCount();

    std::vector<std::future<void>> lanes;
    for (int lane = 0; lane < 8; ++lane)
        lanes.push_back(
            asio::co_spawn(asio::make_strand(pool), runOften(surroundings.value, 125), asio::use_future));
    for (auto& lane : lanes)
        lane.get();

    EXPECT_EQ(test::openDescriptorCount(), before);
    EXPECT_TRUE(test::hasNoChild());
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
}

TEST(ProcessRunner, holdsNoThreadWhileChildrenRun) {
    const TestSurroundings surroundings;
    const test::NamedPipe pipe(surroundings / "pipe");
    // One thread: the child that waits ends only when the second one has been started and has written.
    asio::io_context context;
    std::vector<std::string> ended;
    const auto record = [&](std::exception_ptr failure, ProcessRunner::Result result) {
        EXPECT_FALSE(failure);
        ended.push_back(result.output);
    };
    const auto script = [&](std::string text) { return std::vector<std::string>{"-c", std::move(text)}; };
    const auto path = pipe.path().string();
    asio::co_spawn(context, ProcessRunner::run("/bin/sh", script("cat " + path), {}, surroundings.value, {}),
                   record);
    asio::co_spawn(context,
                   ProcessRunner::run("/bin/sh", script("echo word >" + path), {}, surroundings.value, {}),
                   record);
    context.run();
    EXPECT_THAT(ended, testing::UnorderedElementsAre("word\n", ""));
}

} // namespace

} // namespace marrowbox
