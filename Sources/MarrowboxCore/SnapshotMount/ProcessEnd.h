#pragma once

#include "Platform/Descriptor.h"

#include <boost/asio/awaitable.hpp>
#include <chrono>
#include <vector>

namespace marrowbox {

namespace asio = boost::asio;

/// Waits until all these processes have ended, on the awaiting coroutine's executor and without a thread, or
/// until the limit has passed. True when all have ended.
asio::awaitable<bool> processesEnded(std::vector<Descriptor> processes, std::chrono::milliseconds limit);

} // namespace marrowbox
