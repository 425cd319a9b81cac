#pragma once

#include "Platform/Files.h"

/// What a file system says and does about who may read a file, beyond the mode bits. Any thread.
namespace marrowbox {

/// Whether an access control list lets anybody in beyond what owner, group and other say.
enum class AccessList { absent, present, unknown };

/// Looks at the path's access control list; a missing path has none. `unknown` when the system refuses to
/// tell. Follows a symbolic link, so callers examine the path itself first.
AccessList accessList(const fs::path& path);

/// Asks the system's backup programs to leave a folder out. Not every file system can say so, and not every
/// program asks, so a failure changes nothing.
void excludeFromSystemBackups(const fs::path& folder) noexcept;

} // namespace marrowbox
