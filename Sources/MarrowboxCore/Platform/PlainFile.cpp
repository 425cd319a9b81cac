#include "Platform/PlainFile.h"

#include <cerrno>
#include <fcntl.h>

namespace marrowbox {

namespace {

Descriptor openWithoutWaiting(const fs::path& path, int flags) {
    Descriptor file = openFile(path, O_RDONLY | O_NONBLOCK | flags);
    struct stat status{};
    if (::fstat(file.number(), &status) != 0)
        throwSystemError("stat", path);
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        throwSystemError("open", path);
    }
    return file;
}

} // namespace

Descriptor openRegularFile(const fs::path& path) {
    return openWithoutWaiting(path, 0);
}

Descriptor openPlainFile(const fs::path& path) {
    return openWithoutWaiting(path, O_NOFOLLOW);
}

} // namespace marrowbox
