#pragma once

#include "Platform/Descriptor.h"
#include "Platform/Files.h"

#include <fcntl.h>

namespace marrowbox {

/// Opens a file of the repository for reading. A link as the last piece is refused, and something that is no
/// plain file, such as a pipe that nobody writes, cannot make the reader wait.
inline Descriptor openPlainFile(const fs::path& path) {
    return openFile(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
}

} // namespace marrowbox
