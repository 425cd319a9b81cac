#pragma once

#include <boost/asio/execution.hpp>
#include <boost/asio/execution_context.hpp>
#include <functional>
#include <memory>

namespace marrowbox {

namespace asio = boost::asio;

/// The main thread's queue, as the core sees it: an Asio executor that posts each piece of work to the event
/// loop of the thread that made it. Timers and descriptors of coroutines that run here wait on the given
/// context, which runs on threads of its own, and come back here when they are done. Copies share the queue.
/// Posting is safe from any thread.
class MainExecutor {
  public:
    /// Makes the queue of the calling thread, which runs a Qt event loop. The context must outlive all
    /// copies.
    static MainExecutor onThisThread(asio::execution_context& waiting);

    /// Drops the work that has not run yet, and all that is posted from now on. To be called on the queue's
    /// thread before the application object goes: that one ends what is left under a lock of its own, which
    /// the end of a piece of work may need.
    void close() const;

    asio::execution_context& query(asio::execution::context_t) const noexcept { return *waiting_; }
    static constexpr asio::execution::blocking_t query(asio::execution::blocking_t) noexcept {
        return asio::execution::blocking.never;
    }

    template <typename Function>
    void execute(Function function) const {
        // Asio's handlers can be moved but not copied; a shared box makes one work item of them.
        auto box = std::make_shared<Function>(std::move(function));
        post([box = std::move(box)]() mutable { std::move (*box)(); });
    }

    friend bool operator==(const MainExecutor& left, const MainExecutor& right) noexcept {
        return left.queue_ == right.queue_;
    }

  private:
    class Queue;
    MainExecutor(std::shared_ptr<Queue> queue, asio::execution_context& waiting);
    void post(std::function<void()> work) const;

    std::shared_ptr<Queue> queue_;
    asio::execution_context* waiting_;
};

} // namespace marrowbox
