#pragma once

#include "Sandbox/DriveItem.h"

#include <optional>
#include <string>
#include <string_view>

namespace marrowbox::sandbox {

/// A search for files: clauses that must all hold. One of them names the folder.
struct FileQuery {
    std::string parent;
    std::optional<bool> trashed;
    std::optional<std::string> mimeType;
    std::optional<std::string> otherMimeType; // "mimeType != …"
    std::optional<std::string> name;

    bool matches(const DriveItem& item) const;
};

/// Reads clauses joined with "and", with or without parentheses; absent for anything that is not understood.
std::optional<FileQuery> parseFileQuery(std::string_view text);

} // namespace marrowbox::sandbox
