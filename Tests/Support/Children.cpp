#include "Support/Children.h"

#include "Platform/Files.h"
#include "Support/SanitizedBuild.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <vector>

namespace marrowbox::test {

namespace fs = std::filesystem;

namespace {

/// A file of /proc; empty when its process has ended.
std::string readStatus(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool goesOn(const fs::path& thread) {
    const std::string status = readStatus(thread / "stat");
    const std::size_t name = status.rfind(") "); // behind a name, which may hold anything
    return name != std::string::npos && (status[name + 2] == 'R' || status[name + 2] == 'D');
}

std::vector<pid_t> childrenOf(const fs::path& thread) {
    std::istringstream numbers(readStatus(thread / "children"));
    return {std::istream_iterator<pid_t>(numbers), {}};
}

/// A sanitizer that looks for the name of a function starts a program for it, which stays.
bool hasOnlyThatOfASanitizer() {
    bool hasThat = false;
    for (const auto& thread : fs::directory_iterator("/proc/self/task"))
        for (const pid_t child : childrenOf(thread.path())) {
            if (readStatus("/proc/" + std::to_string(child) + "/comm") != "llvm-symbolizer\n")
                return false;
            hasThat = true;
        }
    return hasThat;
}

} // namespace

bool hasNoChild() {
    siginfo_t child{};
    if (::waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD)
        return true;
    return isSanitized && hasOnlyThatOfASanitizer();
}

std::size_t openDescriptorCount() {
    // Less the one that reads the folder.
    return directoryNames("/proc/self/fd").size() - 1;
}

bool isAtWork(pid_t process) {
    std::error_code ended;
    fs::directory_iterator thread("/proc/" + std::to_string(process) + "/task", ended);
    for (; thread != fs::directory_iterator(); thread.increment(ended)) {
        if (goesOn(thread->path()))
            return true;
        for (const pid_t child : childrenOf(thread->path()))
            if (isAtWork(child))
                return true;
    }
    return false;
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
