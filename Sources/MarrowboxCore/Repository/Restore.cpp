#include "Models/BackupError.h"
#include "Models/BackupPaths.h"
<<<<<<< HEAD
=======
#include "Platform/Cancellation.h"
#include "Platform/Digest.h"
>>>>>>> main
#include "Repository/BackupRepository.h"
#include "Repository/ParallelWork.h"
#include "Repository/PlainFile.h"

#include <cerrno>
<<<<<<< HEAD
#include <exception>
#include <fcntl.h>
=======
#include <fcntl.h>
#include <unistd.h>
>>>>>>> main

namespace marrowbox {

namespace {

<<<<<<< HEAD
void makeTarget(const fs::path& target) {
    const bool isMade = !fs::exists(fs::symlink_status(target)) && ::mkdir(target.c_str(), 0777) == 0;
    if (isMade)
        return;
    if (fs::exists(fs::symlink_status(target)))
        throw BackupError("Choose a new folder for this restored snapshot.");
    throwSystemError("mkdir", target);
}

/// A file that replaces nothing, with the object's permissions.
void copyToNewFile(const Descriptor& object, const fs::path& target) {
    struct stat status{};
    if (::fstat(object.number(), &status) != 0)
        throwSystemError("stat", target);
    const Descriptor copy = openFile(target, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    copyContents(object, copy);
    if (::fchmod(copy.number(), status.st_mode & 07777) != 0)
        throwSystemError("chmod", target);
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
=======
/// Up to this size an object is held in memory, so that it is read once for its proof and its copy.
constexpr std::int64_t smallSize = 1 << 20;
/// Files that are proved and copied side by side. A failure may leave those of its own batch behind it.
constexpr std::size_t batchSize = 64;

[[noreturn]] void refuseDamaged(const SnapshotEntry& entry) {
    throw BackupError("Integrity verification failed for “" + entry.source.path.string() + "”.");
}

struct stat statusOf(const Descriptor& file, const fs::path& path) {
    struct stat status{};
    if (::fstat(file.number(), &status) != 0)
        throwSystemError("stat", path);
    return status;
}

/// A new file with the permissions of the object.
Descriptor makeCopy(const fs::path& path, mode_t mode) {
    Descriptor copy = openFile(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if ((mode & 07777) != 0600 && ::fchmod(copy.number(), mode & 07777) != 0)
        throwSystemError("chmod", path);
    return copy;
}

void copyByReading(const Descriptor& from, const Descriptor& to) {
    const auto buffer = std::make_unique_for_overwrite<char[]>(smallSize);
    while (const std::size_t count = readSome(from, {buffer.get(), smallSize}))
        writeAll(to, {buffer.get(), count});
}

/// The file system moves the bytes itself, or shares them, where it can.
void copyBytes(const Descriptor& from, const Descriptor& to, const fs::path& path) {
    if (::lseek(from.number(), 0, SEEK_SET) < 0)
        throwSystemError("seek", path);
    constexpr std::size_t most = 1 << 30;
    bool hasCopied = false;
    while (true) {
        const auto count = ::copy_file_range(from.number(), nullptr, to.number(), nullptr, most, 0);
        if (count == 0)
            return;
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0) {
            if (hasCopied)
                throwSystemError("copy", path);
            return copyByReading(from, to);
        }
        hasCopied = true;
    }
}

class Restore {
  public:
    Restore(const Snapshot& snapshot, const fs::path& target, ObjectPaths objects, std::stop_token stop)
        : snapshot_(snapshot), target_(target), objects_(std::move(objects)), stop_(std::move(stop)) {}

    void run() {
        for (const auto& shared : snapshot_.entries) {
            const SnapshotEntry& entry = *shared;
            if (!entry.source.isDirectory) {
                files_.push_back(&entry);
                if (files_.size() == batchSize)
                    restoreFiles();
                continue;
            }
            // Whatever comes before the folder is there first, as a failure would leave it.
            restoreFiles();
            makeDirectories(target_ / entry.source.path.view());
        }
        restoreFiles();
    }

  private:
    void restoreFiles() {
        const auto failed =
            work_.forEach(files_.size(), [&](std::size_t index) { restoreFile(*files_[index]); });
        files_.clear();
        if (failed)
            std::rethrow_exception(failed->failure);
    }

    void restoreFile(const SnapshotEntry& entry) const {
        throwIfCancelled(stop_);
>>>>>>> main
        if (!entry.objectHash)
            throw BackupError("A snapshot file reference is missing.");
        requireValid(*entry.objectHash);
        rejectSymlink(objects_.fanOut(*entry.objectHash));
        const fs::path object = objects_.object(*entry.objectHash);
        rejectSymlink(object);
<<<<<<< HEAD
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
=======
        // Proof and copy are of the one open file, whatever happens to its name in between.
        const Descriptor from = openPlainFile(object);
        const struct stat status = statusOf(from, object);
        const fs::path to = target_ / entry.source.path.view();
        if (status.st_size <= smallSize)
            restoreSmall(entry, from, to, status.st_mode);
        else
            restoreLarge(entry, from, to, status.st_mode);
    }

    void restoreSmall(const SnapshotEntry& entry, const Descriptor& from, const fs::path& to,
                      mode_t mode) const {
        const std::string bytes = readAll(from);
        if (ObjectHash::ofDigest(sha256(bytes)) != *entry.objectHash)
            refuseDamaged(entry);
        makeDirectories(to.parent_path());
        writeAll(makeCopy(to, mode), bytes);
    }

    void restoreLarge(const SnapshotEntry& entry, const Descriptor& from, const fs::path& to,
                      mode_t mode) const {
        const FileDigest digest =
            digestFile(from, objects_.object(*entry.objectHash), DigestChoice::sha256, stop_);
        if (digest.sha256 != *entry.objectHash)
            refuseDamaged(entry);
        makeDirectories(to.parent_path());
        copyBytes(from, makeCopy(to, mode), to);
    }

    const Snapshot& snapshot_;
    const fs::path& target_;
    ObjectPaths objects_;
    std::stop_token stop_;
    ParallelWork work_;
    std::vector<const SnapshotEntry*> files_;
>>>>>>> main
};

} // namespace

void BackupRepository::restore(const Snapshot& snapshot, const fs::path& target, std::stop_token stop) const {
    if (snapshot.unitID != unitID_)
        throw BackupError("Snapshot belongs to another backup unit.");
    BackupPaths::validateEntries(snapshot.entries);
<<<<<<< HEAD
    makeTarget(target);
    const Restoring restoring(objectPaths(), target, std::move(stop));
    ParallelWork workers;
    const auto failed = workers.forEach(
        snapshot.entries.size(), [&](std::size_t index) { restoring.restore(*snapshot.entries[index]); });
    if (failed)
        std::rethrow_exception(failed->failure);
=======
    struct stat existing{};
    if (::lstat(target.c_str(), &existing) == 0)
        throw BackupError("Choose a new folder for this restored snapshot.");
    if (::mkdir(target.c_str(), 0777) != 0)
        throwSystemError("mkdir", target);
    Restore(snapshot, target, objectPaths(), std::move(stop)).run();
>>>>>>> main
}

} // namespace marrowbox
