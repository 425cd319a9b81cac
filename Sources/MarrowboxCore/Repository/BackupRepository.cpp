#include "Repository/BackupRepository.h"

#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Models/JSONReader.h"
#include "Repository/ObjectStatus.h"
#include "Repository/PlainFile.h"

#include <boost/describe/class.hpp>
#include <system_error>

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
    const fs::path folder = root_ / "Staging" / id.text();
    makeDirectory(folder, 0700);
    return folder;
}

FileDigest BackupRepository::digest(const fs::path& path, std::stop_token stop) {
    return digestFile(path, DigestChoice::sha256AndMD5, std::move(stop));
}

} // namespace marrowbox
