#include "Platform/OpenInFolder.h"

#include <cerrno>
#include <fcntl.h>

namespace marrowbox {

Descriptor openInFolder(const Descriptor& folder, const fs::path& name, int flags, mode_t mode) {
    while (true) {
        Descriptor file(::openat(folder.number(), name.c_str(), flags | O_CLOEXEC, mode));
        if (file || errno != EINTR)
            return file;
    }
}

} // namespace marrowbox
