#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <type_traits>

namespace marrowbox {

namespace asio = boost::asio;

/// Runs a piece of work that blocks on the given executor and comes back to the caller's with what it gives.
template <typename Work>
asio::awaitable<std::invoke_result_t<Work>> onExecutor(asio::any_io_executor executor, Work work) {
    using Result = std::invoke_result_t<Work>;
    co_return co_await asio::co_spawn(
        executor, [](Work held) -> asio::awaitable<Result> { co_return held(); }(std::move(work)),
        asio::use_awaitable);
}

/// Destroys a value on the given executor. The last holder of a long history spends the time that letting go
/// of millions of entries takes.
template <typename Value>
void letGoOn(const asio::any_io_executor& executor, Value value) {
    asio::post(executor, [held = std::move(value)] {});
}

} // namespace marrowbox
