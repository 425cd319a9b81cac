#pragma once

#include "Platform/Descriptor.h"
#include "Platform/Files.h"

namespace marrowbox {

/// openat(2) with O_CLOEXEC added, retried when a signal interrupts it. Empty with errno set when it fails.
Descriptor openInFolder(const Descriptor& folder, const fs::path& name, int flags, mode_t mode = 0600);

} // namespace marrowbox
