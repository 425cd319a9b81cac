#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace marrowbox {

/// Environment variables by name.
using Environment = std::map<std::string, std::string>;

/// The folder of everything that the program keeps for its user: MARROW_DATA_DIR, whose mere presence
/// decides, so that an empty value is the current folder; else "Marrowbox" in the desktop's folder for
/// application data
/// ($XDG_DATA_HOME, else .local/share in the home folder). An absolute path; the disk is not looked at.
std::filesystem::path dataDirectory(const Environment& environment);

/// The desktop's folder for settings of programs: $XDG_CONFIG_HOME, else .config in the home folder. An
/// absolute path; the disk is not looked at.
std::filesystem::path settingsDirectory(const Environment& environment);

} // namespace marrowbox
