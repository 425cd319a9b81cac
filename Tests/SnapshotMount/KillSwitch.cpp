#include "KillSwitch.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace marrowbox::test {

namespace {

KillRule rule;
std::mutex asking; // a restore copies on several threads

std::string pathOfDescriptor(int descriptor) {
    std::array<char, 4096> target{};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = ::readlink(link.c_str(), target.data(), target.size());
    return length < 0 ? std::string() : std::string(target.data(), static_cast<std::size_t>(length));
}

std::string pathFrom(int folder, const char* path) {
    if (folder == AT_FDCWD || path[0] == '/')
        return path;
    return pathOfDescriptor(folder) + "/" + path;
}

template <typename Path>
void ask(std::string_view call, Path path) {
    if (!rule)
        return;
    const std::lock_guard guard(asking);
    if (rule(call, path()))
        ::kill(::getpid(), SIGKILL);
}

} // namespace

void killBefore(KillRule asked) {
    rule = std::move(asked);
}

} // namespace marrowbox::test

// The linker sends the calls of our own libraries here; the names are its convention.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

using marrowbox::test::ask;
using marrowbox::test::pathFrom;
using marrowbox::test::pathOfDescriptor;

int __real_mkdir(const char* path, mode_t mode);
int __wrap_mkdir(const char* path, mode_t mode) {
    ask("mkdir", [&] { return std::string(path); });
    return __real_mkdir(path, mode);
}

int __real_mkdirat(int folder, const char* path, mode_t mode);
int __wrap_mkdirat(int folder, const char* path, mode_t mode) {
    ask("mkdir", [&] { return pathFrom(folder, path); });
    return __real_mkdirat(folder, path, mode);
}

int __real_rename(const char* from, const char* to);
int __wrap_rename(const char* from, const char* to) {
    ask("rename", [&] { return std::string(to); });
    return __real_rename(from, to);
}

int __real_fsync(int descriptor);
int __wrap_fsync(int descriptor) {
    ask("fsync", [&] { return pathOfDescriptor(descriptor); });
    return __real_fsync(descriptor);
}

ssize_t __real_write(int descriptor, const void* bytes, size_t count);
ssize_t __wrap_write(int descriptor, const void* bytes, size_t count) {
    ask("write", [&] { return pathOfDescriptor(descriptor); });
    return __real_write(descriptor, bytes, count);
}

ssize_t __real_copy_file_range(int from, off_t* fromOffset, int to, off_t* toOffset, size_t count,
                               unsigned flags);
ssize_t __wrap_copy_file_range(int from, off_t* fromOffset, int to, off_t* toOffset, size_t count,
                               unsigned flags) {
    ask("copy", [&] { return pathOfDescriptor(to); });
    return __real_copy_file_range(from, fromOffset, to, toOffset, count, flags);
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
