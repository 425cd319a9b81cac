#include "Marrowbox/Platform/MainExecutor.h"

#include <QCoreApplication>
#include <QThread>
#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

asio::awaitable<QThread*> threadOf() {
    co_return QThread::currentThread();
}

asio::awaitable<void> visitThreads(asio::any_io_executor pool, std::vector<QThread*>& visited) {
    visited.push_back(QThread::currentThread());
    asio::steady_timer timer(co_await asio::this_coro::executor);
    timer.expires_after(std::chrono::milliseconds(1));
    co_await timer.async_wait(asio::use_awaitable);
    visited.push_back(QThread::currentThread());
    auto strand = asio::make_strand(pool);
    QThread* const elsewhere = co_await asio::co_spawn(strand, threadOf(), asio::use_awaitable);
    visited.push_back(elsewhere);
    visited.push_back(QThread::currentThread());
}

} // namespace

TEST(MainExecutor, bringsTimersAndStrandsBackToTheMainThread) {
    int count = 0;
    QCoreApplication application(count, nullptr);
    asio::thread_pool pool(2);
    const asio::any_io_executor main = MainExecutor::onThisThread(pool);
    std::vector<QThread*> visited;
    std::exception_ptr failure;
    asio::co_spawn(main, visitThreads(pool.get_executor(), visited), [&](std::exception_ptr thrown) {
        failure = thrown;
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
    ASSERT_FALSE(failure);
    ASSERT_EQ(visited.size(), 4U);
    QThread* const mainThread = QThread::currentThread();
    EXPECT_EQ(visited[0], mainThread);
    EXPECT_EQ(visited[1], mainThread);
    EXPECT_NE(visited[2], mainThread);
    EXPECT_EQ(visited[3], mainThread);
}

TEST(MainExecutor, runsNothingBeforeTheEventLoopTurns) {
    int count = 0;
    QCoreApplication application(count, nullptr);
    asio::thread_pool pool(1);
    const auto main = MainExecutor::onThisThread(pool);
    bool ran = false;
    main.execute([&] { ran = true; });
    EXPECT_FALSE(ran);
    QCoreApplication::processEvents();
    EXPECT_TRUE(ran);
}

TEST(MainExecutor, dropsWhatIsLeftWhenItCloses) {
    int count = 0;
    QCoreApplication application(count, nullptr);
    asio::thread_pool pool(1);
    const auto main = MainExecutor::onThisThread(pool);
    const auto held = std::make_shared<int>();
    main.execute([held] { ADD_FAILURE() << "What is dropped has run."; });
    main.close();
    main.execute([held] { ADD_FAILURE() << "What came too late has run."; });
    EXPECT_EQ(held.use_count(), 1);
    QCoreApplication::processEvents();
}

TEST(MainExecutor, closesAroundWorkThatPostsAsItEnds) {
    int count = 0;
    QCoreApplication application(count, nullptr);
    asio::thread_pool pool(1);
    bool hasEnded = false;
    {
        const auto main = MainExecutor::onThisThread(pool);
        // The end of a coroutine cancels what it waits for, which tells so on the same executor.
        const std::shared_ptr<void> posts(nullptr, [main, &hasEnded](void*) {
            hasEnded = true;
            main.execute([] {});
        });
        main.execute([posts] {});
        main.close();
    }
    EXPECT_TRUE(hasEnded);
}

} // namespace marrowbox
