#pragma once

#include "Marrowbox/Platform/BookmarkRecord.h"
#include "Marrowbox/Platform/Desktop.h"
#include "Marrowbox/Platform/MountTable.h"

namespace marrowbox {

/// Where bookmarks look.
struct BookmarkPlaces {
    fs::path mountList = kernelMountList;
    fs::path identifierLinks = "/dev/disk/by-uuid";
};

/// Bytes that find a folder again: its path, its volume, and where it lies in the volume. Throws
/// std::system_error when the folder cannot be examined.
ByteString makeBookmark(const fs::path& folder, const BookmarkPlaces& places = {});

/// The stored path while its volume is there, else the folder's place on the same volume elsewhere, which is
/// the stale case. Only lists are read: a network share that does not answer holds nobody, and whether the
/// folder is still in its volume shows when it is used. Throws BackupError when the volume is not mounted or
/// the bytes are not a bookmark, and std::system_error when the list of mounts cannot be read.
ResolvedBookmark resolveBookmark(const ByteString& bookmark, const BookmarkPlaces& places = {});

} // namespace marrowbox
