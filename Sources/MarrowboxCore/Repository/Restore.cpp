#include "Models/BackupError.h"
#include "Models/BackupPaths.h"
#include "Platform/OpenInFolder.h"
#include "Platform/PlainFile.h"
#include "Repository/BackupRepository.h"
#include "Repository/ParallelWork.h"
#include "Repository/RestoreTarget.h"

#include <cerrno>
#include <exception>
#include <fcntl.h>

namespace marrowbox {

namespace {

/// A share may show every file as another user's, and a file system may keep no permissions at all. The new
/// file has what they give it, and its bytes are whole.
bool keepsPermissions(int failure) {
    return failure != EPERM && failure != ENOTSUP && failure != ENOSYS;
}

void copyWithPermissions(const Descriptor& object, const Descriptor& copy, const fs::path& target) {
    struct stat status{};
    if (::fstat(object.number(), &status) != 0)
        throwSystemError("stat", target);
    copyContents(object, copy);
    // Whoever can reach the store must not make a program of it run with its owner's rights.
    if (::fchmod(copy.number(), status.st_mode & 0777) != 0 && keepsPermissions(errno))
        throwSystemError("chmod", target);
}

/// A file that replaces nothing, with the object's permissions; whole, or not there at all. The target is its
/// path, for people.
void copyToNewFile(const Descriptor& object, const Descriptor& folder, const fs::path& target) {
    const fs::path name = target.filename();
    const Descriptor copy = openInFolder(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    if (!copy)
        throwSystemError("open", target);
    try {
        copyWithPermissions(object, copy, target);
    } catch (...) {
        // Several copies are under way at a time, and a full disk ends them all in the middle.
        ::unlinkat(folder.number(), name.c_str(), 0);
        throw;
    }
}

class Restoring {
  public:
    Restoring(ObjectPaths objects, const fs::path& target, std::stop_token stop)
        : objects_(std::move(objects)), target_(target), stop_(std::move(stop)) {}

    void restore(const SnapshotEntry& entry) const {
        if (entry.source.isDirectory)
            target_.folder(entry.source.path.view());
        else
            restoreFile(entry);
    }

  private:
    void restoreFile(const SnapshotEntry& entry) const {
        if (!entry.objectHash)
            throw BackupError("A snapshot file reference is missing.");
        requireValid(*entry.objectHash);
        rejectSymlink(objects_.fanOut(*entry.objectHash));
        const fs::path object = objects_.object(*entry.objectHash);
        rejectSymlink(object);
        // The bytes that are proven and those that are copied come from one open file.
        const Descriptor opened = openPlainFile(object);
        if (digestFile(opened, object, DigestChoice::sha256, stop_).sha256 != *entry.objectHash)
            throw BackupError("Integrity verification failed for “" + entry.source.path.string() + "”.");
        const fs::path path = entry.source.path.view();
        copyToNewFile(opened, target_.folder(path.parent_path()), target_.path() / path);
    }

    ObjectPaths objects_;
    RestoreTarget target_;
    std::stop_token stop_;
};

} // namespace

void BackupRepository::restore(const Snapshot& snapshot, const fs::path& target, std::stop_token stop) const {
    if (snapshot.unitID != unitID_)
        throw BackupError("Snapshot belongs to another backup unit.");
    BackupPaths::validateEntries(snapshot.entries);
    const Restoring restoring(objectPaths(), target, std::move(stop));
    ParallelWork workers;
    const auto failed = workers.forEach(
        snapshot.entries.size(), [&](std::size_t index) { restoring.restore(*snapshot.entries[index]); });
    if (failed)
        std::rethrow_exception(failed->failure);
}

} // namespace marrowbox
