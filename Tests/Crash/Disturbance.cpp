#include "Disturbance.h"

#include <cerrno>

namespace marrowbox::test {

namespace {

/// What a signal interrupts: of all other calls the kernel never says so.
bool isInterruptible(const FileCall& call) {
    for (const std::string_view name : {"open", "openat", "write", "pwrite64", "fsync", "copy_file_range"})
        if (call.name == name)
            return true;
    return false;
}

} // namespace

bool Disturbance::suits(const FileCall& call) const {
    return !isBorne || isInterruptible(call);
}

std::vector<Disturbance> disturbances() {
    return {{"Kill", Answer::kill(), false},
            {"FullDisk", Answer::fail(ENOSPC), false},
            {"BrokenDisk", Answer::fail(EIO), false},
            {"ReadOnlyDisk", Answer::fail(EROFS), false},
            {"Signal", Answer::fail(EINTR), true, true},
            {"ShortWrite", Answer::writeHalf(), true}};
}

} // namespace marrowbox::test
