#include "Marrowbox/Platform/BookmarkRecord.h"

#include "Models/BackupError.h"

#include <string_view>
#include <vector>

namespace marrowbox {

namespace {

constexpr std::string_view format = "Marrowbox bookmark ";
constexpr std::string_view version = "1";
/// A path of the system's greatest length, twice, and a name.
constexpr std::size_t longestBookmark = 16384;

/// Each field up to the NUL that ends it; none when the last is not ended.
std::vector<std::string> fields(std::string_view bytes) {
    std::vector<std::string> found;
    for (std::size_t end = 0; (end = bytes.find('\0')) != std::string_view::npos;
         bytes.remove_prefix(end + 1))
        found.emplace_back(bytes.substr(0, end));
    return bytes.empty() ? found : std::vector<std::string>();
}

/// An absolute path as the system spells it: no link to follow is left, no "..", no slash too many.
bool isPlain(const std::filesystem::path& path) {
    if (!path.is_absolute() || path.lexically_normal().native() != path.native())
        return false;
    return path == "/" || !path.native().ends_with('/');
}

bool isSound(const BookmarkRecord& record) {
    if (!isPlain(record.path))
        return false;
    if (record.volume.empty())
        return record.inside.empty();
    return isPlain(record.inside);
}

} // namespace

ByteString writeBookmark(const BookmarkRecord& record) {
    ByteString bookmark;
    bookmark.bytes.append(format).append(version);
    for (const std::string& field :
         {std::string(), record.path.native(), record.volume, record.inside.native()})
        bookmark.bytes.append(field).push_back('\0');
    return bookmark;
}

BookmarkRecord readBookmark(const ByteString& bookmark) {
    const auto found =
        bookmark.bytes.size() <= longestBookmark ? fields(bookmark.bytes) : std::vector<std::string>();
    if (found.empty() || !found.front().starts_with(format))
        throw BackupError("The stored destination of this backup could not be read.");
    if (found.front().substr(format.size()) != version)
        throw BackupError("The stored destination of this backup needs a newer Marrowbox version.");
    if (found.size() == 4) {
        BookmarkRecord record{.path = found[1], .volume = found[2], .inside = found[3]};
        if (isSound(record))
            return record;
    }
    throw BackupError("The stored destination of this backup could not be read.");
}

} // namespace marrowbox
