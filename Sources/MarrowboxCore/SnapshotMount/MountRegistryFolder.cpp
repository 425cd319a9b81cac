#include "SnapshotMount/MountRegistryFolder.h"

#include "Models/BackupError.h"
#include "Platform/PlainFile.h"
#include "SnapshotMount/MountPaths.h"

#include <fcntl.h>
#include <set>

namespace marrowbox {

namespace {

/// lstat(2); a failure passes through.
struct stat statusOf(const fs::path& path) {
    struct stat status{};
    if (::lstat(path.c_str(), &status) != 0)
        throwSystemError("lstat", path);
    return status;
}

/// Replaces a file as a whole. Once it returns, a power cut keeps the file, and what is made after it never
/// outlives it.
void writeDurably(const fs::path& path, std::string_view bytes) {
    // Opened before the rename, after which nothing may fail: the file is there.
    const Descriptor folder = openFile(path.parent_path(), O_RDONLY | O_DIRECTORY);
    AtomicFile file(path);
    writeAll(file.descriptor(), bytes);
    synchronize(file.descriptor(), path);
    file.publish();
    // Not every file system can synchronise a folder; the rename stands without it.
    ::fsync(folder.number());
}

/// The number of different values among the entries.
template <typename Value>
std::size_t countOf(const MountRegistry& registry, Value value) {
    std::set<decltype(value(registry.entries.front()))> values;
    for (const MountEntry& entry : registry.entries)
        values.insert(value(entry));
    return values.size();
}

bool hasDoubledIdentity(const MountRegistry& registry) {
    const std::size_t count = registry.entries.size();
    return countOf(registry, [](const MountEntry& entry) { return entry.id; }) < count ||
           countOf(
               registry, [](const MountEntry& entry) { return entry.workingDirectory.path(); }) < count ||
           countOf(registry, [](const MountEntry& entry) { return entry.image.path(); }) < count;
}

} // namespace

MountRegistryFolder::MountRegistryFolder(const fs::path& directory,
                                         std::shared_ptr<SnapshotMountSystem> machine)
    : directory_(standardized(directory)), workRoot_(directory_ / "MountWork"),
      registryFile_(directory_ / "mounts.json"), machine_(std::move(machine)) {
}

void MountRegistryFolder::ensureDirectories() const {
    // A link or a foreign folder is refused before anything is made, which would land on its far side.
    const auto status = linkStatus(directory_);
    const bool isOwn = status && !S_ISLNK(status->st_mode) && isOwnedByCurrentUser(directory_);
    if (status ? !isOwn : isInFolderOfAnother(directory_))
        throw BackupError("Unsafe snapshot mount root was retained.");
    makeDirectories(workRoot_, 0700);
    for (const fs::path& root : {directory_, workRoot_}) {
        refuseUnsafeRoot(root);
        if (!isOwnedByCurrentUser(root))
            throw BackupError("Unsafe snapshot mount root was retained.");
    }
    if (!somethingExists(registryFile_))
        return;
    if (!S_ISREG(statusOf(registryFile_).st_mode) || !isOwnedByCurrentUser(registryFile_))
        throw BackupError("Unsafe snapshot mount registry was retained.");
}

RepositoryLock MountRegistryFolder::lock() const {
    return RepositoryLock(directory_ / "mounts.lock",
                          "Another snapshot mount operation is still finishing. Try again in a moment.");
}

MountRegistry MountRegistryFolder::load() const {
    if (!somethingExists(registryFile_))
        return {};
    auto registry = decodeJSON<MountRegistry>(openPlainFile(registryFile_));
    if (registry.version != 1)
        throw BackupError("Unsupported snapshot mount registry; no files were changed.");
    if (hasDoubledIdentity(registry))
        throw BackupError("Duplicate snapshot mount registry identity; no files were changed.");
    return registry;
}

void MountRegistryFolder::save(const MountRegistry& registry) const {
    makeDirectories(directory_, 0700);
    writeDurably(registryFile_, encodeMountRegistry(registry));
}

void MountRegistryFolder::writeMarker(const MountEntry& entry) const {
    writeDurably(entry.workingDirectory.path() / markerName, encodeMountMarker(entry));
}

MountEntry MountRegistryFolder::readMarker(const fs::path& workFolder) const {
    return decodeJSON<MountEntry>(openPlainFile(workFolder / markerName));
}

void MountRegistryFolder::validate(const MountEntry& entry, MarkerCheck markerCheck) const {
    refuseUnsafeRoot(directory_);
    refuseUnsafeRoot(workRoot_);
    const fs::path workFolder = entry.workingDirectory.path();
    if (workFolder.parent_path() != workRoot_ || entry.image.path() != workFolder / imageName)
        throw BackupError("Invalid snapshot mount identity was retained.");
    if (resolved(workFolder).parent_path() != resolved(workRoot_))
        throw BackupError("Escaping snapshot mount path was retained.");
    if (markerCheck == MarkerCheck::notRequired)
        return;
    const fs::path marker = workFolder / markerName;
    for (const fs::path& path : {workFolder, marker, entry.image.path()})
        refuseForeignData(path);
    if (!S_ISREG(statusOf(marker).st_mode))
        throw BackupError("Invalid snapshot mount marker was retained.");
    refuseMarkerOfAnother(entry);
}

bool MountRegistryFolder::validateWhereItStands(const MountEntry& entry) const {
    const bool exists = somethingExists(entry.workingDirectory.path());
    validate(entry, exists ? MarkerCheck::required : MarkerCheck::notRequired);
    return exists;
}

void MountRegistryFolder::forget(const MountEntry& entry) const {
    MountRegistry registry = load();
    std::erase_if(registry.entries, [&](const MountEntry& held) {
        return held.id == entry.id && held.workingDirectory.path() == entry.workingDirectory.path();
    });
    save(registry);
}

bool MountRegistryFolder::hasNestedMount(const fs::path& folder) const {
    const auto points = machine_->mountPoints();
    if (!points || points->empty())
        return true;
    // The system lists mount points with their links resolved, and asking a dead share could hang.
    const fs::path root = resolved(folder);
    return std::ranges::any_of(*points,
                               [&](const fs::path& point) { return isAtOrBelow(standardized(point), root); });
}

bool MountRegistryFolder::isOwnedByCurrentUser(const fs::path& path) const {
    return machine_->owner(path) == machine_->currentUser();
}

bool MountRegistryFolder::isInFolderOfAnother(const fs::path& path) const {
    const fs::path above = resolved(path.parent_path());
    if (!somethingExists(above))
        return false;
    const uid_t owner = machine_->owner(above);
    return owner != machine_->currentUser() && owner != 0; // the administrator can do everything anyway
}

void MountRegistryFolder::refuseUnsafeRoot(const fs::path& path) const {
    if (!S_ISDIR(statusOf(path).st_mode))
        throw BackupError("Unsafe snapshot mount root was retained.");
}

void MountRegistryFolder::refuseForeignData(const fs::path& path) const {
    if (somethingExists(path) && (isSymbolicLink(path) || !isOwnedByCurrentUser(path)))
        throw BackupError("Untrusted snapshot mount data was retained.");
}

void MountRegistryFolder::refuseMarkerOfAnother(const MountEntry& entry) const {
    const MountEntry marker = readMarker(entry.workingDirectory.path());
    const bool agrees = marker.id == entry.id && marker.unitID == entry.unitID &&
                        marker.displayName == entry.displayName &&
                        marker.workingDirectory.path() == entry.workingDirectory.path() &&
                        marker.image.path() == entry.image.path();
    if (!agrees)
        throw BackupError("Mismatched snapshot mount marker was retained.");
}

} // namespace marrowbox
