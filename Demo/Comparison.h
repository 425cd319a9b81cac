#pragma once

#include "Demo/DrivePicture.h"

#include <cstdint>
#include <filesystem>
#include <stop_token>

namespace marrowbox::demo {

namespace fs = std::filesystem;

/// What was found to be the same.
struct Compared {
    std::int64_t files = 0;
    std::int64_t folders = 0;
    std::int64_t bytes = 0;

    friend bool operator==(const Compared&, const Compared&) = default;
};

/// Holds a folder on disk against what the Drive held: every item has its one file or folder, with exactly
/// its bytes, and nothing else is there. Throws BackupError that names the first difference,
/// std::system_error for what cannot be read, and CancellationError.
Compared compare(const fs::path& folder, const DrivePicture& picture, const std::stop_token& stop);

} // namespace marrowbox::demo
