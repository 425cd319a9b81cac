#include "SnapshotMount/ProcessEnd.h"

#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace marrowbox {

namespace {

using namespace asio::experimental::awaitable_operators;

/// A process's descriptor becomes readable at its end.
asio::awaitable<void> readable(asio::posix::stream_descriptor& process) {
    co_await process.async_wait(asio::posix::stream_descriptor::wait_read, asio::use_awaitable);
}

asio::awaitable<void> expired(asio::steady_timer& timer) {
    co_await timer.async_wait(asio::use_awaitable);
}

} // namespace

asio::awaitable<bool> processesEnded(std::vector<Descriptor> processes, std::chrono::milliseconds limit) {
    const auto executor = co_await asio::this_coro::executor;
    asio::steady_timer timer(executor, limit);
    for (Descriptor& process : processes) {
        asio::posix::stream_descriptor watched(executor, process.release());
        const auto first = co_await (readable(watched) || expired(timer));
        if (first.index() != 0)
            co_return false;
    }
    co_return true;
}

} // namespace marrowbox
