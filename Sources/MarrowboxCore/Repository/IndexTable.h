#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace marrowbox {

/// Finds positions in a list by a hash of what stands there. A slot is eight bytes, so that a table over a
/// million records costs little beside them; the list itself holds the keys. Room is fixed when it is made.
class IndexTable {
  public:
    explicit IndexTable(std::size_t count) : slots_(std::bit_ceil(2 * count + 1)) {}

    /// Fetches what insert and lookUp look at first, to be there when they do.
    void prefetch(std::size_t hash) const { __builtin_prefetch(&slots_[hash & (slots_.size() - 1)]); }

    /// The position that is there already for an equal key, and otherwise the given one, which is put in.
    template <typename IsEqual>
    std::uint32_t insert(std::size_t hash, std::uint32_t position, IsEqual isEqual) {
        std::uint64_t& slot = slots_[slotFor(hash, isEqual)];
        if (slot == 0)
            slot = (hash >> 32) << 32 | (position + 1);
        return positionIn(slot);
    }

    static constexpr std::uint32_t none = UINT32_MAX;

    /// The position of an equal key, or none.
    template <typename IsEqual>
    std::uint32_t lookUp(std::size_t hash, IsEqual isEqual) const {
        return positionIn(slots_[slotFor(hash, isEqual)]);
    }

  private:
    static std::uint32_t positionIn(std::uint64_t slot) { return static_cast<std::uint32_t>(slot) - 1; }

    /// The slot of an equal key, or the empty one where it belongs. The upper half of the hash stands in the
    /// slot, so that nearly every look at the list is at the right record.
    template <typename IsEqual>
    std::size_t slotFor(std::size_t hash, IsEqual isEqual) const {
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t index = hash & mask;; index = (index + 1) & mask) {
            const std::uint64_t slot = slots_[index];
            if (slot == 0 || (slot >> 32 == hash >> 32 && isEqual(positionIn(slot))))
                return index;
        }
    }

    std::vector<std::uint64_t> slots_;
};

} // namespace marrowbox
