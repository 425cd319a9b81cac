#include "Platform/FolderHandle.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <system_error>

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

std::vector<std::string> FolderHandle::symbolicLinks() const {
    std::vector<std::string> names;
    const auto listing = openListing(folder_);
    errno = 0;
    while (const dirent* item = ::readdir(listing.get())) {
        if (isLink(item->d_name, item->d_type))
            names.emplace_back(item->d_name);
        errno = 0;
    }
    if (errno != 0)
        throw std::system_error(errno, std::generic_category(), "read folder");
    return names;
}

} // namespace marrowbox
