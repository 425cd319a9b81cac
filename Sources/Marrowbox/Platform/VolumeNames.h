#pragma once

#include "Marrowbox/Platform/MountTable.h"

#include <map>
#include <optional>
#include <string>

namespace marrowbox {

/// What a volume is called wherever it is mounted: the identifier of its file system, or the source of a
/// network share. A snapshot of what the machine knows at the moment of its making.
class VolumeNames {
  public:
    /// The folder in which the system keeps one link for each identifier to its device.
    explicit VolumeNames(const fs::path& identifierLinks);

    /// Absent for what has no name of its own, such as a file system in memory.
    std::optional<std::string> name(const Mount& mount) const;

  private:
    std::map<dev_t, std::string> identifiers_;
};

} // namespace marrowbox
