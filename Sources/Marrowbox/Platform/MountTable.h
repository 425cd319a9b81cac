#pragma once

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace marrowbox {

namespace fs = std::filesystem;

/// A file system, or a part of one, that is mounted somewhere.
struct Mount {
    int id = 0;
    int parent = 0;
    dev_t device = 0;
    fs::path root;   ///< The folder of the file system that is seen at the target.
    fs::path target; ///< Where it is seen.
    std::string source;
    std::string type;
    bool isNetworkShare = false;

    friend bool operator==(const Mount&, const Mount&) = default;
};

/// The list of mounts that the kernel keeps for each process.
inline const fs::path kernelMountList = "/proc/self/mountinfo";

/// Reads a list of mounts in the kernel's form, asking none of the file systems. Throws std::system_error.
std::vector<Mount> readMounts(const fs::path& list = kernelMountList);

/// The mount on which an absolute path without links lies, found as the kernel walks: a mount that another
/// one covers is never met. Null when there is none.
const Mount* mountHolding(const std::vector<Mount>& mounts, const fs::path& path);

/// Whether a path is this folder or lies in it, by their texts.
bool isWithin(const fs::path& path, const fs::path& folder);

/// The path with the first folder, in which it lies, replaced by the second.
fs::path moved(const fs::path& path, const fs::path& from, const fs::path& to);

} // namespace marrowbox
