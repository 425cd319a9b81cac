#pragma once

#include "Repository/BackupSource.h"

#include <filesystem>
#include <memory>

/// The jobs of the program on the benchmarks' repository in a folder, each done by a process of its own as
/// the other programs' are. All throw whatever stops them.
namespace marrowbox::bench {

/// Makes the repository.
void makeOurs(const fs::path& folder);

void backUpOurs(const std::shared_ptr<BackupSource>& source, const fs::path& folder);
/// Writes the latest snapshot out.
void restoreOurs(const fs::path& folder, const fs::path& target);
/// Prunes the history to its latest snapshot.
void pruneOurs(const fs::path& folder);

} // namespace marrowbox::bench
