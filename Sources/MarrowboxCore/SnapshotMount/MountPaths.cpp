#include "SnapshotMount/MountPaths.h"

#include "Platform/Files.h"

#include <cerrno>
#include <sys/stat.h>

namespace marrowbox {

fs::path standardized(const fs::path& path) {
    fs::path normal = path.lexically_normal();
    if (!normal.has_filename() && normal.has_relative_path())
        normal = normal.parent_path();
    return normal;
}

fs::path resolved(const fs::path& path) {
    const fs::path text = standardized(path);
    std::error_code failure;
    fs::path found = fs::weakly_canonical(text, failure);
    if (failure)
        return text;
    if (isSymbolicLink(found)) { // it dangles, and what it names is what matters
        const fs::path target = fs::read_symlink(found, failure);
        if (!failure)
            found = fs::weakly_canonical(found.parent_path() / target, failure);
        if (failure)
            return text;
    }
    return standardized(found);
}

bool isAtOrBelow(const fs::path& candidate, const fs::path& root) {
    return candidate == root || candidate.native().starts_with((root / "").native());
}

bool isInside(const fs::path& mountPoint, const fs::path& root) {
    const fs::path text = standardized(mountPoint);
    return isAtOrBelow(standardized(resolved(text.parent_path()) / text.filename()), resolved(root));
}

bool somethingExists(const fs::path& path) {
    struct stat status{};
    return ::lstat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

} // namespace marrowbox
