#pragma once

#include "Platform/Descriptor.h"
#include "Platform/Files.h"

#include <string>

namespace marrowbox {

/// An exclusive lock on a file, held for as long as the object lives. It belongs to the open file and not to
/// the process: a second attempt is refused at once, inside this process as well, and the system drops the
/// lock when the process dies. The file is made with mode 0600 when it is missing, and stays.
class RepositoryLock {
  public:
    /// Takes the lock without waiting. Throws LockBusyError with the given sentence when it is held, and
    /// BackupError when the file cannot be opened, for instance because the path is a symbolic link.
    RepositoryLock(const fs::path& path, const std::string& busyMessage);
    RepositoryLock(RepositoryLock&&) noexcept = default;
    RepositoryLock& operator=(RepositoryLock&& other) noexcept;
    ~RepositoryLock();

    int descriptor() const { return file_.number(); }

  private:
    void release() noexcept;

    Descriptor file_;
};

} // namespace marrowbox
