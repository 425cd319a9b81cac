#include "Platform/FuseSupport.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace marrowbox {

std::optional<std::string> reasonForNoFUSE() {
    // Opened for real: in a container the device may be there and refuse all the same.
    const int device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
    if (device < 0)
        return "this machine offers no FUSE device to this user";
    ::close(device);
    // An ordinary user mounts through a program of the administrator's, whose rights these two take away.
    if (::prctl(PR_CAPBSET_READ, CAP_SYS_ADMIN, 0, 0, 0) != 1)
        return "nobody may mount in this container";
    if (::geteuid() != 0 && ::prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) == 1)
        return "this session may not use programs with more rights than its own, and mounting needs one";
    return std::nullopt;
}

} // namespace marrowbox
