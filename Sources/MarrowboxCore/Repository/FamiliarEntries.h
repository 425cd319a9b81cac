#pragma once

#include "Models/JSONSharing.h"
#include "Models/JSONWriter.h"
#include "Models/SnapshotEntry.h"
#include "Repository/ByteWindow.h"

#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace marrowbox {

/// Takes the entries of a manifest in the form in which this program writes it. They and those that are known
/// are in the order of their paths, so that what comes next is nearly always known; in any other order the
/// result is the same, and slower.
class FamiliarEntries {
  public:
    /// The window stands behind the bracket that opens the list.
    FamiliarEntries(ByteWindow& text, std::span<const Shared<SnapshotEntry>> known,
                    std::span<const SourceEntry> listing, JSONSharing& sharing);

    /// Takes all entries, up to the line that closes the list. False for a text that is not in that form, or
    /// holds an entry that cannot be read.
    bool take();
    std::vector<Shared<SnapshotEntry>> taken() { return std::move(taken_); }

  private:
    std::string_view separator() const;
    bool takeKnown();
    std::optional<ObjectHash> nextObject();
    bool isNext(const SnapshotEntry& entry);
    bool takeListed();
    bool takeOther();
    Shared<SnapshotEntry> held(SnapshotEntry entry);

    ByteWindow& text_;
    std::span<const Shared<SnapshotEntry>> known_; ///< What may still come.
    std::span<const SourceEntry> listing_;         ///< The same.
    JSONSharing& sharing_;
    JSONWriter entryWriter_;
    JSONWriter sourceWriter_;
    std::vector<Shared<SnapshotEntry>> taken_;
};

} // namespace marrowbox
