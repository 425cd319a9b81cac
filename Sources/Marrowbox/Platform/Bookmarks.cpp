#include "Marrowbox/Platform/Bookmarks.h"

#include "Marrowbox/Platform/VolumeNames.h"
#include "Models/BackupError.h"
#include "Platform/Files.h"

#include <cstdlib>
#include <memory>

namespace marrowbox {

namespace {

fs::path withoutLinks(const fs::path& folder) {
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    const std::unique_ptr<char, Free> path(::realpath(folder.c_str(), nullptr));
    if (!path)
        throwSystemError("realpath", folder);
    return path.get();
}

/// The folder's place on a mount of its volume that is not covered by another one.
std::optional<fs::path> placeAmong(const std::vector<Mount>& mounts, const VolumeNames& names,
                                   const BookmarkRecord& record) {
    for (const Mount& mount : mounts) {
        if (!isWithin(record.inside, mount.root) || names.name(mount) != record.volume)
            continue;
        fs::path place = moved(record.inside, mount.root, mount.target);
        if (mountHolding(mounts, place) == &mount)
            return place;
    }
    return std::nullopt;
}

bool isAtStoredPath(const Mount& mount, const VolumeNames& names, const BookmarkRecord& record) {
    if (mount.type == "autofs")
        return true; // the volume comes by itself as soon as its path is used
    return names.name(mount) == record.volume &&
           moved(record.path, mount.target, mount.root) == record.inside;
}

} // namespace

ByteString makeBookmark(const fs::path& folder, const BookmarkPlaces& places) {
    BookmarkRecord record{.path = withoutLinks(folder)};
    const auto mounts = readMounts(places.mountList);
    const Mount* mount = mountHolding(mounts, record.path);
    const auto name = mount != nullptr ? VolumeNames(places.identifierLinks).name(*mount) : std::nullopt;
    if (name) {
        record.volume = *name;
        record.inside = moved(record.path, mount->target, mount->root);
    }
    return writeBookmark(record);
}

ResolvedBookmark resolveBookmark(const ByteString& bookmark, const BookmarkPlaces& places) {
    const BookmarkRecord record = readBookmark(bookmark);
    if (record.volume.empty())
        return {.path = record.path};
    const auto mounts = readMounts(places.mountList);
    const VolumeNames names(places.identifierLinks);
    const Mount* mount = mountHolding(mounts, record.path);
    if (mount != nullptr && isAtStoredPath(*mount, names, record))
        return {.path = record.path};
    auto place = placeAmong(mounts, names, record);
    if (!place)
        throw BackupError(
            "The disk or network share of this backup is not connected. Reconnect it and try again.");
    return {.path = std::move(*place), .isStale = true};
}

} // namespace marrowbox
