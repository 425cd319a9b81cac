#include "DriveAPI/DriveTree.h"

#include "DriveAPI/DriveNames.h"
#include "Models/BackupError.h"
#include "Models/BackupPaths.h"

#include <charconv>

namespace marrowbox {

namespace {

constexpr std::int64_t unknownSize = -1;

std::int64_t sizeOf(const DriveFile& file) {
    if (!file.size)
        return unknownSize;
    std::string_view digits = file.size->view();
    if (digits.starts_with('+') && !digits.starts_with("+-"))
        digits.remove_prefix(1);
    std::int64_t size = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), size);
    return error == std::errc() && end == digits.data() + digits.size() ? size : unknownSize;
}

SharedText versionOf(const DriveFile& file, const std::string& path) {
    if (file.version)
        return *file.version;
    if (file.modifiedTime)
        return *file.modifiedTime;
    throw BackupError("Google did not provide a version for “" + path + "”.");
}

bool mayDownload(const DriveFile& file) {
    return !file.capabilities || file.capabilities->canDownload.value_or(true);
}

} // namespace

DriveTree::DriveTree(DriveLocation location, const DriveFile& source) {
    if (source.trashed.value_or(false) || !source.isFolder())
        throw BackupError("The source folder is unavailable or in the Google Drive trash.");
    folders_.push_back({std::move(location), ""});
}

std::optional<DriveLocation> DriveTree::nextFolder() {
    if (next_ == folders_.size())
        return std::nullopt;
    const DriveLocation& location = folders_[next_].location;
    // Also a folder with two parents, which would be backed up twice.
    if (!visited_.insert(location.id).second)
        throw BackupError("A folder cycle was found in Google Drive.");
    return location;
}

void DriveTree::add(std::vector<DriveFile> children) {
    // Taken out, since the list grows while the children are added.
    const Folder folder = std::move(folders_[next_++]);
    const std::vector<std::string> names = DriveNames::namesOf(children);
    const std::string prefix = folder.path.empty() ? "" : folder.path + "/";
    for (std::size_t index = 0; index < children.size(); ++index) {
        const std::string path = prefix + names[index];
        if (children[index].isFolder())
            addFolder(std::move(children[index]), path, folder.location.sharedDriveID);
        else
            addFile(std::move(children[index]), path);
    }
}

void DriveTree::addFolder(DriveFile child, const std::string& path,
                          const std::optional<std::string>& sharedDriveID) {
    folders_.push_back({{child.id.string(), std::move(child.name), sharedDriveID}, path});
    entries_.push_back({.id = std::move(child.id),
                        .path = path,
                        .version = types_.shared("directory"),
                        .mimeType = types_.shared(child.mimeType),
                        .size = 0,
                        .md5 = std::move(child.md5Checksum),
                        .isDirectory = true});
}

void DriveTree::addFile(DriveFile child, const std::string& path) {
    if (!mayDownload(child))
        throw BackupError("Google does not permit downloading “" + path +
                          "”. Ask its owner to allow downloads.");
    SharedText version = versionOf(child, path);
    const std::int64_t size = sizeOf(child);
    entries_.push_back({.id = std::move(child.id),
                        .path = path,
                        .version = std::move(version),
                        .mimeType = types_.shared(child.mimeType),
                        .size = size,
                        .md5 = std::move(child.md5Checksum),
                        .isDirectory = false});
}

std::vector<SourceEntry> DriveTree::finish() {
    BackupPaths::validateEntries(entries_);
    std::ranges::sort(entries_, {}, &SourceEntry::path);
    return std::move(entries_);
}

} // namespace marrowbox
