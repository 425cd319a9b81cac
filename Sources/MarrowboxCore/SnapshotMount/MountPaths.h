#pragma once

#include <filesystem>

/// The two forms in which paths of mounts are compared, and what is derived from them. Any thread.
namespace marrowbox {

namespace fs = std::filesystem;

/// The path without ".", "..", doubled slashes and a final slash; textual, nothing is asked of the disk.
fs::path standardized(const fs::path& path);

/// The path with its symbolic links resolved, as far as it exists, and then standardized. A path that cannot
/// be examined gives its text.
fs::path resolved(const fs::path& path);

/// Whether the candidate is the root or lies below it, both as they stand.
bool isAtOrBelow(const fs::path& candidate, const fs::path& root);

/// The same for a mount point, on the resolved forms. The root itself counts as inside. What is mounted there
/// is not asked, since a server that does not answer would hold up whoever asks; a mount point is no link.
bool isInside(const fs::path& mountPoint, const fs::path& root);

/// Whether anything at all stands at the path, a dangling link included. Only the system's clear "no such
/// file" is a no: a path that cannot be examined counts as something, so that nobody takes it for gone.
bool somethingExists(const fs::path& path);

} // namespace marrowbox
