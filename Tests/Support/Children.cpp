#include "Support/Children.h"

#include "Platform/Files.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace marrowbox::test {

bool hasNoChild() {
    siginfo_t child{};
    return ::waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD;
}

std::size_t openDescriptorCount() {
    // Less the one that reads the folder.
    return directoryNames("/proc/self/fd").size() - 1;
}

NamedPipe::NamedPipe(std::filesystem::path path) : path_(std::move(path)) {
    if (::mkfifo(path_.c_str(), 0600) != 0)
        throwSystemError("mkfifo", path_);
}

std::string NamedPipe::read() const {
    return readFile(path_);
}

void NamedPipe::write(std::string_view bytes) const {
    writeAll(openFile(path_, O_WRONLY), bytes);
}

Descriptor NamedPipe::hold() const {
    return openFile(path_, O_RDWR);
}

} // namespace marrowbox::test
