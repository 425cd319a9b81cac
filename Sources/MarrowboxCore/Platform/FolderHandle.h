#pragma once

#include "Platform/Descriptor.h"
#include "Platform/Files.h"

#include <functional>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace marrowbox {

/// An open folder, through which the items in it are examined without walking their whole paths again, and
/// without a swap of a folder above them changing what is seen.
class FolderHandle {
  public:
    /// Opens a folder, never through a link as the last piece; absent when it cannot be opened, or is none.
    static std::optional<FolderHandle> open(const fs::path& path);
    /// The same for a folder inside this one.
    std::optional<FolderHandle> folder(const char* name) const;

    /// lstat(2) of an item; absent when it fails, for whatever reason.
    std::optional<struct stat> linkStatus(const char* name) const;
    /// Names of the items that are symbolic links. One pass over the folder, without a look at each item
    /// where the file system tells their kinds. Throws std::system_error.
    std::vector<std::string> symbolicLinks() const;

    struct Item {
        std::string name;
        bool isLink = false;
    };
    /// All items but "." and "..", in the order of the file system, in the same way.
    std::vector<Item> items() const;
    /// unlink(2) of an item. Throws std::system_error.
    void removeFile(const char* name) const;

  private:
    explicit FolderHandle(Descriptor folder) : folder_(std::move(folder)) {}
    bool isLink(const char* name, unsigned char kind) const;
    void forEachItem(const std::function<void(const char* name, unsigned char kind)>& take) const;

    Descriptor folder_;
};

} // namespace marrowbox
