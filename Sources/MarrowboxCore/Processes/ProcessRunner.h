#pragma once

#include "Processes/ProcessSurroundings.h"

#include <boost/asio/awaitable.hpp>
#include <cstdint>
#include <filesystem>
#include <map>
#include <stop_token>
#include <string>
#include <vector>

namespace marrowbox {

namespace asio = boost::asio;
namespace fs = std::filesystem;

/// The only way to run an external tool. Three things are its care: a cancellation at any moment never leaves
/// a child running unobserved, a chatty child never stalls on a full pipe, and no RCLONE_ setting of the
/// user's shell leaks into a child.
namespace ProcessRunner {

struct Result {
    std::int32_t status = 0; ///< The exit code; the signal's number for a child that a signal ended.
    std::string output;      ///< All that the child wrote to both streams, in the order of writing.

    friend bool operator==(const Result&, const Result&) = default;
};

/// Runs a program without a shell and waits for its end, holding no thread. The child inherits the
/// environment of the surroundings less every RCLONE_ variable; `environment` is added, and wins on equal
/// names. It reads end-of-file from standard input.
///
/// Returns for any status: judging it is the caller's work. Throws std::system_error when the scratch folder
/// cannot be made or the program not be started.
///
/// A stop, requested on any thread, sends the child SIGTERM once; the operation still waits until the child
/// has really ended, however long that takes, and then throws CancellationError. A coroutine that is
/// destroyed in the middle sends SIGTERM too and holds the destroying thread until the child has ended.
asio::awaitable<Result> run(fs::path executable, std::vector<std::string> arguments,
                            std::map<std::string, std::string> environment, ProcessSurroundings surroundings,
                            std::stop_token stop);

/// The same in the surroundings of this process.
asio::awaitable<Result> run(fs::path executable, std::vector<std::string> arguments,
                            std::map<std::string, std::string> environment, std::stop_token stop);

} // namespace ProcessRunner

} // namespace marrowbox
