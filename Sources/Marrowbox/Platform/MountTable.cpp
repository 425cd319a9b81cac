#include "Marrowbox/Platform/MountTable.h"

#include "Platform/Files.h"

#include <algorithm>
#include <cerrno>
#include <libmount/libmount.h>
#include <memory>

namespace marrowbox {

namespace {

struct Release {
    void operator()(libmnt_table* table) const { mnt_unref_table(table); }
    void operator()(libmnt_iter* position) const { mnt_free_iter(position); }
};

std::string text(const char* value) {
    return value == nullptr ? std::string() : std::string(value);
}

/// Shares that the library does not know by their type are known by a source of the form HOST:/PATH.
bool isShare(libmnt_fs* mount, const std::string& source) {
    return mnt_fs_is_netfs(mount) != 0 || source.starts_with("//") || source.find(":/") != std::string::npos;
}

Mount described(libmnt_fs* mount) {
    const std::string source = text(mnt_fs_get_source(mount));
    return {.id = mnt_fs_get_id(mount),
            .parent = mnt_fs_get_parent_id(mount),
            .device = mnt_fs_get_devno(mount),
            .root = text(mnt_fs_get_root(mount)),
            .target = text(mnt_fs_get_target(mount)),
            .source = source,
            .type = text(mnt_fs_get_fstype(mount)),
            .isNetworkShare = isShare(mount, source)};
}

/// The mount that a walk along the path meets first when it comes from this one; null from outside.
const Mount* nextOnTheWay(const std::vector<Mount>& mounts, const Mount* from, const fs::path& path) {
    const auto isAfter = [&](const Mount& mount) {
        if (from != nullptr)
            return mount.parent == from->id && mount.id != from->id;
        return mount.parent == mount.id ||
               std::ranges::find(mounts, mount.parent, &Mount::id) == mounts.end();
    };
    const Mount* next = nullptr;
    for (const Mount& mount : mounts) {
        if (!isAfter(mount) || !isWithin(path, mount.target))
            continue;
        if (next == nullptr || mount.target.native().size() <= next->target.native().size())
            next = &mount;
    }
    return next;
}

} // namespace

std::vector<Mount> readMounts(const fs::path& list) {
    errno = 0;
    const std::unique_ptr<libmnt_table, Release> table(mnt_new_table_from_file(list.c_str()));
    const std::unique_ptr<libmnt_iter, Release> position(mnt_new_iter(MNT_ITER_FORWARD));
    if (!table || !position)
        throwSystemError("read", list);
    std::vector<Mount> mounts;
    libmnt_fs* mount = nullptr;
    while (mnt_table_next_fs(table.get(), position.get(), &mount) == 0)
        mounts.push_back(described(mount));
    return mounts;
}

const Mount* mountHolding(const std::vector<Mount>& mounts, const fs::path& path) {
    const Mount* holding = nullptr;
    // No walk is longer than the list, whatever the list says.
    for (std::size_t step = 0; step < mounts.size(); ++step) {
        const Mount* next = nextOnTheWay(mounts, holding, path);
        if (next == nullptr)
            break;
        holding = next;
    }
    return holding;
}

bool isWithin(const fs::path& path, const fs::path& folder) {
    const std::string& text = path.native();
    const std::string& prefix = folder.native();
    if (prefix == "/")
        return text.starts_with('/');
    return text == prefix || (text.starts_with(prefix) && text[prefix.size()] == '/');
}

fs::path moved(const fs::path& path, const fs::path& from, const fs::path& to) {
    const fs::path rest = path.lexically_relative(from);
    return rest == "." ? to : to / rest;
}

} // namespace marrowbox
