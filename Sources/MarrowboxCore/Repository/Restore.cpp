#include "Models/BackupError.h"
#include "Models/BackupPaths.h"
#include "Repository/BackupRepository.h"
#include "Repository/ParallelWork.h"
#include "Repository/PlainFile.h"

#include <cerrno>
#include <exception>
#include <fcntl.h>

namespace marrowbox {

namespace {

void makeTarget(const fs::path& target) {
    const bool exists = fs::exists(fs::symlink_status(target));
    if (!exists && ::mkdir(target.c_str(), 0777) == 0)
        return;
    if (exists || errno == EEXIST)
        throw BackupError("Choose a new folder for this restored snapshot.");
    throwSystemError("mkdir", target);
}

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

/// A file that replaces nothing, with the object's permissions; whole, or not there at all.
void copyToNewFile(const Descriptor& object, const fs::path& target) {
    const Descriptor copy = openFile(target, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    try {
        copyWithPermissions(object, copy, target);
    } catch (...) {
        // Several copies are under way at a time, and a full disk ends them all in the middle.
        ::unlink(target.c_str());
        throw;
    }
}

class Restoring {
  public:
    Restoring(ObjectPaths objects, fs::path target, std::stop_token stop)
        : objects_(std::move(objects)), target_(std::move(target)), stop_(std::move(stop)) {}

    void restore(const SnapshotEntry& entry) const {
        if (entry.source.isDirectory)
            makeDirectories(target_ / entry.source.path.view());
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
        const fs::path path = target_ / entry.source.path.view();
        makeDirectories(path.parent_path());
        copyToNewFile(opened, path);
    }

    ObjectPaths objects_;
    fs::path target_;
    std::stop_token stop_;
};

} // namespace

void BackupRepository::restore(const Snapshot& snapshot, const fs::path& target, std::stop_token stop) const {
    if (snapshot.unitID != unitID_)
        throw BackupError("Snapshot belongs to another backup unit.");
    BackupPaths::validateEntries(snapshot.entries);
    makeTarget(target);
    const Restoring restoring(objectPaths(), target, std::move(stop));
    ParallelWork workers;
    const auto failed = workers.forEach(
        snapshot.entries.size(), [&](std::size_t index) { restoring.restore(*snapshot.entries[index]); });
    if (failed)
        std::rethrow_exception(failed->failure);
}

} // namespace marrowbox
