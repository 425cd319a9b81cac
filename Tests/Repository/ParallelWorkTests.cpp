#include "Repository/ParallelWork.h"

#include "Support/SanitizedBuild.h"
#include "Support/Stranger.h"

#include <atomic>
#include <gtest/gtest.h>
#include <latch>
#include <memory>
#include <stdexcept>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace marrowbox {

TEST(ParallelWork, makesEveryCallOnce) {
    ParallelWork workers;
    for (const std::size_t count : {0u, 1u, 2u, 1000u}) {
        std::vector<std::atomic<int>> calls(count);
        EXPECT_FALSE(workers.forEach(count, [&](std::size_t index) { ++calls[index]; }));
        for (const auto& made : calls)
            EXPECT_EQ(made, 1);
    }
}

TEST(ParallelWork, cutsARangeIntoPiecesWithoutAGap) {
    ParallelWork workers;
    for (const std::size_t count : {0u, 1u, 4096u, 4097u, 20'000u}) {
        std::vector<std::atomic<int>> taken(count);
        EXPECT_FALSE(workers.forEachPiece(count, [&](std::size_t begin, std::size_t end) {
            for (std::size_t index = begin; index < end; ++index)
                ++taken[index];
        }));
        for (const auto& times : taken)
            EXPECT_EQ(times, 1);
    }
}

TEST(ParallelWork, worksSideBySide) {
    ParallelWork workers;
    // Each call waits for the other, so it ends only when both are under way at the same time.
    std::latch both(2);
    EXPECT_FALSE(workers.forEach(2, [&](std::size_t) { both.arrive_and_wait(); }));
}

TEST(ParallelWork, isDoneByAsManyThreadsAsTheMachineHasRoomFor) {
    if (const auto reason = test::reasonForNoStranger())
        GTEST_SKIP() << *reason; // the administrator has room without end
    if (test::isSanitized)
        GTEST_SKIP() << "a sanitizer has threads of its own, and needs room for them";
    for (const rlim_t most : {1U, 2U, 4U, 9U})
        EXPECT_TRUE(test::doneByStranger([&] {
            ::alarm(60);
            const rlimit limit{.rlim_cur = most, .rlim_max = most};
            if (::setrlimit(RLIMIT_NPROC, &limit) != 0)
                return false;
            std::atomic<int> made = 0;
            ParallelWork workers;
            const bool hasFailed = workers.forEach(100, [&](std::size_t) { ++made; }).has_value() ||
                                   workers.forEach(2, [&](std::size_t) { ++made; }).has_value();
            return !hasFailed && made == 102;
        })) << most;
}

TEST(ParallelWork, makesASingleCallOnTheCallersThread) {
    ParallelWork workers;
    std::thread::id made;
    EXPECT_FALSE(workers.forEach(1, [&](std::size_t) { made = std::this_thread::get_id(); }));
    EXPECT_EQ(made, std::this_thread::get_id());
}

TEST(ParallelWork, reportsTheFirstFailureInOrderAndMakesAllCallsBeforeIt) {
    ParallelWork workers;
    for (int round = 0; round < 50; ++round) {
        std::vector<std::atomic<int>> calls(100);
        const auto failed = workers.forEach(calls.size(), [&](std::size_t index) {
            ++calls[index];
            if (index % 10 == 7)
                throw std::runtime_error(std::to_string(index));
        });
        ASSERT_TRUE(failed);
        EXPECT_EQ(failed->index, 7u);
        EXPECT_THROW(std::rethrow_exception(failed->failure), std::runtime_error);
        for (std::size_t index = 0; index <= 7; ++index)
            EXPECT_EQ(calls[index], 1) << index;
    }
}

TEST(ParallelWork, reportsTheFirstFailureInOrderThoughALaterCallFailsLast) {
    ParallelWork workers;
    for (int round = 0; round < 50; ++round) {
        std::latch both(2);
        std::latch first(1);
        const auto failed = workers.forEach(2, [&](std::size_t index) {
            both.arrive_and_wait();
            if (index > 0)
                first.wait();
            const std::unique_ptr<std::latch, void (*)(std::latch*)> onFailing(
                index == 0 ? &first : nullptr, [](std::latch* waiting) { waiting->count_down(); });
            throw std::runtime_error(std::to_string(index));
        });
        ASSERT_TRUE(failed);
        EXPECT_EQ(failed->index, 0u);
    }
}

} // namespace marrowbox
