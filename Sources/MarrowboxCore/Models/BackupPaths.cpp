#include "Models/BackupPaths.h"

#include "Models/BackupError.h"
#include "Models/PathKeys.h"
#include "Platform/UnicodeText.h"

#include <algorithm>
#include <array>
#include <vector>

namespace marrowbox {

namespace {

/// How far the table's memory is asked for ahead of its use; a power of two.
constexpr std::uint32_t lookahead = 16;

[[noreturn]] void refuseUnsafe(std::string_view path) {
    throw BackupError("Unsafe path in backup: " + std::string(path));
}

bool isSafe(std::string_view path) {
    if (path.find('\0') != std::string_view::npos)
        return false;
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view piece = path.substr(start, end - start);
        if (piece.empty() || piece == "." || piece == "..")
            return false;
        start = end + 1;
    }
    return true;
}

const SourceEntry& sourceOf(const SourceEntry& entry) {
    return entry;
}
const SourceEntry& sourceOf(const Shared<SnapshotEntry>& entry) {
    return entry->source;
}

const SourceEntry& sourceOf(const SnapshotEntry* entry) {
    return entry->source;
}

/// One check of a list. The keys go into the table some entries late, when its memory has arrived.
template <typename Entry>
class EntryCheck {
  public:
    explicit EntryCheck(std::span<const Entry> entries) : entries_(entries), table_(entries.size()) {}

    void run() {
        for (std::uint32_t index = 0; index < entries_.size(); ++index)
            take(index);
        enterUpTo(entries_.size());
        // What lies behind the first item of a folder has the same folders above it.
        for (const std::uint32_t index : firstOfFolders_)
            refuseFileAbove(index);
    }

  private:
    std::string_view path(std::size_t index) const { return sourceOf(entries_[index]).path.view(); }

    void take(std::uint32_t index) {
        const std::string_view taken = path(index);
        const std::size_t known = keys_.moveTo(taken);
        if (!isSafe(taken.substr(known))) { // the folders before that have been found safe already
            enterUpTo(index);               // a collision further up in the list comes first
            refuseUnsafe(taken);
        }
        if (known < keys_.folder().size())
            firstOfFolders_.push_back(index);
        if (index >= lookahead)
            enterUpTo(index - lookahead + 1);
        const std::uint64_t hash = keys_.whole().hash;
        hashes_[index % lookahead] = hash;
        table_.prefetch(hash);
    }

    /// Enters the keys of all entries before this one.
    void enterUpTo(std::size_t end) {
        for (; entered_ < end; ++entered_) {
            const auto hasItsKey = [this](std::uint32_t other) {
                return collisionKey(path(other)) == collisionKey(path(entered_));
            };
            if (!table_.insert(hashes_[entered_ % lookahead], entered_, hasItsKey))
                throw BackupError("Two Google Drive items map to “" + std::string(path(entered_)) +
                                  "”. Rename one in Drive before backing up.");
        }
    }

    /// Every key stands in the table once, so that the item found under a folder's key is the only one there.
    void refuseFileAbove(std::uint32_t index) {
        keys_.moveTo(path(index));
        for (std::size_t depth = keys_.depth() - 1; depth > 0; --depth) {
            const auto [key, hash] = keys_.ancestor(depth);
            const auto hasKey = [&](std::uint32_t other) { return collisionKey(path(other)) == key; };
            const auto found = table_.find(hash, hasKey);
            if (!found)
                continue;
            if (!sourceOf(entries_[*found]).isDirectory)
                throw BackupError("A file and folder conflict at “" + std::string(path(index)) + "”.");
            if (*found < index) // a folder that has been cleared, and all above it
                return;
        }
    }

    std::span<const Entry> entries_;
    PathKeyTable table_;
    PathKeys keys_;
    std::array<std::uint64_t, lookahead> hashes_{};
    std::uint32_t entered_ = 0;
    std::vector<std::uint32_t> firstOfFolders_;
};

} // namespace

void BackupPaths::validate(std::string_view path) {
    if (!isSafe(path))
        refuseUnsafe(path);
}

void BackupPaths::validateEntries(std::span<const SourceEntry> entries) {
    EntryCheck<SourceEntry>(entries).run();
}

void BackupPaths::validateEntries(std::span<const Shared<SnapshotEntry>> entries) {
    EntryCheck<Shared<SnapshotEntry>>(entries).run();
}

void BackupPaths::validateEntries(std::span<const SnapshotEntry* const> entries) {
    EntryCheck<const SnapshotEntry*>(entries).run();
}

} // namespace marrowbox
