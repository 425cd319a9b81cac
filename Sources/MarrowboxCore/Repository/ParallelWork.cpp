#include "Repository/ParallelWork.h"

#include <algorithm>
#include <atomic>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <latch>
#include <mutex>
#include <thread>
#include <vector>

namespace marrowbox {

namespace {

/// Items of light work that are worth going to another thread.
constexpr std::size_t pieceSize = 4096;

/// More threads than processors, since most of them wait for storage at any one time.
std::size_t threadCount() {
    return std::clamp<std::size_t>(4 * std::thread::hardware_concurrency(), 4, 16);
}

/// The calls of one piece of work, shared by the threads that make them.
class SharedCalls {
  public:
    SharedCalls(std::size_t count, const std::function<void(std::size_t)>& work) : end_(count), work_(work) {}

    /// Makes calls until none is left, or until those that are left lie behind a failure.
    void take() noexcept {
        for (std::size_t index = next_++; index < end_; index = next_++) {
            try {
                work_(index);
            } catch (...) {
                fail(index, std::current_exception());
            }
        }
    }

    std::optional<FirstFailure> failure() const { return first_; }

  private:
    void fail(std::size_t index, std::exception_ptr failure) {
        const std::scoped_lock lock(mutex_);
        if (first_ && first_->index < index)
            return;
        first_ = {index, std::move(failure)};
        end_ = index;
    }

    std::atomic<std::size_t> next_ = 0;
    std::atomic<std::size_t> end_;
    const std::function<void(std::size_t)>& work_;
    std::mutex mutex_;
    std::optional<FirstFailure> first_;
};

} // namespace

/// The library's own pool waits for ever for the threads that it has, when the system gives it no further
/// one.
class ParallelWork::Threads {
  public:
    Threads() {
        try {
            while (threads_.size() < threadCount())
                threads_.emplace_back([this] { context_.run(); });
        } catch (const std::exception&) {
            // Those that there are do all the work.
        }
    }
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;
    ~Threads() {
        work_.reset();
        for (std::thread& thread : threads_)
            thread.join();
    }

    std::size_t count() const { return threads_.size(); }
    void post(std::function<void()> work) { boost::asio::post(context_, std::move(work)); }

  private:
    boost::asio::io_context context_;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_{context_.get_executor()};
    std::vector<std::thread> threads_;
};

ParallelWork::ParallelWork() = default;
ParallelWork::~ParallelWork() = default;

std::optional<FirstFailure> ParallelWork::forEach(std::size_t count,
                                                  const std::function<void(std::size_t)>& work) {
    SharedCalls calls(count, work);
    if (count > 1 && !threads_)
        threads_ = std::make_unique<Threads>();
    const std::size_t sharers = count > 1 ? std::min(count, threads_->count()) : 0;
    if (sharers == 0) {
        calls.take();
        return calls.failure();
    }
    std::latch done(static_cast<std::ptrdiff_t>(sharers));
    for (std::size_t sharer = 0; sharer < sharers; ++sharer)
        threads_->post([&] {
            calls.take();
            done.count_down();
        });
    done.wait();
    return calls.failure();
}

std::optional<FirstFailure>
ParallelWork::forEachPiece(std::size_t count, const std::function<void(std::size_t, std::size_t)>& work) {
    return forEach((count + pieceSize - 1) / pieceSize, [&](std::size_t piece) {
        work(piece * pieceSize, std::min(count, (piece + 1) * pieceSize));
    });
}

} // namespace marrowbox
