#include "Platform/CoreDumps.h"

#include <cerrno>
#include <sys/resource.h>
#include <system_error>

namespace marrowbox {

void forbidCoreDumps() {
    // A limit of 0 holds for files alone: where the kernel hands dumps to a program, that one gets them
    // whole. To a limit of 1 the kernel gives a meaning of its own, that no program gets any; a file gets
    // none either.
    const rlimit least{.rlim_cur = 1, .rlim_max = 1};
    if (::setrlimit(RLIMIT_CORE, &least) != 0)
        throw std::system_error(errno, std::generic_category(), "setrlimit");
}

} // namespace marrowbox
