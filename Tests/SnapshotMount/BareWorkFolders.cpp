#include "BareWorkFolders.h"

#include "SnapshotMount/MountRegistryFolder.h"

namespace marrowbox::test {

void BareWorkFolders::note(const FileCall& call) {
    const bool makes = call.name.starts_with("mkdir");
    const bool removes = call.name.starts_with("unlink") || call.name == "rmdir";
    const bool isOfMarker = call.path.filename() == MountRegistryFolder::markerName;
    if (makes && call.path.parent_path() == workRoot_)
        paths_.insert(call.path);
    else if (call.target.filename() == MountRegistryFolder::markerName)
        paths_.erase(call.target.parent_path());
    else if (removes && isOfMarker)
        paths_.insert(call.path.parent_path());
}

std::set<std::filesystem::path> BareWorkFolders::paths() const {
    // A call that was to remove one may have failed.
    std::set<std::filesystem::path> standing = paths_;
    std::erase_if(standing, [](const std::filesystem::path& path) { return !std::filesystem::exists(path); });
    return standing;
}

} // namespace marrowbox::test
