#include "Support/Stranger.h"

#include "Platform/Files.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace marrowbox::test {

namespace fs = std::filesystem;

namespace {

bool becomeStranger() {
    return ::setgroups(0, nullptr) == 0 && ::setresgid(stranger, stranger, stranger) == 0 &&
           ::setresuid(stranger, stranger, stranger) == 0;
}

void end(pid_t process) {
    if (process <= 0)
        return;
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
}

/// Writes for ever; ends with the process.
[[noreturn]] void fill(int pipe) {
    const std::string bytes(4096, 'x');
    while (::write(pipe, bytes.data(), bytes.size()) > 0 || errno == EINTR) {
    }
    ::_exit(0);
}

} // namespace

std::optional<std::string> reasonForNoStranger() {
    if (::geteuid() != 0)
        return "only the administrator can act as another user";
    return std::nullopt;
}

bool doneByStranger(const std::function<bool()>& work) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(becomeStranger() && work() ? 0 : 1);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void giveToStranger(const fs::path& path) {
    if (::lchown(path.c_str(), stranger, stranger) != 0)
        throwSystemError("lchown", path);
}

void giveTreeToStranger(const fs::path& folder) {
    for (const auto& item : fs::recursive_directory_iterator(folder))
        giveToStranger(item.path());
    giveToStranger(folder);
}

StrangerAtWork::StrangerAtWork(const std::function<bool()>& work) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    Descriptor ready(ends[0]);
    Descriptor say(ends[1]);
    process_ = ::fork();
    if (process_ == 0) {
        if (becomeStranger() && work() && ::write(say.number(), "y", 1) == 1)
            ::pause();
        ::_exit(1);
    }
    say.close();
    char said = 0;
    isReady_ = ::read(ready.number(), &said, 1) == 1;
}

StrangerAtWork::~StrangerAtWork() {
    end(process_);
}

EndlessPipe::EndlessPipe(const fs::path& path) {
    if (::mkfifo(path.c_str(), 0666) != 0)
        throwSystemError("mkfifo", path);
    giveToStranger(path);
    // Open for both, so that the writer neither waits for a reader nor ends with one.
    const Descriptor pipe = openFile(path, O_RDWR);
    process_ = ::fork();
    if (process_ == 0)
        fill(pipe.number());
}

EndlessPipe::~EndlessPipe() {
    end(process_);
}

} // namespace marrowbox::test
