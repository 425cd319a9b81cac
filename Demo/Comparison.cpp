#include "Demo/Comparison.h"

#include "Demo/PortableName.h"
#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Platform/Files.h"

#include <algorithm>
#include <fcntl.h>
#include <set>

namespace marrowbox::demo {

namespace {

constexpr std::int64_t pieceSize = 1 << 20;

[[noreturn]] void differs(const fs::path& path, const std::string& how) {
    throw BackupError("“" + path.string() + "” " + how);
}

/// Takes the one name that shows the item out of the names that are left.
std::string takeName(std::set<std::string>& names, const fs::path& folder, const DrivePicture& item) {
    const auto shows = [&](const std::string& name) { return isNameOf(name, item); };
    const auto found = std::ranges::find_if(names, shows);
    if (found == names.end())
        differs(folder, "lacks “" + item.name + "” of Google Drive.");
    if (std::ranges::count_if(names, shows) > 1)
        differs(folder, "holds “" + item.name + "” of Google Drive more than once.");
    return names.extract(found).value();
}

/// A piece at a time, since neither side need fit into memory.
void compareFile(const fs::path& path, const sandbox::Content& content, const std::stop_token& stop) {
    if (regularFileSize(path) != content.size())
        differs(path, "is no file of the size that Google Drive held.");
    const Descriptor file = openFile(path, O_RDONLY);
    std::string found(pieceSize, 0);
    std::string expected(pieceSize, 0);
    for (std::int64_t offset = 0; offset < content.size();) {
        throwIfCancelled(stop);
        const auto left = static_cast<std::size_t>(std::min(pieceSize, content.size() - offset));
        const std::size_t count = readSome(file, std::span(found).first(left));
        const auto part = std::span(expected).first(count);
        content.read(offset, part);
        if (count == 0 || !std::ranges::equal(part, std::span(found).first(count)))
            differs(path, "holds other bytes than Google Drive did.");
        offset += static_cast<std::int64_t>(count);
    }
}

void compareInto(Compared& compared, const fs::path& folder, const DrivePicture& picture,
                 const std::stop_token& stop) {
    throwIfCancelled(stop);
    const auto listed = directoryNames(folder);
    std::set<std::string> names(listed.begin(), listed.end());
    for (const DrivePicture& item : picture.children) {
        const fs::path path = folder / takeName(names, folder, item);
        if (item.isFolder) {
            ++compared.folders;
            compareInto(compared, path, item, stop);
        } else {
            compareFile(path, item.content, stop);
            ++compared.files;
            compared.bytes += item.content.size();
        }
    }
    if (!names.empty())
        differs(folder / *names.begin(), "was not in Google Drive.");
}

} // namespace

Compared compare(const fs::path& folder, const DrivePicture& picture, const std::stop_token& stop) {
    Compared compared;
    compareInto(compared, folder, picture, stop);
    return compared;
}

} // namespace marrowbox::demo
