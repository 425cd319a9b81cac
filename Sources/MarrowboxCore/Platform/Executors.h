#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <chrono>
#include <functional>
#include <stop_token>

namespace marrowbox {

namespace asio = boost::asio;

/// Waits for a span of time on the monotonic clock; throws CancellationError as soon as a stop is requested.
/// Handed to whatever waits, so that a test decides how long a wait takes.
using Wait = std::function<asio::awaitable<void>(std::chrono::duration<double>, std::stop_token)>;

/// A wait on a timer of the awaiting coroutine's executor.
Wait timerWait();

} // namespace marrowbox
