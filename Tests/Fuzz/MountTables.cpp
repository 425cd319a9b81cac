// The kernel's list of mounts, in which the names of folders are anybody's: it is read without a fault, and
// the mount that holds a path lies above it.
#include "Marrowbox/Platform/MountTable.h"
#include "Platform/Files.h"
#include "Require.h"

#include <string>
#include <sys/mman.h>
#include <system_error>

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    using namespace marrowbox;
    const Descriptor file(::memfd_create("mounts", MFD_CLOEXEC));
    fuzz::require(static_cast<bool>(file));
    writeAll(file, {bytes, count});
    std::vector<Mount> mounts;
    try {
        mounts = readMounts("/proc/self/fd/" + std::to_string(file.number()));
    } catch (const std::system_error&) {
        return 0;
    }
    for (const fs::path path : {"/", "/media/anna/Disk", "/media/anna/Disk two/Backups"}) {
        const Mount* holding = mountHolding(mounts, path);
        fuzz::require(holding == nullptr || isWithin(path, holding->target));
    }
    return 0;
}
