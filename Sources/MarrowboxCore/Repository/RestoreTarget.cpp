#include "Repository/RestoreTarget.h"

#include "Models/BackupError.h"
#include "Platform/OpenInFolder.h"

#include <cerrno>
#include <fcntl.h>

namespace marrowbox {

namespace {

#ifdef __linux__
constexpr int inPassing = O_PATH; // needs no right to list the folder
#else
constexpr int inPassing = O_RDONLY;
#endif
constexpr int folderFlags = inPassing | O_DIRECTORY | O_NOFOLLOW;

void makeNewFolder(const fs::path& path) {
    const bool exists = fs::exists(fs::symlink_status(path));
    if (!exists && ::mkdir(path.c_str(), 0777) == 0)
        return;
    if (exists || errno == EEXIST)
        throw BackupError("Choose a new folder for this restored snapshot.");
    throwSystemError("mkdir", path);
}

} // namespace

RestoreTarget::RestoreTarget(fs::path path) : path_(std::move(path)) {
    makeNewFolder(path_);
    folder_ = openFile(path_, folderFlags);
}

Descriptor RestoreTarget::folder(const fs::path& relative) const {
    Descriptor folder = openInFolder(folder_, ".", folderFlags);
    if (!folder)
        throwSystemError("open", path_);
    for (const fs::path& piece : relative) {
        Descriptor inner = openInFolder(folder, piece, folderFlags);
        if (!inner && errno == ENOENT) {
            if (::mkdirat(folder.number(), piece.c_str(), 0777) != 0 && errno != EEXIST)
                throwSystemError("mkdir", path_ / relative);
            inner = openInFolder(folder, piece, folderFlags);
        }
        if (!inner)
            throwSystemError("mkdir", path_ / relative);
        folder = std::move(inner);
    }
    return folder;
}

} // namespace marrowbox
