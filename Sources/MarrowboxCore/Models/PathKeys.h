#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace marrowbox {

/// The collision key of a path or of a folder above it, with a hash of it.
struct PathKey {
    std::string_view text;
    std::uint64_t hash = 0;
};

/// The keys of a path and of all folders above it, made piece by piece: no rule of composition or of lower
/// case reaches across a "/", so the key of a folder is the beginning of the key of what lies in it. A path
/// costs only the pieces that it does not share with the one before it.
class PathKeys {
  public:
    /// Takes a path, which stays in place until the next call. Gives the length of the folders that it shares
    /// with the path before it, with the "/" at their end.
    std::size_t moveTo(std::string_view path);
    /// The folder that the path lies in, with the "/" at its end; empty at the root.
    std::string_view folder() const { return folder_; }
    /// The number of pieces.
    std::size_t depth() const { return pieces_.size(); }
    /// The key of the first so many pieces, from 1 on. Valid until the next call of moveTo.
    PathKey ancestor(std::size_t depth) const {
        const Piece& last = pieces_[depth - 1];
        return {std::string_view(text_).substr(0, last.end), last.hash};
    }
    PathKey whole() const { return ancestor(depth()); }

  private:
    struct Piece {
        std::size_t end;
        std::uint64_t hash;
    };
    void append(std::string_view piece);

    std::string text_;
    std::vector<Piece> pieces_;
    std::string_view folder_;
};

/// Finds numbered items by their keys. It holds numbers and parts of hashes, eight bytes an item, since a
/// backup may have a million of them; whether two keys are equal is asked of the owner of the items.
class PathKeyTable {
  public:
    /// For at most so many items.
    explicit PathKeyTable(std::size_t items);
    /// Fetches what insert and find look at first, to be there when they do.
    void prefetch(std::uint64_t hash) const { __builtin_prefetch(&slots_[hash & mask_]); }
    /// False when isSame says of an item that is here already that it has this key.
    template <typename IsSame>
    bool insert(std::uint64_t hash, std::uint32_t item, IsSame isSame) {
        Slot& slot = slots_[position(hash, isSame)];
        if (slot.item != none)
            return false;
        slot = {fragment(hash), item};
        return true;
    }
    template <typename IsSame>
    std::optional<std::uint32_t> find(std::uint64_t hash, IsSame isSame) const {
        const std::uint32_t item = slots_[position(hash, isSame)].item;
        return item == none ? std::nullopt : std::optional(item);
    }

  private:
    static constexpr std::uint32_t none = UINT32_MAX;
    struct Slot {
        std::uint32_t fragment = 0;
        std::uint32_t item = none;
    };
    static std::uint32_t fragment(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }

    /// Where the item with this key stands, or the free place where it would.
    template <typename IsSame>
    std::size_t position(std::uint64_t hash, IsSame isSame) const {
        for (std::size_t at = hash & mask_;; at = (at + 1) & mask_) {
            const Slot& slot = slots_[at];
            if (slot.item == none || (slot.fragment == fragment(hash) && isSame(slot.item)))
                return at;
        }
    }

    std::vector<Slot> slots_;
    std::size_t mask_;
};

} // namespace marrowbox
