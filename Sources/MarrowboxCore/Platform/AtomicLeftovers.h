#pragma once

#include "Platform/Files.h"

namespace marrowbox {

/// A new name beside the target for a file that is to take its place. Throws std::system_error.
fs::path temporaryNameBeside(const fs::path& target);

/// Removes what a program that was stopped in the middle of replacing the target has left beside it. Only for
/// a caller whose lock keeps everybody else from replacing it. A file goes that has such a name, is a regular
/// one with no other name, and is this user's alone; anything else stays. So does what cannot be removed, as
/// it harms nobody. Never throws.
void removeAtomicLeftovers(const fs::path& target) noexcept;

} // namespace marrowbox
