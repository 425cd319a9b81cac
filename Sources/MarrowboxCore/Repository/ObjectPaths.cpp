#include "Repository/ObjectPaths.h"

#include "Models/BackupError.h"
#include "Platform/Digest.h"

namespace marrowbox {

fs::path ObjectPaths::fanOut(std::uint8_t firstByte) const {
    return objects / hexadecimal(std::string_view(reinterpret_cast<const char*>(&firstByte), 1));
}

void refuseSymlink() {
    throw BackupError("A symbolic link cannot be used inside the backup repository.");
}

void rejectSymlink(const fs::path& path) {
    if (isSymbolicLink(path))
        refuseSymlink();
}

void requireValid(const ObjectHash& hash) {
    if (!hash.isValid())
        throw BackupError("Invalid content reference in the backup.");
}

} // namespace marrowbox
