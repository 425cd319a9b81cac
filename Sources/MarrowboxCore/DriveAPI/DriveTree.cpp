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

SharedText versionOf(const DriveFile& file) {
    return file.version ? *file.version : *file.modifiedTime;
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

std::optional<DriveLocation> DriveTree::upcomingFolder() const {
    if (next_ + 1 >= folders_.size() || visited_.contains(folders_[next_ + 1].location.id))
        return std::nullopt;
    return folders_[next_ + 1].location;
}

void DriveTree::add(std::vector<DriveFile> children) {
    // Taken out, since the list grows while the children are added.
    const Folder folder = std::move(folders_[next_++]);
    const std::string prefix = folder.path.empty() ? "" : folder.path + "/";
    std::vector<std::string> names;
    try {
        names = DriveNames::namesOf(children);
        check(children, names, prefix);
    } catch (const BackupError&) {
        // Of several reasons to refuse a folder, the one that comes first in a file browser is told.
        DriveNames::sort(children, order_);
        check(children, DriveNames::namesOf(children), prefix);
        throw;
    }
    for (std::size_t place = 0; place < children.size(); ++place)
        if (!children[place].isFolder())
            addFile(std::move(children[place]), prefix + names[place]);
    for (const std::uint32_t place : foldersInOrder(children))
        addFolder(std::move(children[place]), prefix + names[place], folder.location.sharedDriveID);
}

/// Where the folders stand among the children, in the order in which the walk goes on.
std::vector<std::uint32_t> DriveTree::foldersInOrder(std::span<const DriveFile> children) const {
    std::vector<std::uint32_t> places;
    for (std::uint32_t place = 0; place < children.size(); ++place)
        if (children[place].isFolder())
            places.push_back(place);
    DriveNames::sortPlaces(places, children, order_);
    return places;
}

void DriveTree::check(std::span<const DriveFile> children, std::span<const std::string> names,
                      const std::string& prefix) const {
    for (std::size_t index = 0; index < children.size(); ++index) {
        const DriveFile& child = children[index];
        if (child.isFolder())
            continue;
        if (!mayDownload(child))
            throw BackupError("Google does not permit downloading “" + prefix + names[index] +
                              "”. Ask its owner to allow downloads.");
        if (!child.version && !child.modifiedTime)
            throw BackupError("Google did not provide a version for “" + prefix + names[index] + "”.");
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
    SharedText version = versionOf(child);
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
