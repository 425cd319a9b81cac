#pragma once

#include "DriveAPI/DriveFile.h"
#include "Platform/UnicodeText.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// How Drive's names become names on a disk. Pure; any thread.
namespace marrowbox::DriveNames {

/// Whether a text may stand in an address or a query as an item's identifier.
bool isIdentifier(std::string_view text);

/// The one path component that an item becomes: portable, with the extension of what it is exported to.
/// Throws BackupError for a type that cannot be exported and for a name that is too long.
std::string exportedName(const DriveFile& file);

/// A name made unique by the item's identifier, which stands before the extension.
std::string tagged(std::string_view name, std::string_view id);

/// The names of the children of one folder: the exported ones, and tagged those that a file system without
/// regard for case and composition would take for one another.
std::vector<std::string> namesOf(std::span<const DriveFile> children);

/// Puts items into the order of a file browser; equal names stay in theirs.
void sort(std::span<DriveFile> files, const NameOrder& order);

} // namespace marrowbox::DriveNames
