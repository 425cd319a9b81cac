#pragma once

#include <filesystem>
#include <vector>

/// The folder of everything that the program keeps for its user. Somebody else may have made it before, or
/// may write to it: what he puts there is neither believed nor changed. Blocks on the disk; any thread.
namespace marrowbox::DataFolder {

namespace fs = std::filesystem;

/// Makes the data folder where there is none yet, and gives the folders that hold a new name by then. Throws
/// BackupError when it belongs to another user, and std::system_error.
std::vector<fs::path> make(const fs::path& path);

/// Brings the names of new folders to stable storage. Throws std::system_error.
void makeNamesLast(const std::vector<fs::path>& folders);

/// Refuses a file, or a link to one, that another user has put into the data folder. A file that is not there
/// passes. Throws BackupError.
void refuseForeignFile(const fs::path& file);

} // namespace marrowbox::DataFolder
