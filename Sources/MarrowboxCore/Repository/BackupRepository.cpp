#include "Repository/BackupRepository.h"

#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Models/JSONReader.h"
#include "Platform/PlainFile.h"
#include "Repository/ObjectStatus.h"

#include <boost/describe/class.hpp>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace marrowbox {

namespace {

constexpr std::array folderNames{"Objects", "Snapshots", "Staging"};

/// What tells one unit's repository from another's.
struct Identity {
    std::int64_t format = 1;
    Uuid unitID;

    friend bool operator==(const Identity&, const Identity&) = default;
};
BOOST_DESCRIBE_STRUCT(Identity, (), (format, unitID))

bool isIdentifiedAs(const Identity& expected, const fs::path& file) {
    try {
        return decodeJSON<Identity>(openPlainFile(file)) == expected;
    } catch (const std::exception&) {
        return false;
    }
}

/// A file that nobody sees, where the file system has such. Empty where it has not.
Descriptor openNameless([[maybe_unused]] const fs::path& folder) {
#ifdef O_TMPFILE
    return Descriptor(::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600));
#else
    return {};
#endif
}

uid_t ownerOf(const Descriptor& file, const fs::path& path) {
    struct stat status{};
    if (::fstat(file.number(), &status) != 0)
        throwSystemError("stat", path);
    return status.st_uid;
}

/// To whom belongs what this program makes in a folder.
uid_t ownerOfNewFiles(const fs::path& folder) {
    if (const Descriptor nameless = openNameless(folder))
        return ownerOf(nameless, folder);
    const AtomicFile removedAtOnce(folder / "owner");
    return ownerOf(removedAtOnce.descriptor(), folder);
}

/// Whoever may write to the destination can put a repository of his own in this one's place, and would get
/// all that is backed up. A share that shows every file as some other user's shows new ones so as well.
void requireOwn(const fs::path& root) {
    const auto status = linkStatus(root);
    if (status && status->st_uid != ::geteuid() && status->st_uid != ownerOfNewFiles(root))
        throw BackupError("The backup repository belongs to another user. Nothing in it was changed.");
}

bool isReadableDirectory(const fs::path& path) {
    try {
        return isDirectory(path);
    } catch (const std::system_error&) {
        return false;
    }
}

} // namespace

BackupRepository::BackupRepository(const fs::path& destination, const Uuid& unitID)
    : root_(destination / "Marrowbox" / unitID.text()), unitID_(unitID) {
}

void BackupRepository::initialize() const {
    std::error_code unknown; // what cannot be examined is refused by the steps below, in their own words
    if (fs::exists(root_, unknown)) {
        validate();
        return;
    }
    if (!isDirectory(root_.parent_path().parent_path()))
        throw BackupError("Choose an existing destination folder.");
    rejectSymlink(root_.parent_path());
    makeDirectories(root_, 0700);
    JSONFile::writeDurably(Identity{1, unitID_}, root_ / "Repository.json");
    for (const char* name : folderNames)
        makeDirectory(root_ / name, 0700);
    // Snapshots on stable storage are worth nothing in a repository whose identity a power cut took.
    for (const fs::path& folder : {root_, root_.parent_path(), root_.parent_path().parent_path()})
        synchronizeFolder(folder);
}

void BackupRepository::validate() const {
    rejectSymlink(root_.parent_path());
    rejectSymlink(root_);
    for (const char* name : folderNames)
        rejectSymlink(root_ / name);
    rejectSymlink(root_ / "Repository.json");
    if (!isIdentifiedAs({1, unitID_}, root_ / "Repository.json"))
        throw BackupError(
            "The backup destination is unavailable or its identity changed. Reconnect the original "
            "disk or NAS share.");
    for (const char* name : folderNames)
        if (!isReadableDirectory(root_ / name))
            throw BackupError(
                "The backup repository is incomplete. Restore its missing folders before continuing.");
}

RepositoryLock BackupRepository::lock() const {
    validate();
    requireOwn(root_);
    return RepositoryLock(root_ / ".lock",
                          "This backup is already in use. Wait for the other job to finish.");
}

fs::path BackupRepository::objectURL(const ObjectHash& hash) const {
    requireValid(hash);
    rejectSymlink(objectPaths().fanOut(hash));
    rejectSymlink(objectPaths().object(hash));
    return objectPaths().object(hash);
}

bool BackupRepository::hasObject(const SnapshotEntry& entry) const {
    return ObjectStatus(objectPaths()).hasObject(entry);
}

fs::path BackupRepository::staging(const Uuid& id) const {
    rejectSymlink(root_ / "Staging");
    const fs::path folder = root_ / "Staging" / id.text();
    makeDirectory(folder, 0700);
    return folder;
}

FileDigest BackupRepository::digest(const fs::path& path, std::stop_token stop) {
    return digestFile(path, DigestChoice::sha256AndMD5, std::move(stop));
}

} // namespace marrowbox
