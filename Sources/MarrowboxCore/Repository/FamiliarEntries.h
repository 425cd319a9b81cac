#pragma once

#include "Models/JSONSharing.h"
#include "Models/JSONWriter.h"
#include "Models/SnapshotEntry.h"
#include "Repository/ByteWindow.h"
#include "Repository/KnownEntries.h"

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
    FamiliarEntries(ByteWindow& text, std::span<const KnownEntries::Item> known,
                    std::span<const SourceEntry> listing, JSONSharing& sharing);

    /// Takes all entries, probably so many, up to the line that closes the list. False for a text that is not
    /// in that form, or holds an entry that cannot be read.
    bool take(std::size_t expectedCount);
    std::vector<Shared<SnapshotEntry>> taken() { return std::move(taken_); }
    /// Those of them that were not known.
    std::vector<Shared<SnapshotEntry>> fresh() { return std::move(fresh_); }
    /// Whether one of these stands at a path where nothing was known, or only the other of file and folder.
    bool hasNewPath() const { return hasNewPath_; }

  private:
    std::string_view separator() const;
    bool takeKnown();
    void takeFresh(Shared<SnapshotEntry> entry, std::span<const KnownEntries::Item> atPath);
    bool takeListed();
    bool takeOther();
    void hold(SnapshotEntry entry);

    ByteWindow& text_;
    std::span<const KnownEntries::Item> known_; ///< What may still come.
    std::span<const SourceEntry> listing_;      ///< The same.
    JSONSharing& sharing_;
    JSONWriter sourceWriter_ = JSONWriter::inside(3); ///< Stands where the source of an entry stands.
    std::vector<Shared<SnapshotEntry>> taken_;
    std::vector<Shared<SnapshotEntry>> fresh_;
    bool hasNewPath_ = false;
};

} // namespace marrowbox
