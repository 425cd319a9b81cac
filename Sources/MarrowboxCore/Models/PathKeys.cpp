#include "Models/PathKeys.h"

#include "Platform/UnicodeText.h"

#include <algorithm>
#include <bit>
#include <functional>

namespace marrowbox {

namespace {

/// Spreads every bit of both numbers over the whole result.
std::uint64_t mixed(std::uint64_t above, std::uint64_t piece) {
    const std::uint64_t sum = (std::rotl(above, 23) ^ piece) * 0x9E3779B97F4A7C15;
    return sum ^ sum >> 32;
}

/// For a folder with a "/" at its end.
std::string_view folderAbove(std::string_view folder) {
    return folder.substr(0, folder.substr(0, folder.size() - 1).rfind('/') + 1);
}

} // namespace

std::size_t PathKeys::moveTo(std::string_view path) {
    if (!pieces_.empty())
        pieces_.pop_back();
    while (!path.starts_with(folder_)) {
        pieces_.pop_back();
        folder_ = folderAbove(folder_);
    }
    const std::size_t shared = folder_.size();
    text_.resize(pieces_.empty() ? 0 : pieces_.back().end);
    std::size_t start = shared;
    while (true) {
        const std::size_t slash = path.find('/', start);
        append(path.substr(start, slash - start));
        if (slash == std::string_view::npos)
            break;
        start = slash + 1;
    }
    folder_ = path.substr(0, start);
    return shared;
}

void PathKeys::append(std::string_view piece) {
    if (!pieces_.empty())
        text_ += '/';
    const std::size_t start = text_.size();
    appendCollisionKey(piece, text_);
    const std::uint64_t above = pieces_.empty() ? 0 : pieces_.back().hash;
    const std::string_view key = std::string_view(text_).substr(start);
    pieces_.push_back({text_.size(), mixed(above, std::hash<std::string_view>()(key))});
}

PathKeyTable::PathKeyTable(std::size_t items)
    : slots_(std::bit_ceil(items + items / 2 + 1)), mask_(slots_.size() - 1) {
}

} // namespace marrowbox
