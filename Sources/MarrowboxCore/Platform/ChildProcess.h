#pragma once

#include "Platform/Descriptor.h"

#include <boost/asio/awaitable.hpp>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace marrowbox {

namespace asio = boost::asio;

/// What a program is started with: exactly these arguments after its own path, exactly these variables.
struct ProgramLaunch {
    std::filesystem::path executable;
    std::vector<std::string> arguments;
    std::map<std::string, std::string> environment;
};

/// A running program and its end, through a descriptor of the process: no thread waits for it, no signal
/// handler is installed, and a number that the system gave to another process is never signalled.
///
/// The child starts with standard input at the null device, standard output and standard error at one
/// descriptor, no other descriptor, no signal blocked and none ignored. A SIGCHLD that this process ignores
/// is set to its default by a launch, since the system keeps no ended child for a process that ignores it.
///
/// Not synchronised. `ended` may wait while another thread calls `requestTermination`.
class ChildProcess {
  public:
    /// Starts the program; returns once it runs. Throws std::system_error when it cannot be started.
    ChildProcess(const ProgramLaunch& launch, const Descriptor& output);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// A child that nobody has reaped is asked to end and waited for, holding the thread: the last resort of
    /// a caller that is torn down in the middle, since no child may be left behind unobserved.
    ~ChildProcess();

    /// Sends SIGTERM, the first time it is called; nothing when the child has ended.
    void requestTermination() noexcept;
    /// Suspends until the child has ended, without reaping it. On the awaiting coroutine's executor. The
    /// object outlives the wait. Throws std::system_error when the system cannot watch the process.
    asio::awaitable<void> ended() const;
    /// Takes the status of a child that has ended: its exit code, or the number of the signal that ended it.
    /// Absent while it runs. Throws std::system_error when the system has no such child any more.
    std::optional<std::int32_t> reap();

  private:
    Descriptor process_;
    bool isTerminationRequested_ = false;
    bool isReaped_ = false;
};

} // namespace marrowbox
