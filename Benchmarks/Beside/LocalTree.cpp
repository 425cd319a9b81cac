#include "Beside/LocalTree.h"

#include "Measuring/StoredFiles.h"
#include "Models/JSONFile.h"
#include "Platform/Digest.h"
#include "Platform/Files.h"

#include <cstdio>
#include <fcntl.h>

namespace marrowbox::bench {

namespace {

fs::path digestsOf(const fs::path& tree) {
    return tree.string() + ".digests";
}

SourceEntry entryOf(const fs::path& path, const std::string& relative) {
    const auto status = linkStatus(path);
    if (!status)
        throwSystemError("lstat", path);
    SourceEntry entry;
    entry.id = relative;
    entry.path = relative;
    entry.isDirectory = S_ISDIR(status->st_mode);
    if (entry.isDirectory)
        return entry;
    entry.version = std::to_string(status->st_mtim.tv_sec) + "." + std::to_string(status->st_mtim.tv_nsec);
    entry.mimeType = "application/octet-stream";
    entry.size = status->st_size;
    return entry;
}

} // namespace

double TreeShape::bytes() const {
    return double(files) * double(fileSize) + double(largeFiles) * double(largeSize);
}

std::string TreeShape::words() const {
    char text[120];
    std::snprintf(text, sizeof text, "%zu files of %zu KB and %zu of %zu MB, %.0f MB in all", files,
                  fileSize >> 10, largeFiles, largeSize >> 20, bytes() / (1 << 20));
    return text;
}

LocalTree::LocalTree(fs::path folder, TreeShape shape) : folder_(std::move(folder)), shape_(shape) {
    for (std::size_t number = 0; number < shape_.files + shape_.largeFiles; ++number)
        write(number);
    writeDigests();
}

void LocalTree::changeOneIn(std::size_t step) {
    // Other files than the last time.
    for (std::size_t number = writes_ % step; number < shape_.files; number += step)
        write(number);
    writeDigests();
}

void LocalTree::write(std::size_t number) {
    const std::size_t size = number < shape_.files ? shape_.fileSize : shape_.largeSize;
    const std::string content = contentOf(++writes_, size);
    const fs::path path = folder_ / treePath(number);
    makeDirectories(path.parent_path());
    writeAll(openFile(path, O_WRONLY | O_CREAT | O_TRUNC), content);
    Digest md5 = Digest::md5();
    md5.update(content);
    digests_[treePath(number).string()] = hexadecimal(md5.finish());
}

void LocalTree::writeDigests() const {
    JSONFile::write(digests_, digestsOf(folder_));
}

LocalTreeSource::LocalTreeSource(fs::path folder)
    : folder_(std::move(folder)),
      digests_(JSONFile::read<std::map<std::string, std::string>>(digestsOf(folder_))) {
}

asio::awaitable<std::vector<SourceEntry>> LocalTreeSource::inventory(std::stop_token) {
    std::vector<SourceEntry> listing;
    for (const auto& found : fs::recursive_directory_iterator(folder_)) {
        const std::string relative = found.path().string().substr(folder_.string().size() + 1);
        SourceEntry entry = entryOf(found.path(), relative);
        if (!entry.isDirectory)
            entry.md5 = SharedText(digests_.at(relative));
        listing.push_back(std::move(entry));
    }
    co_return listing;
}

asio::awaitable<void> LocalTreeSource::download(std::vector<SourceEntry> entries, fs::path folder,
                                                std::stop_token) {
    for (const auto& entry : entries) {
        const fs::path target = folder / entry.path.view();
        makeDirectories(target.parent_path());
        copyContents(openFile(folder_ / entry.path.view(), O_RDONLY),
                     openFile(target, O_WRONLY | O_CREAT | O_EXCL));
    }
    co_return;
}

} // namespace marrowbox::bench
