#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

namespace marrowbox {

/// An immutable record that lies once in memory however many lists hold it; one pointer wide, never empty
/// unless moved from. Equal when the records are equal. Copies are cheap and safe on any thread.
template <typename Record>
class Shared {
  public:
    Shared(Record record) : node_(new Node{std::move(record)}) {}
    Shared(const Shared& other) noexcept : node_(other.node_) { retain(); }
    Shared(Shared&& other) noexcept : node_(std::exchange(other.node_, nullptr)) {}
    Shared& operator=(Shared other) noexcept {
        std::swap(node_, other.node_);
        return *this;
    }
    ~Shared() { release(); }

    const Record& operator*() const noexcept { return node_->record; }
    const Record* operator->() const noexcept { return &node_->record; }

    friend bool operator==(const Shared& left, const Shared& right) {
        return left.node_ == right.node_ || *left == *right;
    }

  private:
    struct Node {
        Record record;
        std::atomic<std::uint32_t> owners = 1;
    };
    void retain() const noexcept {
        if (node_ != nullptr)
            node_->owners.fetch_add(1, std::memory_order_relaxed);
    }
    void release() noexcept {
        if (node_ != nullptr && node_->owners.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete node_;
    }

    Node* node_;
};

} // namespace marrowbox
