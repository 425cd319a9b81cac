#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>

namespace marrowbox {

namespace asio = boost::asio;

/// Starts work of a screen on the main executor. The work tells its screen of failures itself; a cancellation
/// ends it without a word.
void startScreenWork(const asio::any_io_executor& main, asio::awaitable<void> work);

} // namespace marrowbox
