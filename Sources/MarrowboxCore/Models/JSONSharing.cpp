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

void JSONSharing::adopt(const SourceEntry& entry) {
    for (const SharedText* text : {&entry.id, &entry.path, &entry.version, &entry.mimeType})
        texts_.adopt(*text);
    if (entry.md5)
        texts_.adopt(*entry.md5);
}

void JSONSharing::reserve(std::size_t entryCount) {
    entries_.reserve(entryCount);
}

} // namespace marrowbox
