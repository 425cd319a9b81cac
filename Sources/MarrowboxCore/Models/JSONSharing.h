#pragma once

#include "Models/Shared.h"
#include "Models/SharedText.h"
#include "Models/SnapshotEntry.h"

#include <boost/unordered/unordered_flat_set.hpp>

namespace marrowbox {

/// What a reading of many manifests holds once: their texts and their whole entries. Handed to each decoding
/// of the reading; what was read outlives it. Not safe to share between threads.
class JSONSharing {
  public:
    SharedText shared(std::string_view text) { return texts_.shared(text); }
    Shared<SnapshotEntry> shared(SnapshotEntry&& entry);

  private:
    struct EntryHash {
        using is_transparent = void;
        std::size_t operator()(const SnapshotEntry& entry) const noexcept;
        std::size_t operator()(const Shared<SnapshotEntry>& entry) const noexcept { return (*this)(*entry); }
    };
    struct EntryEqual {
        using is_transparent = void;
        bool operator()(const SnapshotEntry& left, const Shared<SnapshotEntry>& right) const {
            return left == *right;
        }
        bool operator()(const Shared<SnapshotEntry>& left, const SnapshotEntry& right) const {
            return *left == right;
        }
        bool operator()(const Shared<SnapshotEntry>& left, const Shared<SnapshotEntry>& right) const {
            return left == right;
        }
    };

    TextPool texts_;
    boost::unordered_flat_set<Shared<SnapshotEntry>, EntryHash, EntryEqual> entries_;
};

} // namespace marrowbox
