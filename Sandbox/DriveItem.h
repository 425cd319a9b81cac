#pragma once

#include "Sandbox/Content.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace marrowbox::sandbox {

/// The kinds of native items. The first four can be exported; forms, sites and shortcuts cannot.
enum class NativeKind { document, spreadsheet, presentation, drawing, form, site, shortcut };

inline constexpr std::string_view folderType = "application/vnd.google-apps.folder";

/// The type of a native item, such as "application/vnd.google-apps.document".
std::string_view nativeType(NativeKind kind);

/// One item as it is told and as it is served. A test may make the two differ, and so make Drive lie.
struct DriveItem {
    std::string id;
    std::string name;
    std::string mimeType;
    std::vector<std::string> parents;
    /// Empty in My Drive.
    std::string driveID;
    bool trashed = false;
    /// What "capabilities" says; absent leaves the record out.
    std::optional<bool> canDownload = true;

    /// As told, absent ones left out. Drive's own mutations advance version and modifiedTime.
    std::optional<std::string> version;
    std::optional<std::string> modifiedTime;
    std::optional<std::string> size;
    std::optional<std::string> md5Checksum;

    /// As served: the bytes of a file, or the text from which a native item's exports are made.
    Content content;

    bool isFolder() const { return mimeType == folderType; }
    bool isNative() const { return mimeType.starts_with("application/vnd.google-apps."); }
};

} // namespace marrowbox::sandbox
