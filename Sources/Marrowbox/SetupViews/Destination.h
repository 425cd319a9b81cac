#pragma once

#include <filesystem>

namespace marrowbox {

/// The folder itself, whatever links lead to it. Waits for the disk or the network share; throws
/// std::filesystem::filesystem_error.
std::filesystem::path withoutLinks(const std::filesystem::path& folder);

/// Whether a folder, given without links, lies in what Google's own programs or the desktop show of Drive: a
/// backup there would copy Drive into Drive.
bool liesInGoogleDrive(const std::filesystem::path& folder);

} // namespace marrowbox
