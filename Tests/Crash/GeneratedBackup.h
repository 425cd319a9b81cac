#pragma once

#include "Repository/BackupRepository.h"

#include <vector>

/// The generated unit's backup at a destination, as its next user finds it.
namespace marrowbox::test {

BackupRepository repositoryOf(const fs::path& destination);

/// Backs up a generation in this process.
Snapshot backUp(const fs::path& destination, int generation);

/// The generation that a snapshot shows; 0 when it shows none as it was.
int generationOf(const Snapshot& snapshot);

/// The generations that the history shows.
std::vector<int> historyOf(const fs::path& destination);

/// Expects that a snapshot was written out into the folder bit for bit.
void expectRestored(const Snapshot& snapshot, const fs::path& folder);

/// The same, and expects that each snapshot restores bit for bit into a new folder beside the
/// destination.
std::vector<int> restoredHistory(const fs::path& destination);

} // namespace marrowbox::test
