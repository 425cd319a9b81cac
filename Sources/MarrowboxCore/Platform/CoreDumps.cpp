#include "Platform/CoreDumps.h"

#include <cerrno>
#include <sys/resource.h>
#include <system_error>

namespace marrowbox {

void forbidCoreDumps() {
    const rlimit none{.rlim_cur = 0, .rlim_max = 0};
    if (::setrlimit(RLIMIT_CORE, &none) != 0)
        throw std::system_error(errno, std::generic_category(), "setrlimit");
}

} // namespace marrowbox
