#include "Models/JSONSharing.h"

namespace marrowbox {

std::size_t JSONSharing::EntryHash::operator()(const SnapshotEntry& entry) const noexcept {
    // A path and its content tell entries apart; the rest of the record follows from them nearly always.
    const std::size_t path = SharedTextHash()(entry.source.path);
    const std::size_t content = entry.objectHash ? entry.objectHash->tableHash() : 0;
    return path ^ (content * 31 + SharedTextHash()(entry.source.version));
}

Shared<SnapshotEntry> JSONSharing::shared(SnapshotEntry&& entry) {
    const auto found = entries_.find(entry);
    if (found != entries_.end())
        return *found;
    return *entries_.insert(Shared<SnapshotEntry>(std::move(entry))).first;
}

} // namespace marrowbox
