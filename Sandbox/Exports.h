#pragma once

#include "Sandbox/Content.h"
#include "Sandbox/DriveItem.h"

#include <string>
#include <string_view>
#include <vector>

namespace marrowbox::sandbox {

/// One format in which a native item can be taken out of Drive.
struct ExportFormat {
    std::string_view nativeType;
    std::string_view extension;
    std::string_view mimeType;
};

/// All of them; a kind that cannot be exported has none.
const std::vector<ExportFormat>& exportFormats();

/// The format of an item by its extension or its type; nullptr when the item has no such format.
const ExportFormat* exportFormat(const DriveItem& item, std::string_view extensionOrType);

/// The address under which the item can be fetched in a format.
std::string exportLink(const DriveItem& item, const ExportFormat& format);

/// The bytes of an export: they depend on the item's text and the format alone, so a test can compare them.
Content exported(const DriveItem& item, const ExportFormat& format);

} // namespace marrowbox::sandbox
