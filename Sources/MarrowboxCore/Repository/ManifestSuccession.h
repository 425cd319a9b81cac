#pragma once

#include "Models/JSONSharing.h"
#include "Models/Snapshot.h"
#include "Platform/Descriptor.h"
#include "Repository/ByteWindow.h"

#include <cstddef>
#include <memory_resource>
#include <optional>
#include <string_view>
#include <vector>

namespace marrowbox {

/// Reads manifests each of which says nearly the same as the one before, by their texts: what stands there
/// byte by byte as it stood before is the entry that was read then. That is many times as fast as any reading
/// that makes a record or the text of one, and takes room for the text of a manifest, so that only those of a
/// moderate size are read in this way. It owns what it has read. Not safe to share between threads.
class ManifestSuccession {
  public:
    struct Reading {
        Snapshot record; ///< Without its entries.
        std::vector<const SnapshotEntry*> entries;
        std::vector<std::size_t> others; ///< The entries that were not taken from the manifest before.
        bool hasSameItems = false;       ///< The same paths in the same order, of the same kinds, as before.
    };

    /// Reads the next manifest. Absent, with the file at its start, when it has to be read in the ordinary
    /// way; what comes after it is then compared with nothing. Throws std::system_error.
    std::optional<Reading> read(const Descriptor& file);

  private:
    struct Known {
        std::string_view text;
        const SnapshotEntry* entry;
    };
    bool take(ByteWindow& window, Reading& reading);
    bool takeExpected(ByteWindow& window);
    bool takeOther(ByteWindow& window, Reading& reading);
    std::string_view kept(std::string_view text);

    std::vector<Known> before_; ///< The entries of the manifest before, in its order.
    std::size_t next_ = 0;      ///< Of those, the one that is expected now.
    std::vector<Known> taken_;  ///< Those of this manifest so far.
    std::pmr::monotonic_buffer_resource texts_{std::size_t(1) << 20};
    std::size_t textSize_ = 0;
    JSONSharing sharing_;
    std::vector<Shared<SnapshotEntry>> held_;
};

} // namespace marrowbox
