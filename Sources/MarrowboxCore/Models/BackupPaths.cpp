#include "Models/BackupPaths.h"

#include "Models/BackupError.h"
#include "Models/PathKeys.h"
#include "Platform/UnicodeText.h"

#include <algorithm>

namespace marrowbox {

namespace {

[[noreturn]] void refuseUnsafe(std::string_view path) {
    throw BackupError("Unsafe path in backup: " + std::string(path));
}

const SourceEntry& sourceOf(const SourceEntry& entry) {
    return entry;
}
const SourceEntry& sourceOf(const Shared<SnapshotEntry>& entry) {
    return entry->source;
}

/// The folder that a path lies in, empty at the root.
std::string_view parentOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

template <typename Entry>
class EntryCheck {
  public:
    explicit EntryCheck(std::span<const Entry> entries) : entries_(entries), table_(entries.size()) {}

    void run() {
        refuseUnsafeAndCollidingPaths();
        refuseFilesInPlaceOfFolders();
    }

  private:
    const SourceEntry& source(std::size_t index) const { return sourceOf(entries_[index]); }

    /// Equal hashes are rare enough to build the other key anew.
    auto hasKey(std::string_view key) {
        return [this, key](std::uint32_t index) {
            otherKey_.clear();
            appendCollisionKey(source(index).path.view(), otherKey_);
            return otherKey_ == key;
        };
    }

    void refuseUnsafeAndCollidingPaths() {
        for (std::size_t index = 0; index < entries_.size(); ++index) {
            const std::string_view path = source(index).path.view();
            BackupPaths::validate(path);
            keys_.moveTo(path);
            const auto [key, hash] = keys_.whole();
            if (!table_.insert(hash, static_cast<std::uint32_t>(index), hasKey(key)))
                throw BackupError("Two Google Drive items map to “" + std::string(path) +
                                  "”. Rename one in Drive before backing up.");
        }
    }

    /// Every key stands in the table once, so that the item found under a folder's key is the only one there.
    void refuseFilesInPlaceOfFolders() {
        std::string_view clearedParent;
        for (std::size_t index = 0; index < entries_.size(); ++index) {
            const std::string_view path = source(index).path.view();
            const std::string_view parent = parentOf(path);
            if (parent == clearedParent)
                continue;
            refuseFileAbove(path, index);
            clearedParent = parent;
        }
    }

    void refuseFileAbove(std::string_view path, std::size_t index) {
        keys_.moveTo(path);
        for (std::size_t depth = keys_.depth() - 1; depth > 0; --depth) {
            const auto [key, hash] = keys_.ancestor(depth);
            const auto found = table_.find(hash, hasKey(key));
            if (!found)
                continue;
            if (!source(*found).isDirectory)
                throw BackupError("A file and folder conflict at “" + std::string(path) + "”.");
            if (*found < index) // a folder that has been cleared, and all above it
                return;
        }
    }

    std::span<const Entry> entries_;
    PathKeyTable table_;
    PathKeys keys_;
    std::string otherKey_;
};

} // namespace

void BackupPaths::validate(std::string_view path) {
    if (path.empty() || path.find('\0') != std::string_view::npos)
        refuseUnsafe(path);
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view piece = path.substr(start, end - start);
        if (piece.empty() || piece == "." || piece == "..")
            refuseUnsafe(path);
        start = end + 1;
    }
}

void BackupPaths::validateEntries(std::span<const SourceEntry> entries) {
    EntryCheck<SourceEntry>(entries).run();
}

void BackupPaths::validateEntries(std::span<const Shared<SnapshotEntry>> entries) {
    EntryCheck<Shared<SnapshotEntry>>(entries).run();
}

} // namespace marrowbox
