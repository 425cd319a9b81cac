#include "SnapshotMount/MountPointFolder.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "SnapshotMount/MountPaths.h"

namespace marrowbox {

namespace {

constexpr mode_t privateMode = 0700;

/// False when something stands there already.
bool isMade(const fs::path& path) {
    try {
        makeDirectory(path, privateMode);
        return true;
    } catch (const std::system_error& failure) {
        if (failure.code() != std::errc::file_exists)
            throw;
        return false;
    }
}

/// The same; what an earlier volume left makes room, as long as it is an empty folder and nothing is mounted
/// on it.
bool isMadeAnew(const fs::path& path) {
    return isMade(path) || (::rmdir(path.c_str()) == 0 && isMade(path));
}

/// As the desktop's rules want the runtime folder: the user's own, and nobody else puts anything there.
bool isSafeFor(uid_t user, const fs::path& folder) {
    struct stat status{};
    return ::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == user &&
           (status.st_mode & 0022) == 0;
}

} // namespace

fs::path MountPointFolder::place(const std::map<std::string, std::string>& environment, uid_t user) {
    const auto runtime = environment.find("XDG_RUNTIME_DIR");
    if (runtime != environment.end()) {
        const fs::path folder = runtime->second;
        if (folder.is_absolute() && isSafeFor(user, folder))
            return folder / "marrowbox";
    }
    return "/tmp/marrowbox-" + std::to_string(user);
}

void MountPointFolder::prepare() const {
    isMade(path_); // an existing one is judged like a new one
    const auto status = linkStatus(path_);
    const bool isOurs = status && S_ISDIR(status->st_mode) && status->st_uid == user_ &&
                        (status->st_mode & 07777) == privateMode;
    if (!isOurs)
        throw BackupError("Unsafe snapshot mount root was retained.");
}

fs::path MountPointFolder::makeMountPoint(const std::string& volumeName) const {
    const fs::path folder = resolved(path_);
    fs::path candidate = folder / volumeName;
    for (int number = 1; !isMadeAnew(candidate); ++number)
        candidate = folder / (volumeName + " " + std::to_string(number));
    return candidate;
}

void MountPointFolder::removeMountPoint(const fs::path& mountPoint) const {
    if (mountPoint.parent_path() == resolved(path_))
        ::rmdir(mountPoint.c_str());
}

} // namespace marrowbox
