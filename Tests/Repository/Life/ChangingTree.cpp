#include "Life/ChangingTree.h"

#include "Platform/Files.h"

#include <charconv>
#include <fcntl.h>

namespace marrowbox::test {

namespace {

constexpr std::size_t filesOfAFolder = 50;
/// A file returns to a content of its past after so many versions.
constexpr std::size_t contentCount = 16;

std::uint64_t numberIn(std::string_view text) {
    std::uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// Up to 2 KB, nothing of which is like any other file's.
std::string contentOfVersion(std::uint64_t file, std::uint64_t version) {
    const std::string line = std::to_string(file) + " as of " + std::to_string(version % contentCount) + "\n";
    const std::uint64_t lines = 1 + (file * 31 + version % contentCount * 7) % 100;
    std::string content;
    for (std::uint64_t index = 0; index < lines; ++index)
        content += line;
    return content;
}

SourceEntry folderNumbered(std::size_t number) {
    return {.id = "folder-" + std::to_string(number),
            .path = "Folder " + std::to_string(number),
            .version = "directory",
            .mimeType = "application/vnd.google-apps.folder",
            .size = 0,
            .isDirectory = true};
}

} // namespace

ChangingTree::ChangingTree(std::size_t fileCount) {
    for (std::size_t number = 0; number <= fileCount / filesOfAFolder; ++number)
        folders_.push_back(folderNumbered(number));
    for (std::size_t number = 0; number < fileCount; ++number)
        files_.push_back(newFile());
}

void ChangingTree::workOn() {
    ++step_;
    const std::size_t count = files_.size();
    change(files_[step_ * 7 % count]);
    change(files_[(step_ * 13 + 5) % count]);
    SourceEntry& renamed = files_[(step_ * 3 + 1) % count];
    renamed.path = pathIn(step_) + "/Renamed " + renamed.id.string() + " at " + std::to_string(step_);
    files_[(step_ * 11 + 2) % count] = newFile();
}

std::vector<SourceEntry> ChangingTree::listing() const {
    std::vector<SourceEntry> listing = folders_;
    listing.insert(listing.end(), files_.begin(), files_.end());
    return listing;
}

std::string ChangingTree::contentOf(const SourceEntry& file) {
    return contentOfVersion(numberIn(file.id.view()), numberIn(file.version.view()));
}

asio::awaitable<std::vector<SourceEntry>> ChangingTree::inventory(std::stop_token) {
    co_return listing();
}

asio::awaitable<void> ChangingTree::download(std::vector<SourceEntry> entries, fs::path folder,
                                             std::stop_token) {
    for (const auto& entry : entries) {
        const fs::path path = folder / entry.path.view();
        makeDirectories(path.parent_path());
        writeAll(openFile(path, O_WRONLY | O_CREAT | O_EXCL), contentOf(entry));
    }
    co_return;
}

std::string ChangingTree::pathIn(std::size_t folder) const {
    return folders_[folder % folders_.size()].path.string();
}

SourceEntry ChangingTree::newFile() {
    SourceEntry file{.id = std::to_string(fileNumber_),
                     .path = pathIn(fileNumber_ / filesOfAFolder) + "/File " + std::to_string(fileNumber_),
                     .mimeType = "application/octet-stream"};
    ++fileNumber_;
    change(file);
    return file;
}

void ChangingTree::change(SourceEntry& file) const {
    file.version = std::to_string(step_);
    file.size = static_cast<std::int64_t>(contentOf(file).size());
}

} // namespace marrowbox::test
