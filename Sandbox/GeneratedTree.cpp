#include "Sandbox/GeneratedTree.h"

#include <algorithm>
#include <charconv>

namespace marrowbox::sandbox {

namespace {

std::string numbered(std::string_view word, std::int64_t number) {
    const std::string digits = std::to_string(number);
    std::string text(word);
    text.append(digits.size() < 7 ? 7 - digits.size() : 0, '0');
    return text + digits;
}

} // namespace

GeneratedItems::GeneratedItems(GeneratedTree shape, std::string prefix, std::string rootID,
                               std::string driveID)
    : shape_(shape), prefix_(std::move(prefix)), rootID_(std::move(rootID)), driveID_(std::move(driveID)) {
}

std::optional<GeneratedItems::Place> GeneratedItems::place(std::string_view id) const {
    if (id == rootID_)
        return Place{'r', -1};
    if (!id.starts_with(prefix_) || id.size() < prefix_.size() + 2)
        return std::nullopt;
    const std::string_view digits = id.substr(prefix_.size() + 1);
    Place found{id[prefix_.size()], -1};
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), found.number);
    const std::int64_t count = found.kind == 'd'   ? shape_.folders
                               : found.kind == 'f' ? shape_.folders * shape_.filesPerFolder
                                                   : 0;
    const bool isWhole = error == std::errc{} && end == digits.data() + digits.size();
    if (!isWhole || found.number < 0 || found.number >= count)
        return std::nullopt;
    return found;
}

std::int64_t GeneratedItems::firstSubfolder(Place folder) const {
    return shape_.foldersPerFolder == 0 ? 0 : (folder.number + 1) * shape_.foldersPerFolder;
}

std::int64_t GeneratedItems::subfolderCount(Place folder) const {
    if (folder.kind == 'f')
        return 0;
    if (shape_.foldersPerFolder == 0)
        return folder.kind == 'r' ? shape_.folders : 0;
    return std::clamp<std::int64_t>(shape_.folders - firstSubfolder(folder), 0, shape_.foldersPerFolder);
}

std::string GeneratedItems::folderID(std::int64_t number) const {
    return prefix_ + "d" + std::to_string(number);
}

std::string GeneratedItems::parentOf(std::int64_t folderNumber) const {
    if (shape_.foldersPerFolder == 0 || folderNumber < shape_.foldersPerFolder)
        return rootID_;
    return folderID(folderNumber / shape_.foldersPerFolder - 1);
}

std::int64_t GeneratedItems::childCount(std::string_view folderID) const {
    const auto found = place(folderID);
    if (!found)
        return 0;
    return subfolderCount(*found) + (found->kind == 'd' ? shape_.filesPerFolder : 0);
}

DriveItem GeneratedItems::child(std::string_view folderID, std::int64_t index) {
    const Place parent = place(folderID).value();
    const std::int64_t subfolders = subfolderCount(parent);
    if (index < subfolders)
        return folder(firstSubfolder(parent) + index);
    return file(parent.number * shape_.filesPerFolder + index - subfolders);
}

std::optional<DriveItem> GeneratedItems::find(std::string_view id) {
    const auto found = place(id);
    if (!found || found->kind == 'r')
        return std::nullopt;
    return found->kind == 'd' ? folder(found->number) : file(found->number);
}

DriveItem GeneratedItems::folder(std::int64_t number) const {
    DriveItem item;
    item.id = folderID(number);
    item.name = numbered("folder ", number);
    item.mimeType = folderType;
    item.parents = {parentOf(number)};
    item.driveID = driveID_;
    item.version = "1";
    item.modifiedTime = "2026-01-01T00:00:00.000Z";
    return item;
}

DriveItem GeneratedItems::file(std::int64_t number) {
    const std::int64_t contentNumber =
        shape_.distinctContents > 0 ? number % shape_.distinctContents : number;
    DriveItem item;
    item.id = prefix_ + "f" + std::to_string(number);
    item.name = numbered("file ", number) + ".bin";
    item.mimeType = "application/octet-stream";
    item.parents = {folderID(number / shape_.filesPerFolder)};
    item.driveID = driveID_;
    item.version = "1";
    item.modifiedTime = "2026-01-01T00:00:00.000Z";
    item.content = Content::pattern(static_cast<std::uint64_t>(contentNumber), shape_.fileBytes);
    item.size = std::to_string(shape_.fileBytes);
    item.md5Checksum = digestOf(contentNumber, item.content);
    return item;
}

std::string GeneratedItems::digestOf(std::int64_t contentNumber, const Content& content) {
    if (shape_.distinctContents == 0)
        return content.md5();
    std::string& digest = digests_[contentNumber];
    if (digest.empty())
        digest = content.md5();
    return digest;
}

} // namespace marrowbox::sandbox
