#include "Platform/FuseSupport.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace marrowbox {

std::optional<std::string> reasonForNoFUSE() {
    // Opened for real: in a container the device may be there and refuse all the same.
    const int device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
    if (device < 0)
        return "this machine offers no FUSE device to this user";
    ::close(device);
    if (::prctl(PR_CAPBSET_READ, CAP_SYS_ADMIN, 0, 0, 0) != 1)
        return "nobody may mount in this container";
    if (::geteuid() == 0)
        return std::nullopt;
    // An ordinary user mounts through a program of the administrator's, which asks for the user's name.
    if (::prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) == 1)
        return "this session may not use programs with more rights than its own, and mounting needs one";
    if (::getpwuid(::getuid()) == nullptr) // NOLINT(concurrency-mt-unsafe): the answer is not looked into
        return "this machine knows no name for this user, and mounting needs one";
    return std::nullopt;
}

} // namespace marrowbox
