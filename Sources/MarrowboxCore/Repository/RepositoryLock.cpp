#include "Repository/RepositoryLock.h"

#include "Models/BackupError.h"
#include "Repository/LockBusyError.h"

#include <fcntl.h>
#include <sys/file.h>
#include <system_error>

namespace marrowbox {

namespace {

Descriptor openLockFile(const fs::path& path) {
    try {
        return openFile(path, O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    } catch (const std::system_error&) {
        throw BackupError("Could not open the backup lock. Check destination permissions.");
    }
}

} // namespace

RepositoryLock::RepositoryLock(const fs::path& path, const std::string& busyMessage)
    : file_(openLockFile(path)) {
    if (::flock(file_.number(), LOCK_EX | LOCK_NB) != 0)
        throw LockBusyError(busyMessage);
}

RepositoryLock& RepositoryLock::operator=(RepositoryLock&& other) noexcept {
    if (this != &other) {
        release();
        file_ = std::move(other.file_);
    }
    return *this;
}

RepositoryLock::~RepositoryLock() {
    release();
}

void RepositoryLock::release() noexcept {
    if (file_)
        ::flock(file_.number(), LOCK_UN);
    file_.close();
}

} // namespace marrowbox
