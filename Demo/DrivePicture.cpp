#include "Demo/DrivePicture.h"

#include "Models/BackupError.h"
#include "Sandbox/Exports.h"

#include <algorithm>
#include <array>

namespace marrowbox::demo {

namespace {

/// The formats in which a backup holds native documents.
constexpr std::array<std::string_view, 4> formats{"docx", "xlsx", "pptx", "svg"};

std::vector<sandbox::DriveItem> childrenOf(const sandbox::Drive& drive, const std::string& folder) {
    std::vector<sandbox::DriveItem> children;
    drive.visitChildren(folder, 0, [&](std::int64_t, const sandbox::DriveItem& item) {
        if (!item.trashed)
            children.push_back(item);
        return true;
    });
    return children;
}

DrivePicture pictureOfNative(const sandbox::DriveItem& item) {
    for (const std::string_view extension : formats)
        if (const auto* format = sandbox::exportFormat(item, extension))
            return {.id = item.id,
                    .name = item.name,
                    .extension = "." + std::string(extension),
                    .content = sandbox::exported(item, *format)};
    throw BackupError("“" + item.name + "” has no export.");
}

} // namespace

DrivePicture pictureOf(const sandbox::Drive& drive, const std::string& folder) {
    DrivePicture picture{.id = folder, .isFolder = true};
    for (const sandbox::DriveItem& item : childrenOf(drive, folder)) {
        if (item.isFolder()) {
            picture.children.push_back(pictureOf(drive, item.id));
            picture.children.back().name = item.name;
        } else if (item.isNative()) {
            picture.children.push_back(pictureOfNative(item));
        } else {
            picture.children.push_back({.id = item.id, .name = item.name, .content = item.content});
        }
    }
    return picture;
}

} // namespace marrowbox::demo
