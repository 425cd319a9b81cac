#include "Platform/ChildProcess.h"

#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace marrowbox {

namespace {

// By number, since this system's header declares the two functions without C linkage.
int openProcess(pid_t process) {
    return static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
}
void sendSignal(const Descriptor& process, int signal) {
    ::syscall(SYS_pidfd_send_signal, process.number(), signal, nullptr, 0);
}

[[noreturn]] void fail(int code, const std::string& what) {
    throw std::system_error(code, std::generic_category(), what);
}

void check(int code, const std::string& what) {
    if (code != 0)
        fail(code, what);
}

/// The three standard streams of a child, and no other descriptor.
struct Streams {
    Streams() { check(::posix_spawn_file_actions_init(&actions), "posix_spawn_file_actions_init"); }
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;
    ~Streams() { ::posix_spawn_file_actions_destroy(&actions); }

    void set(const Descriptor& output) {
        // The output is placed before the input: in a program that was started without standard streams, its
        // own number may be 0.
        check(::posix_spawn_file_actions_adddup2(&actions, output.number(), STDOUT_FILENO),
              "standard output");
        check(::posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO), "standard error");
        check(::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0),
              "standard input");
        check(::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1), "other descriptors");
    }

    posix_spawn_file_actions_t actions{};
};

/// Signals as a fresh login gives them, whatever the parent blocks or ignores.
struct Signals {
    Signals() { check(::posix_spawnattr_init(&attributes), "posix_spawnattr_init"); }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;
    ~Signals() { ::posix_spawnattr_destroy(&attributes); }

    void reset() {
        sigset_t every{};
        sigset_t none{};
        // All bits: sigfillset leaves out the two that the C library uses itself, and the child would ignore
        // them.
        std::memset(&every, 0xFF, sizeof every);
        ::sigemptyset(&none);
        check(::posix_spawnattr_setsigdefault(&attributes, &every), "default signals");
        check(::posix_spawnattr_setsigmask(&attributes, &none), "signal mask");
        check(::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK),
              "signal flags");
    }

    posix_spawnattr_t attributes{};
};

/// A list of texts in the form that a new program receives. It refuses a NUL, which would cut a text short.
class TextList {
  public:
    void add(std::string text) {
        if (text.find('\0') != std::string::npos)
            fail(EINVAL, "posix_spawn");
        texts_.push_back(std::move(text));
    }
    /// Valid until the next call on the list.
    char* const* pointers() {
        pointers_.clear();
        for (auto& text : texts_)
            pointers_.push_back(text.data());
        pointers_.push_back(nullptr);
        return pointers_.data();
    }

  private:
    std::vector<std::string> texts_;
    std::vector<char*> pointers_;
};

TextList argumentList(const ProgramLaunch& launch) {
    TextList list;
    list.add(launch.executable.string());
    for (const auto& argument : launch.arguments)
        list.add(argument);
    return list;
}

TextList environmentList(const ProgramLaunch& launch) {
    TextList list;
    for (const auto& [name, value] : launch.environment)
        list.add(name + "=" + value);
    return list;
}

/// A program may be started with the ends of children ignored, by a launcher that ignores those of its own.
/// The system would then drop the status of a child as it ends, and give its number away.
void keepEndedChildren() {
    struct sigaction current{};
    if (::sigaction(SIGCHLD, nullptr, &current) == 0 && current.sa_handler == SIG_IGN)
        std::signal(SIGCHLD, SIG_DFL);
}

pid_t spawn(const ProgramLaunch& launch, const Descriptor& output) {
    keepEndedChildren();
    Streams streams;
    streams.set(output);
    Signals signals;
    signals.reset();
    auto arguments = argumentList(launch);
    auto environment = environmentList(launch);
    pid_t child = 0;
    check(::posix_spawn(&child, launch.executable.c_str(), &streams.actions, &signals.attributes,
                        arguments.pointers(), environment.pointers()),
          "posix_spawn " + launch.executable.string());
    return child;
}

/// The descriptor of a child that nobody has reaped yet. When the system has none left, the child is ended
/// and awaited here, since it could not be watched.
Descriptor openChild(pid_t child) {
    Descriptor process(openProcess(child));
    if (process)
        return process;
    const int code = errno;
    ::kill(child, SIGTERM);
    siginfo_t ignored{};
    while (::waitid(P_PID, static_cast<id_t>(child), &ignored, WEXITED) != 0 && errno == EINTR)
        continue;
    fail(code, "pidfd_open");
}

/// Lends a descriptor to the reactor for one wait, and takes it back unclosed whichever way the wait ends.
class Watch {
  public:
    Watch(const asio::any_io_executor& executor, const Descriptor& descriptor) : stream_(executor) {
        boost::system::error_code failed;
        stream_.assign(descriptor.number(), failed);
        if (failed)
            throw std::system_error(failed);
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch() {
        if (stream_.is_open())
            stream_.release();
    }

    asio::posix::stream_descriptor& stream() { return stream_; }

  private:
    asio::posix::stream_descriptor stream_;
};

} // namespace

ChildProcess::ChildProcess(const ProgramLaunch& launch, const Descriptor& output)
    : process_(openChild(spawn(launch, output))) {
}

ChildProcess::~ChildProcess() {
    if (isReaped_)
        return;
    requestTermination();
    siginfo_t ignored{};
    pollfd end{.fd = process_.number(), .events = POLLIN, .revents = 0};
    while (::waitid(P_PIDFD, static_cast<id_t>(process_.number()), &ignored, WEXITED | WNOHANG) == 0 &&
           ignored.si_pid == 0)
        ::poll(&end, 1, -1);
}

void ChildProcess::requestTermination() noexcept {
    if (isTerminationRequested_)
        return;
    isTerminationRequested_ = true;
    // The only failure left to a child of ours is that it has ended.
    sendSignal(process_, SIGTERM);
}

asio::awaitable<void> ChildProcess::ended() const {
    const auto executor = co_await asio::this_coro::executor;
    Watch watch(executor, process_);
    boost::system::error_code failed;
    co_await watch.stream().async_wait(asio::posix::stream_descriptor::wait_read,
                                       asio::redirect_error(asio::use_awaitable, failed));
    if (failed)
        throw std::system_error(failed);
}

std::optional<std::int32_t> ChildProcess::reap() {
    siginfo_t end{};
    // Without hanging: a debugger that holds the child may show its end before it lets go of it.
    if (::waitid(P_PIDFD, static_cast<id_t>(process_.number()), &end, WEXITED | WNOHANG) != 0)
        fail(errno, "waitid");
    if (end.si_pid == 0)
        return std::nullopt;
    isReaped_ = true;
    return end.si_status;
}

} // namespace marrowbox
