#include "Marrowbox/AppStore/DataFolder.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"

#include <system_error>
#include <unistd.h>

namespace marrowbox {

namespace {

/// The administrator can do everything anyway.
bool isAnotherUser(uid_t owner) {
    return owner != ::geteuid() && owner != 0;
}

/// True when the path, or what it links to, belongs to another user.
bool isForeign(const fs::path& path) {
    const auto itself = linkStatus(path);
    struct stat target{};
    return (itself && isAnotherUser(itself->st_uid)) ||
           (::stat(path.c_str(), &target) == 0 && isAnotherUser(target.st_uid));
}

} // namespace

std::vector<fs::path> DataFolder::make(const fs::path& path) {
    // The one above the data folder always counts: an earlier start may have been stopped before its name
    // lasted.
    std::vector<fs::path> holders{path.parent_path()};
    while (!linkStatus(holders.back()) && holders.back().has_relative_path())
        holders.push_back(holders.back().parent_path());
    makeDirectories(path, 0700);
    if (isForeign(path))
        throw BackupError("The folder for Marrowbox’s data belongs to another user. Nothing in it was "
                          "changed.");
    return holders;
}

void DataFolder::makeNamesLast(const std::vector<fs::path>& folders) {
    for (const fs::path& folder : folders) {
        try {
            synchronizeFolder(folder);
        } catch (const std::system_error& failure) {
            // A folder that the user may only pass through was not made here.
            if (failure.code() != std::errc::permission_denied)
                throw;
        }
    }
}

void DataFolder::refuseForeignFile(const fs::path& file) {
    if (isForeign(file))
        throw BackupError("“" + file.filename().string() +
                          "” in the folder for Marrowbox’s data belongs to another user. It was left "
                          "unchanged.");
}

} // namespace marrowbox
