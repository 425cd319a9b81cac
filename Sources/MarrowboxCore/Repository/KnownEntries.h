#pragma once

#include "Models/JSONWriter.h"
#include "Models/SnapshotEntry.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace marrowbox {

/// A number that stands for a text: two texts of equal length have the same one by a chance of about 1 in
/// 2^64, which no history comes near.
std::uint64_t textNumber(std::string_view text);

/// What the manifests of a history have said so far, to know it again. Not safe to share between threads.
class KnownEntries {
  public:
    struct Item {
        Shared<SnapshotEntry> entry;
        std::uint64_t textNumber = 0; ///< Of its text as a manifest has it, from brace to brace.
        std::uint32_t textLength = 0; ///< 0 for an entry that cannot be written.
        std::uint32_t atPath = 1;     ///< Items at the path, from this one on.
    };

    /// In the order of their paths, any number at one path.
    std::span<const Item> items() const { return items_; }
    /// Adds entries in the order of their paths; in any other order, nothing. They are valid and fit
    /// together.
    void add(std::span<const Shared<SnapshotEntry>> entries);
    void clear();
    /// Whether any choice of one item for each path, some paths left out, fits together as a snapshot.
    bool fitTogether();

  private:
    Item item(const Shared<SnapshotEntry>& entry);
    void count(std::vector<Item>::iterator added, std::ptrdiff_t end);
    bool judge() const;

    JSONWriter writer_ = JSONWriter::inside(2); ///< Stands where the entries of a manifest stand.
    std::vector<Item> items_;
    bool isJudged_ = true;
    bool fitTogether_ = true;
};

} // namespace marrowbox
