#pragma once

#include "Models/ByteString.h"

#include <filesystem>
#include <string>

namespace marrowbox {

/// What a bookmark says of a folder.
struct BookmarkRecord {
    std::filesystem::path path;   ///< Where the folder was, without links.
    std::string volume;           ///< The name of its volume; empty when the volume has none.
    std::filesystem::path inside; ///< Where it lies in the volume, from its root; empty without a volume.

    friend bool operator==(const BookmarkRecord&, const BookmarkRecord&) = default;
};

/// As bytes: the format's name and version and the three fields, each ended by a NUL, which no path holds.
ByteString writeBookmark(const BookmarkRecord& record);

/// Throws BackupError for bytes that writeBookmark did not write.
BookmarkRecord readBookmark(const ByteString& bookmark);

} // namespace marrowbox
