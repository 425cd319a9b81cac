#include "Support/TreeState.h"

#include "Platform/Digest.h"
#include "Platform/Files.h"

#include <algorithm>
#include <fcntl.h>

namespace marrowbox::test {

namespace {

std::string contentOf(const fs::path& path, const struct stat& status) {
    if (S_ISLNK(status.st_mode))
        return "-> " + fs::read_symlink(path).string();
    if (S_ISREG(status.st_mode))
        return hexadecimal(sha256(readFile(path)));
    return {};
}

} // namespace

std::string treeState(const fs::path& root) {
    std::vector<fs::path> items{root};
    for (const auto& item : fs::recursive_directory_iterator(root))
        items.push_back(item.path());
    std::ranges::sort(items);
    std::string state;
    for (const fs::path& item : items) {
        const auto status = linkStatus(item);
        state += std::to_string(status->st_mode) + " " + std::to_string(status->st_uid) + " " +
                 std::to_string(status->st_mtim.tv_sec) + "." + std::to_string(status->st_mtim.tv_nsec) +
                 " " + item.string() + " " + contentOf(item, *status) + "\n";
    }
    return state;
}

} // namespace marrowbox::test
