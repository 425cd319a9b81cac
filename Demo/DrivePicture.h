#pragma once

#include "Sandbox/Content.h"
#include "Sandbox/Drive.h"

#include <string>
#include <vector>

namespace marrowbox::demo {

/// An item of the simulated Drive as it was at one time, with all below it. It stays as it is while the Drive
/// goes on changing.
struct DrivePicture {
    std::string id;
    std::string name;
    bool isFolder = false;
    /// What a native document gains in name when it is exported, such as ".docx"; empty for anything else.
    std::string extension;
    /// The bytes of a file, or of the export of a native document.
    sandbox::Content content;
    std::vector<DrivePicture> children;
};

/// A folder of the Drive, or a shared drive, as it is now; what lies in the trash is no part of it. Throws
/// std::out_of_range for an unknown id, and BackupError for an item that has no export.
DrivePicture pictureOf(const sandbox::Drive& drive, const std::string& folder);

} // namespace marrowbox::demo
