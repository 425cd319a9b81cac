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

bool DriveTree::comesAfter(const Step& left, const Step& right) {
    const std::size_t common = std::min(left.name.size(), right.name.size());
    if (const int compared = left.name.compare(0, common, right.name, 0, common); compared != 0)
        return compared > 0;
    // What follows the common part: the rest of a name, the separator, or nothing, which comes first.
    const auto following = [common](const Step& step) {
        if (step.name.size() > common)
            return static_cast<int>(static_cast<unsigned char>(step.name[common]));
        return step.isBelow ? static_cast<int>('/') : -1;
    };
    return following(left) > following(right);
}

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

std::optional<DriveLocation> DriveTree::upcomingFolder(std::size_t distance) const {
    if (distance >= folders_.size() - next_)
        return std::nullopt;
    const DriveLocation& upcoming = folders_[next_ + distance].location;
    if (visited_.contains(upcoming.id))
        return std::nullopt;
    for (std::size_t before = next_ + 1; before < next_ + distance; ++before)
        if (folders_[before].location.id == upcoming.id)
            return std::nullopt;
    return upcoming;
}

void DriveTree::add(std::vector<DriveFile> children) {
    // Taken out, since the list grows while the children are added.
    const Folder folder = std::move(folders_[next_++]);
    const std::string prefix = folder.path.empty() ? "" : folder.path + "/";
    // The order of a file browser, in which the walk goes on and a refusal is told.
    DriveNames::sort(children, order_);
    const std::vector<std::string> names = DriveNames::namesOf(children);
    check(children, names, prefix);
    for (std::size_t index = 0; index < children.size(); ++index) {
        const std::string path = prefix + names[index];
        if (children[index].isFolder())
            addFolder(std::move(children[index]), path, folder.location.sharedDriveID);
        else
            addFile(std::move(children[index]), path);
    }
    levels_.push_back({prefix.size(), entries_.size(), folders_.size()});
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
    // A folder's children are sorted among themselves, which is much less work than to sort all paths.
    std::vector<SourceEntry> sorted;
    sorted.reserve(entries_.size());
    std::vector<std::vector<Step>> open{stepsBelow(0)};
    while (!open.empty()) {
        if (open.back().empty()) {
            open.pop_back();
            continue;
        }
        const Step step = open.back().back();
        open.back().pop_back();
        if (step.isBelow)
            open.push_back(stepsBelow(step.index));
        else
            sorted.push_back(std::move(entries_[step.index]));
    }
    return sorted;
}

/// What a folder contributes in the order of paths, the last first: each child, and all that lies below each
/// folder among them. The two can be apart, since some characters come before the one that separates names.
std::vector<DriveTree::Step> DriveTree::stepsBelow(std::size_t folder) const {
    const Level begin = folder == 0 ? Level{0, 0, 1} : levels_[folder - 1];
    const Level& level = levels_[folder];
    std::vector<Step> steps;
    std::size_t inner = begin.foldersEnd;
    for (std::size_t index = begin.entriesEnd; index < level.entriesEnd; ++index) {
        const std::string_view name = entries_[index].path.view().substr(level.prefixLength);
        steps.push_back({name, index, false});
        if (entries_[index].isDirectory)
            steps.push_back({name, inner++, true});
    }
    std::ranges::sort(steps, comesAfter);
    return steps;
}

} // namespace marrowbox
