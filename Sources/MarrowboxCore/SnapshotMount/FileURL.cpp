#include "SnapshotMount/FileURL.h"

#include "Models/PercentEncoding.h"
#include "SnapshotMount/MountPaths.h"

#include <optional>

namespace marrowbox {

namespace {

constexpr std::string_view scheme = "file://";
/// What stands in the path of a URL without an escape, besides letters and digits.
constexpr std::string_view plainMarks = "/-._~!$&'()*+,:@=";

/// The path of a file URL on this machine, before its escapes are undone.
std::optional<std::string_view> escapedPath(std::string_view text) {
    if (!text.starts_with(scheme))
        return std::nullopt;
    text.remove_prefix(scheme.size());
    if (constexpr std::string_view host = "localhost"; text.starts_with(host))
        text.remove_prefix(host.size());
    if (!text.starts_with('/') || text.find_first_of("?#") != std::string_view::npos)
        return std::nullopt;
    return text;
}

} // namespace

FileURL FileURL::ofFile(const fs::path& path) {
    return {std::string(scheme) + percentEncoded(path.native(), plainMarks)};
}

FileURL FileURL::ofFolder(const fs::path& path) {
    return {std::string(scheme) + percentEncoded(path.native(), plainMarks) + "/"};
}

fs::path FileURL::path() const {
    const auto local = escapedPath(text);
    const auto path = local ? percentDecoded(*local) : std::nullopt;
    if (path && path->find('\0') == std::string::npos) // no path can hold one
        return standardized(*path);
    return "not a file/" + text;
}

} // namespace marrowbox
