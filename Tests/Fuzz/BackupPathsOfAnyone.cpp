// Paths that a cloud may send: those that pass stay inside the folder that they are laid out in, and a list
// that passes has neither two items at one path nor a file in a folder's place. A line a path; one that ends
// with a slash is a folder.
#include "Models/BackupError.h"
#include "Models/BackupPaths.h"
#include "Models/SourceEntry.h"
#include "Require.h"

#include <filesystem>
#include <set>

namespace {

using namespace marrowbox;
namespace fs = std::filesystem;

bool passes(const auto& judge) {
    try {
        judge();
        return true;
    } catch (const BackupError&) {
        return false;
    }
}

void requireInside(const std::string& path) {
    fuzz::require(path.find('\0') == std::string::npos && fs::path(path).is_relative());
    for (const auto& piece : fs::path(path))
        fuzz::require(piece != ".." && piece != "." && !piece.empty());
}

void requireApart(const std::vector<SourceEntry>& entries) {
    std::set<std::string> files;
    std::set<std::string> all;
    for (const auto& entry : entries) {
        const std::string path(entry.path.view());
        requireInside(path);
        fuzz::require(all.insert(path).second);
        if (!entry.isDirectory)
            files.insert(path);
    }
    for (const auto& path : all)
        for (fs::path above = fs::path(path).parent_path(); !above.empty(); above = above.parent_path())
            fuzz::require(!files.contains(above.string()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    std::string_view text(bytes, count);
    if (passes([&] { BackupPaths::validate(text); }))
        requireInside(std::string(text));
    std::vector<SourceEntry> entries;
    while (!text.empty() && entries.size() < 64) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        SourceEntry entry;
        const bool folder = line.ends_with('/');
        line.remove_suffix(folder ? 1 : 0);
        entry.isDirectory = folder;
        entry.path = SharedText(std::string(line));
        entries.push_back(std::move(entry));
    }
    if (passes([&] { BackupPaths::validateEntries(entries); }))
        requireApart(entries);
    return 0;
}
