#include "Platform/FileProtection.h"

#include <acl/libacl.h>
#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <memory>
#include <sys/acl.h>
#include <sys/ioctl.h>
#include <type_traits>

namespace marrowbox {

namespace {

struct FreeList {
    void operator()(acl_t list) const { ::acl_free(list); }
};
using OwnedList = std::unique_ptr<std::remove_pointer_t<acl_t>, FreeList>;

} // namespace

AccessList accessList(const fs::path& path) {
    const OwnedList list(::acl_get_file(path.c_str(), ACL_TYPE_ACCESS));
    if (!list) {
        // A file system without access control lists has nothing but the mode bits, which callers check.
        const bool cannotHaveOne = errno == ENOENT || errno == ENOTSUP || errno == EOPNOTSUPP;
        return cannotHaveOne ? AccessList::absent : AccessList::unknown;
    }
    // A file without a list is described by three entries made from its mode: 0 says that there are no
    // others.
    switch (::acl_equiv_mode(list.get(), nullptr)) {
    case 0:
        return AccessList::absent;
    case 1:
        return AccessList::present;
    default:
        return AccessList::unknown;
    }
}

void excludeFromSystemBackups(const fs::path& folder) noexcept {
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    // The kernel reads and writes an int, whatever the size that the request's number names.
    int flags = 0;
    if (!opened || ::ioctl(opened.number(), FS_IOC_GETFLAGS, &flags) != 0 || (flags & FS_NODUMP_FL) != 0)
        return;
    flags |= FS_NODUMP_FL;
    ::ioctl(opened.number(), FS_IOC_SETFLAGS, &flags);
}

} // namespace marrowbox
