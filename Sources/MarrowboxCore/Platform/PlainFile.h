#pragma once

#include "Platform/Descriptor.h"
#include "Platform/Files.h"

/// Reading where somebody else may have put something in a file's place. Both throw std::system_error for
/// whatever is no regular file, at once: a pipe would keep its reader waiting, or need never end.
namespace marrowbox {

/// Opens a regular file for reading, through a link as well.
Descriptor openRegularFile(const fs::path& path);

/// The same; a link as the last piece of the path is refused.
Descriptor openPlainFile(const fs::path& path);

} // namespace marrowbox
