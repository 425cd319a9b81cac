#include "Platform/FolderHandle.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace marrowbox {

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

/// A listing of its own, which does not share its position with the handle.
std::unique_ptr<DIR, CloseFolder> openListing(const Descriptor& folder) {
    Descriptor listed(::openat(folder.number(), ".", folderFlags));
    std::unique_ptr<DIR, CloseFolder> listing(listed ? ::fdopendir(listed.number()) : nullptr);
    if (!listing)
        throw std::system_error(errno, std::generic_category(), "open folder");
    listed.release();
    return listing;
}

} // namespace

std::optional<FolderHandle> FolderHandle::open(const fs::path& path) {
    Descriptor folder(::open(path.c_str(), folderFlags));
    if (!folder)
        return std::nullopt;
    return FolderHandle(std::move(folder));
}

std::optional<FolderHandle> FolderHandle::folder(const char* name) const {
    Descriptor inner(::openat(folder_.number(), name, folderFlags));
    if (!inner)
        return std::nullopt;
    return FolderHandle(std::move(inner));
}

std::optional<struct stat> FolderHandle::linkStatus(const char* name) const {
    struct stat status{};
    if (::fstatat(folder_.number(), name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return std::nullopt;
    return status;
}

bool FolderHandle::isLink(const char* name, unsigned char kind) const {
    if (kind != DT_UNKNOWN)
        return kind == DT_LNK;
    const auto status = linkStatus(name);
    return status && S_ISLNK(status->st_mode);
}

void FolderHandle::forEachItem(const std::function<void(const char*, unsigned char)>& take) const {
    const auto listing = openListing(folder_);
    errno = 0;
    while (const dirent* item = ::readdir(listing.get())) {
        take(item->d_name, item->d_type);
        errno = 0;
    }
    if (errno != 0)
        throw std::system_error(errno, std::generic_category(), "read folder");
}

std::vector<std::string> FolderHandle::symbolicLinks() const {
    std::vector<std::string> names;
    forEachItem([&](const char* name, unsigned char kind) {
        if (isLink(name, kind))
            names.emplace_back(name);
    });
    return names;
}

std::vector<FolderHandle::Item> FolderHandle::items() const {
    std::vector<Item> items;
    forEachItem([&](const char* name, unsigned char kind) {
        const std::string_view text = name;
        if (text != "." && text != "..")
            items.push_back({name, isLink(name, kind)});
    });
    return items;
}

void FolderHandle::removeFile(const char* name) const {
    if (::unlinkat(folder_.number(), name, 0) != 0)
        throw std::system_error(errno, std::generic_category(), std::string("remove ") + name);
}

} // namespace marrowbox
