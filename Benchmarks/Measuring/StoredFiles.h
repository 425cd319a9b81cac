#pragma once

#include "Models/Snapshot.h"
#include "Repository/BackupRepository.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace marrowbox::bench {

/// Bytes that nothing compresses and nothing repeats; equal seeds give equal ones. The size is a multiple
/// of 8.
std::string contentOf(std::uint64_t seed, std::size_t size);

/// One file of a tree with fifty files a folder.
fs::path treePath(std::size_t number);

/// Puts this content into the store under its own digest, and gives the entry of a file that holds it.
SnapshotEntry storeFile(const BackupRepository& repository, std::size_t number, const std::string& content);

/// A snapshot of so many files of one size, each with a content of its own, all in the store.
Snapshot storeFiles(const BackupRepository& repository, std::size_t count, std::size_t size);

} // namespace marrowbox::bench
