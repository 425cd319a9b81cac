#pragma once

#include "Models/Shared.h"
#include "Models/SnapshotEntry.h"
#include "Models/SourceEntry.h"

#include <span>
#include <string_view>

/// The only judge of whether a path from the cloud may be laid out on a local disk.
namespace marrowbox::BackupPaths {

/// Throws BackupError "Unsafe path in backup: …" for an empty or absolute path, one with a NUL, and one with
/// a piece that is empty, "." or "..".
void validate(std::string_view path);

/// Validates each path, and throws BackupError when two items map to one path on a case-insensitive,
/// normalisation-insensitive file system, or when a file stands where another item needs a folder. Linear in
/// the total length of the paths; looks at texts alone, never at the disk.
void validateEntries(std::span<const SourceEntry> entries);
void validateEntries(std::span<const Shared<SnapshotEntry>> entries);
void validateEntries(std::span<const SnapshotEntry* const> entries);

} // namespace marrowbox::BackupPaths
