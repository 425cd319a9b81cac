#include "Support/WatchedProgram.h"

#include "Platform/Files.h"
#include "Support/Children.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <linux/audit.h>
#include <linux/filter.h>
#include <poll.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <system_error>

namespace marrowbox::test {

namespace {

/// A program that is not at work after so long without a call waits for an answer.
constexpr int quietMilliseconds = 2;
/// One that works on for so many times as long makes no calls.
constexpr int longestWork = 1000;

class WatchingRefused : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

[[noreturn]] void throwError(const char* call) {
    throw std::system_error(errno, std::generic_category(), call);
}

/// A filter that hands the calls of these numbers to the watcher and lets all others pass.
std::vector<sock_filter> filterOf(const std::vector<int>& numbers) {
    std::vector<sock_filter> filter{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const int number : numbers) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(number), 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    return filter;
}

/// One message that carries a descriptor between two processes.
struct DescriptorMessage {
    DescriptorMessage() {
        header.msg_iov = &text;
        header.msg_iovlen = 1;
        header.msg_control = control.data();
        header.msg_controllen = control.size();
    }
    char letter = 0;
    iovec text{&letter, 1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr header{};
};

bool sendDescriptor(int socket, int descriptor) {
    DescriptorMessage message;
    cmsghdr* part = CMSG_FIRSTHDR(&message.header);
    part->cmsg_level = SOL_SOCKET;
    part->cmsg_type = SCM_RIGHTS;
    part->cmsg_len = CMSG_LEN(sizeof descriptor);
    std::memcpy(CMSG_DATA(part), &descriptor, sizeof descriptor);
    return ::sendmsg(socket, &message.header, 0) == 1;
}

/// The descriptor that the other side sends; empty when it ends without sending one.
Descriptor receiveDescriptor(int socket) {
    DescriptorMessage message;
    if (::recvmsg(socket, &message.header, MSG_CMSG_CLOEXEC) != 1)
        return {};
    const cmsghdr* part = CMSG_FIRSTHDR(&message.header);
    int descriptor = -1;
    if (part != nullptr)
        std::memcpy(&descriptor, CMSG_DATA(part), sizeof descriptor);
    return Descriptor(descriptor);
}

/// Between fork and exec: nothing here may allocate, and once the filter stands, no watched call be made.
[[noreturn]] void becomeWatched(int socket, int errors, sock_fprog filter, char* const* arguments) {
    ::dup2(errors, STDERR_FILENO);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    const long calls =
        ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter);
    if (calls >= 0 && sendDescriptor(socket, static_cast<int>(calls))) {
        ::close(static_cast<int>(calls));
        ::execv(arguments[0], arguments);
    }
    ::_exit(127);
}

} // namespace

std::optional<std::string> reasonForNoWatching() {
    try {
        WatchedProgram({"/bin/true"}).run([](const FileCall&) { return Answer::proceed(); });
        return std::nullopt;
    } catch (const WatchingRefused& refusal) {
        return refusal.what();
    }
}

WatchedProgram::WatchedProgram(const std::vector<std::string>& words)
    : errors_(::memfd_create("errors", MFD_CLOEXEC)) {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        throwError("socketpair");
    const Descriptor ours(ends[0]);
    Descriptor theirs(ends[1]);
    std::vector<sock_filter> filter = filterOf(fileCallNumbers());
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    child_ = ::fork();
    if (child_ == 0)
        becomeWatched(theirs.number(), errors_.number(),
                      {static_cast<unsigned short>(filter.size()), filter.data()}, arguments.data());
    if (child_ < 0)
        throwError("fork");
    theirs.close();
    process_ = Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, child_, 0)));
    calls_ = receiveDescriptor(ours.number());
    if (process_ && calls_)
        return;
    ::kill(child_, SIGKILL);
    status();
    throw WatchingRefused("This machine does not let one process watch another's system calls.");
}

WatchedProgram::~WatchedProgram() {
    if (child_ < 0)
        return;
    ::kill(child_, SIGKILL);
    status();
}

int WatchedProgram::run(const std::function<Answer(const FileCall&)>& decide) {
    std::array<pollfd, 2> waits{pollfd{calls_.number(), POLLIN, 0}, pollfd{process_.number(), POLLIN, 0}};
    const auto poll = [&](int milliseconds) {
        const int ready = ::poll(waits.data(), waits.size(), milliseconds);
        if (ready < 0 && errno != EINTR)
            throwError("poll");
        return ready != 0;
    };
    int silences = 0;
    while (true) {
        const bool moved = poll(held_.empty() ? -1 : quietMilliseconds);
        silences = moved ? 0 : silences + 1;
        if ((waits[1].revents & POLLIN) != 0)
            return status();
        if ((waits[0].revents & POLLIN) != 0)
            answerNext(decide);
        // One that was at work a moment ago may have asked since.
        else if (!moved && (silences > longestWork || (!isAtWork(child_) && !poll(0))))
            answerHeld(decide);
    }
}

void WatchedProgram::answerNext(const std::function<Answer(const FileCall&)>& decide) {
    seccomp_notif question{};
    if (::ioctl(calls_.number(), SECCOMP_IOCTL_NOTIF_RECV, &question) != 0) {
        if (errno == ENOENT || errno == EINTR) // the caller was killed meanwhile
            return;
        throwError("receive a call");
    }
    ask(question, false, decide);
}

void WatchedProgram::answerHeld(const std::function<Answer(const FileCall&)>& decide) {
    const seccomp_notif question = held_.front();
    held_.pop_front();
    ask(question, true, decide);
}

void WatchedProgram::ask(const seccomp_notif& question, bool wasHeld,
                         const std::function<Answer(const FileCall&)>& decide) {
    std::optional<FileCall> call = readFileCall(question.data, static_cast<pid_t>(question.pid));
    if (call)
        call->wasHeld = wasHeld;
    reply(question, call ? decide(*call) : Answer::proceed());
}

void WatchedProgram::reply(const seccomp_notif& question, Answer answer) {
    seccomp_notif_resp response{};
    response.id = question.id;
    switch (answer.kind_) {
    case Answer::Kind::kill:
        ::kill(child_, SIGKILL);
        return;
    case Answer::Kind::whenQuiet:
        held_.push_back(question);
        return;
    case Answer::Kind::fail:
        response.error = -answer.error_;
        break;
    case Answer::Kind::writeHalf:
        response.val = static_cast<std::int64_t>(writeHalf(question));
        [[fallthrough]];
    case Answer::Kind::proceed:
        if (response.val == 0)
            response.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
    }
    if (::ioctl(calls_.number(), SECCOMP_IOCTL_NOTIF_SEND, &response) != 0 && errno != ENOENT)
        throwError("answer a call");
}

std::string WatchedProgram::words() const {
    ::lseek(errors_.number(), 0, SEEK_SET);
    return readAll(errors_);
}

std::size_t WatchedProgram::writeHalf(const seccomp_notif& question) {
    const auto& [number, address, size] =
        std::tie(question.data.args[0], question.data.args[1], question.data.args[2]);
    if (question.data.nr != SYS_write || size < 2)
        return 0;
    // The same open file, so that its position moves for the program as well.
    const Descriptor file(
        static_cast<int>(::syscall(SYS_pidfd_getfd, process_.number(), static_cast<int>(number), 0)));
    std::string bytes(size / 2, '\0');
    const iovec into{bytes.data(), bytes.size()};
    const iovec from{reinterpret_cast<void*>(address), bytes.size()}; // NOLINT(performance-no-int-to-ptr)
    if (!file || ::process_vm_readv(child_, &into, 1, &from, 1, 0) != static_cast<ssize_t>(bytes.size()))
        throwError("read the bytes of a write");
    const ssize_t written = ::write(file.number(), bytes.data(), bytes.size());
    if (written < 0)
        throwError("write");
    return static_cast<std::size_t>(written);
}

int WatchedProgram::status() {
    int status = 0;
    while (::waitpid(child_, &status, 0) < 0 && errno == EINTR)
        ;
    child_ = -1;
    return status;
}

} // namespace marrowbox::test
