#include "Platform/Cancellation.h"
#include "Platform/Files.h"
#include "Processes/ProcessRunner.h"
#include "Support/Children.h"
#include "Support/Coroutine.h"
#include "TestSurroundings.h"

#include <atomic>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace marrowbox {

namespace {

using test::NamedPipe;
using test::TestSurroundings;
using testing::IsEmpty;

asio::awaitable<ProcessRunner::Result> shell(const TestSurroundings& surroundings, std::string script,
                                             std::stop_token stop) {
    std::vector<std::string> arguments{"-c", std::move(script)};
    return ProcessRunner::run("/bin/sh", std::move(arguments), {}, surroundings.value, std::move(stop));
}

TEST(ProcessCancellation, beforeTheLaunchStartsNothing) {
    const TestSurroundings surroundings;
    std::stop_source source;
    source.request_stop();
    const auto trace = surroundings / "trace";
    EXPECT_THROW(test::await(shell(surroundings, ": >" + trace.string(), source.get_token())),
                 CancellationError);
    EXPECT_FALSE(fs::exists(trace));
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
}

TEST(ProcessCancellation, comesBeforeAFailureToLaunch) {
    const TestSurroundings surroundings;
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(test::await(ProcessRunner::run(surroundings / "missing", {}, {}, surroundings.value,
                                                source.get_token())),
                 CancellationError);
}

TEST(ProcessCancellation, sendsOneSigtermAndWaitsForTheChildsEnd) {
    const TestSurroundings surroundings;
    const NamedPipe said(surroundings / "said");
    const NamedPipe told(surroundings / "told");
    const auto last = surroundings / "last";
    // The child counts each SIGTERM, goes on all the same, and ends when it is told.
    const std::string script = "n=0; trap 'n=$((n+1)); echo terminated >" + said.path().string() +
                               "' TERM; echo ready >" + said.path().string() + "; while ! read word <" +
                               told.path().string() + "; do :; done; echo $n $word >" + last.string();
    asio::thread_pool pool(2);
    std::stop_source source;
    auto run = asio::co_spawn(asio::make_strand(pool), shell(surroundings, script, source.get_token()),
                              asio::use_future);

    EXPECT_EQ(said.read(), "ready\n");
    source.request_stop();
    EXPECT_EQ(said.read(), "terminated\n");
    EXPECT_EQ(run.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    EXPECT_FALSE(test::hasNoChild());
    told.write("end\n");

    EXPECT_THROW(run.get(), CancellationError);
    EXPECT_EQ(readFile(last), "1 end\n");
    EXPECT_TRUE(test::hasNoChild());
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
}

TEST(ProcessCancellation, givesNoResultEvenWhenTheChildEndsNormally) {
    const TestSurroundings surroundings;
    const NamedPipe said(surroundings / "said");
    const std::string script = "trap 'exit 0' TERM; echo ready >" + said.path().string() +
                               "; while :; do read word <" + (surroundings / "never").string() + "; done";
    const NamedPipe never(surroundings / "never");
    asio::thread_pool pool(2);
    std::stop_source source;
    auto run = asio::co_spawn(asio::make_strand(pool), shell(surroundings, script, source.get_token()),
                              asio::use_future);
    EXPECT_EQ(said.read(), "ready\n");
    source.request_stop();
    EXPECT_THROW(run.get(), CancellationError);
}

TEST(ProcessCancellation, afterTheEndChangesNothing) {
    const TestSurroundings surroundings;
    std::stop_source source;
    const auto result = test::await(shell(surroundings, "echo done", source.get_token()));
    source.request_stop();
    EXPECT_EQ(result, (ProcessRunner::Result{0, "done\n"}));
}

/// Runs a program once, with a stop that another thread requests after counting so far. True when the run
/// came to a result, false when it was cancelled.
bool completesBeforeCount(asio::thread_pool& pool, const TestSurroundings& surroundings, fs::path program,
                          std::vector<std::string> arguments, std::uint64_t count) {
    std::stop_source source;
    std::atomic<bool> isStarted = false;
    std::thread canceller([&] {
        while (!isStarted)
            continue;
        for (std::atomic<std::uint64_t> counted = 0; counted < count; ++counted)
            continue;
        source.request_stop();
    });
    isStarted = true;
    auto run = asio::co_spawn(asio::make_strand(pool),
                              ProcessRunner::run(std::move(program), std::move(arguments), {},
                                                 surroundings.value, source.get_token()),
                              asio::use_future);
    bool isCompleted = true;
    try {
        EXPECT_EQ(run.get(), (ProcessRunner::Result{0, ""}));
    } catch (const CancellationError&) {
        isCompleted = false;
    }
    // What the run promises holds the moment that it returns, not only once the canceller is gone too.
    EXPECT_TRUE(test::hasNoChild());
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
    canceller.join();
    return isCompleted;
}

/// How far the canceller counts while a short child is run from beginning to end.
std::uint64_t countOfOneRun(asio::thread_pool& pool, const TestSurroundings& surroundings) {
    std::uint64_t count = 1024;
    while (!completesBeforeCount(pool, surroundings, "/bin/true", {}, count))
        count += count / 2;
    return count;
}

TEST(ProcessCancellation, atAnyMomentOfAShortRunLeavesNoChild) {
    const TestSurroundings surroundings;
    asio::thread_pool pool(2);
    constexpr std::uint64_t moments = 400;
    const auto whole = countOfOneRun(pool, surroundings);
    std::uint64_t completed = 0;
    for (std::uint64_t moment = 0; moment <= moments; ++moment) {
        const auto count = 2 * whole * moment / moments;
        completed += completesBeforeCount(pool, surroundings, "/bin/true", {}, count) ? 1 : 0;
    }
    // Both sides of the end were visited.
    EXPECT_GT(completed, 0U);
    EXPECT_LT(completed, moments);
    RecordProperty("completed", std::to_string(completed));
}

TEST(ProcessCancellation, atAnyMomentEndsAChildThatWouldNeverEnd) {
    const TestSurroundings surroundings;
    const NamedPipe never(surroundings / "never");
    const Descriptor held = never.hold();
    asio::thread_pool pool(2);
    const auto whole = countOfOneRun(pool, surroundings);
    constexpr std::uint64_t moments = 400;
    for (std::uint64_t moment = 0; moment <= moments; ++moment) {
        const auto count = 2 * whole * moment / moments;
        EXPECT_FALSE(completesBeforeCount(pool, surroundings, "/bin/cat", {never.path().string()}, count));
    }
}

TEST(ProcessCancellation, aRunThatIsTornDownEndsItsChild) {
    const TestSurroundings surroundings;
    const NamedPipe said(surroundings / "said");
    const NamedPipe never(surroundings / "never");
    const Descriptor held = never.hold();
    const auto last = surroundings / "last";
    const std::string script = "trap 'echo terminated >" + last.string() + "; exit' TERM; echo ready >" +
                               said.path().string() + "; read word <" + never.path().string();
    bool isCompleted = false;
    {
        asio::io_context context;
        asio::co_spawn(context, shell(surroundings, script, {}),
                       [&](std::exception_ptr, ProcessRunner::Result) { isCompleted = true; });
        context.poll(); // as far as the child's launch
        EXPECT_EQ(said.read(), "ready\n");
    }
    EXPECT_FALSE(isCompleted);
    EXPECT_EQ(readFile(last), "terminated\n");
    EXPECT_TRUE(test::hasNoChild());
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
}

TEST(ProcessCancellation, manyRunsAtOnceAllEndTheirChildren) {
    const TestSurroundings surroundings;
    const NamedPipe never(surroundings / "never");
    const Descriptor held = never.hold();
    asio::thread_pool pool(2);
    std::stop_source source;
    std::vector<std::future<ProcessRunner::Result>> runs;
    for (int run = 0; run < 32; ++run)
        runs.push_back(asio::co_spawn(asio::make_strand(pool),
                                      ProcessRunner::run("/bin/cat", {never.path().string()}, {},
                                                         surroundings.value, source.get_token()),
                                      asio::use_future));
    source.request_stop();
    for (auto& run : runs)
        EXPECT_THROW(run.get(), CancellationError);
    EXPECT_TRUE(test::hasNoChild());
    EXPECT_THAT(surroundings.leftovers(), IsEmpty());
}

} // namespace

} // namespace marrowbox
