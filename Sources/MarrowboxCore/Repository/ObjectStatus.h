#pragma once

#include "Models/SnapshotEntry.h"
#include "Platform/FolderHandle.h"
#include "Repository/ObjectPaths.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>

namespace marrowbox {

/// Asks for the objects of many entries, one metadata query each: every fan-out folder is opened once, and
/// its objects are examined through it. It lives for one pass over a list of entries, while no object comes
/// or goes. Any number of threads may ask.
class ObjectStatus {
  public:
    explicit ObjectStatus(ObjectPaths paths);

    /// The size of a regular file at the object's path; absent when there is none or it cannot be examined.
    /// Throws BackupError for an invalid hash and for a link at the fan-out folder or the object.
    std::optional<std::int64_t> size(const ObjectHash& hash);
    /// Whether an entry's object is present with its size. A folder needs none; a file without a hash has
    /// none.
    bool hasObject(const SnapshotEntry& entry);

  private:
    struct FanOut {
        std::once_flag isKnown;
        std::optional<FolderHandle> folder;
        bool isAbsent = false;
    };
    const FanOut& fanOut(const ObjectHash& hash);
    void look(FanOut& fanOut, const ObjectHash& hash) const;
    std::optional<struct stat> status(const ObjectHash& hash);

    ObjectPaths paths_;
    std::optional<FolderHandle> objects_;
    std::array<FanOut, fanOutCount> fanOuts_;
};

} // namespace marrowbox
