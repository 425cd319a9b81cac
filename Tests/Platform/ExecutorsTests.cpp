#include "Platform/Executors.h"

#include "Platform/Cancellation.h"
#include "Support/Coroutine.h"

#include <atomic>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>
#include <future>
#include <gtest/gtest.h>
#include <thread>

namespace marrowbox {

namespace {

using namespace std::chrono_literals;

enum class Ending { none, ended, cancelled, failed };

/// Waits on an executor and keeps how the wait ended.
class Waiting {
  public:
    template <typename Executor>
    void start(Executor& executor, std::chrono::duration<double> span) {
        asio::co_spawn(executor, timerWait()(span, stop_.get_token()),
                       [this](std::exception_ptr failure) { ending_ = endingOf(failure); });
    }
    void cancel() { stop_.request_stop(); }
    Ending ending() const { return ending_; }

  private:
    static Ending endingOf(const std::exception_ptr& failure) {
        try {
            if (failure)
                std::rethrow_exception(failure);
        } catch (const CancellationError&) {
            return Ending::cancelled;
        } catch (...) {
            return Ending::failed;
        }
        return Ending::ended;
    }

    std::stop_source stop_;
    std::atomic<Ending> ending_ = Ending::none;
};

} // namespace

TEST(TimerWait, endsWhenItsTimeHasPassed) {
    const auto before = std::chrono::steady_clock::now();
    test::await(timerWait()(5ms, {}));
    EXPECT_GE(std::chrono::steady_clock::now() - before, 5ms);
}

TEST(TimerWait, endsAtOnceWhenThereIsNothingToWaitFor) {
    test::await(timerWait()(0s, {}));
    test::await(timerWait()(-1h, {}));
}

TEST(TimerWait, isOverBeforeItBeginsWhenCancelledBefore) {
    asio::io_context context;
    Waiting waiting;
    waiting.cancel();
    waiting.start(context, 1h);
    context.run();
    EXPECT_EQ(waiting.ending(), Ending::cancelled);
}

TEST(TimerWait, isOverAsSoonAsItIsCancelled) {
    asio::io_context context;
    Waiting waiting;
    waiting.start(context, 1h);
    context.poll(); // all that there is to do until the hour is over
    ASSERT_EQ(waiting.ending(), Ending::none);
    waiting.cancel();
    context.restart();
    context.run();
    EXPECT_EQ(waiting.ending(), Ending::cancelled);
}

TEST(TimerWait, isOverWhenCancelledAtAnyStepOfItsWay) {
    for (int steps = 0; steps < 12; ++steps) {
        asio::io_context context;
        Waiting waiting;
        waiting.start(context, 1h);
        for (int step = 0; step < steps; ++step)
            context.poll_one();
        waiting.cancel();
        context.restart();
        context.run();
        ASSERT_EQ(waiting.ending(), Ending::cancelled) << steps;
    }
}

TEST(TimerWait, isOverWhenAnotherThreadCancels) {
    for (int round = 0; round < 300; ++round) {
        asio::io_context context;
        Waiting waiting;
        waiting.start(context, 1h);
        std::jthread other([&] {
            // Each round comes a little later, so that the cancel meets every moment of the wait.
            for (volatile int spin = 0; spin < round * 100;)
                spin = spin + 1;
            waiting.cancel();
        });
        context.run();
        ASSERT_EQ(waiting.ending(), Ending::cancelled) << round;
    }
}

TEST(TimerWait, isOverOnAPoolOfThreadsWhateverComesFirst) {
    asio::thread_pool pool(4);
    std::vector<Waiting> waits(400);
    for (std::size_t index = 0; index < waits.size(); ++index)
        waits[index].start(pool, index % 2 == 0 ? 1h : std::chrono::duration<double>(1e-5));
    std::vector<std::jthread> others;
    for (std::size_t thread = 0; thread < 4; ++thread)
        others.emplace_back([&waits, thread] {
            for (std::size_t index = thread; index < waits.size(); index += 4)
                waits[index].cancel();
        });
    others.clear();
    pool.join();
    for (std::size_t index = 0; index < waits.size(); ++index) {
        const bool mayEnd = index % 2 == 1;
        EXPECT_TRUE(waits[index].ending() == Ending::cancelled ||
                    (mayEnd && waits[index].ending() == Ending::ended))
            << index;
    }
}

TEST(TimerWait, comesBackToTheExecutorThatWaits) {
    asio::io_context context;
    const auto here = std::this_thread::get_id();
    const auto coroutine = [](std::thread::id expected) -> asio::awaitable<void> {
        const Wait wait = timerWait();
        co_await wait(1ms, {});
        EXPECT_EQ(std::this_thread::get_id(), expected);
    };
    test::await(coroutine(here));
}

TEST(Cancellation, isThrownOnlyWhenAskedFor) {
    std::stop_source stop;
    EXPECT_NO_THROW(throwIfCancelled(stop.get_token()));
    EXPECT_NO_THROW(throwIfCancelled({}));
    stop.request_stop();
    EXPECT_THROW(throwIfCancelled(stop.get_token()), CancellationError);
}

TEST(Cancellation, isNoKindOfRuntimeError) {
    static_assert(!std::is_base_of_v<std::runtime_error, CancellationError>);
    static_assert(std::is_base_of_v<std::exception, CancellationError>);
    SUCCEED();
}

} // namespace marrowbox
