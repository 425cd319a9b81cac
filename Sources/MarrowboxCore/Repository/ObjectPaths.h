#pragma once

#include "Models/ObjectHash.h"
#include "Platform/Files.h"

#include <cstdint>

/// Where objects lie, and the refusal of links on the way to them.
namespace marrowbox {

/// A fan-out folder for each first byte of a hash.
constexpr std::size_t fanOutCount = 256;

/// The folder of objects: Objects/xx/h, xx being the first two characters of the valid hash h.
struct ObjectPaths {
    fs::path objects; ///< The folder that holds the fan-out folders.

    fs::path fanOut(std::uint8_t firstByte) const;
    fs::path fanOut(const ObjectHash& hash) const { return fanOut(hash.firstByte()); }
    fs::path object(const ObjectHash& hash) const { return fanOut(hash) / hash.text(); }
};

/// Throws BackupError when the path is a symbolic link. A path that cannot be examined passes, for instance
/// because nothing is there.
void rejectSymlink(const fs::path& path);
[[noreturn]] void refuseSymlink();

/// Throws BackupError "Invalid content reference in the backup." for a hash of the wrong form.
void requireValid(const ObjectHash& hash);

} // namespace marrowbox
