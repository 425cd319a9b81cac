#pragma once

#include <atomic>
#include <boost/unordered/unordered_flat_set.hpp>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>

namespace marrowbox {

/// An immutable text in one machine word. Seven bytes and fewer lie in the word itself; longer texts lie once
/// in memory, counted, however many records hold them. A manifest of a million files is made of these, so
/// their size is the program's size. Copies are cheap and safe on any thread.
class SharedText {
  public:
    SharedText() noexcept = default;
    SharedText(std::string_view text);
    SharedText(const char* text) : SharedText(std::string_view(text)) {}
    SharedText(const std::string& text) : SharedText(std::string_view(text)) {}
    SharedText(const SharedText& other) noexcept : word_(other.word_) { retain(); }
    SharedText(SharedText&& other) noexcept : word_(other.word_) { other.word_ = emptyWord; }
    SharedText& operator=(const SharedText& other) noexcept {
        SharedText copy(other);
        std::swap(word_, copy.word_);
        return *this;
    }
    SharedText& operator=(SharedText&& other) noexcept {
        std::swap(word_, other.word_);
        return *this;
    }
    ~SharedText() { releaseBlock(); }

    std::string_view view() const noexcept {
        if (isInline())
            return {reinterpret_cast<const char*>(&word_) + 1, (word_ >> 1) & 7};
        const char* bytes = reinterpret_cast<const char*>(block()) + headerSize;
        if (block()->length != longMark)
            return {bytes, block()->length};
        std::uint32_t length = 0;
        std::memcpy(&length, bytes, sizeof length);
        return {bytes + sizeof length, length};
    }
    operator std::string_view() const noexcept { return view(); }
    std::string string() const { return std::string(view()); }
    bool empty() const noexcept { return view().empty(); }
    std::size_t size() const noexcept { return view().size(); }

    /// Equal words hold equal texts without a look at the bytes.
    friend bool operator==(const SharedText& left, const SharedText& right) noexcept {
        return left.word_ == right.word_ || left.view() == right.view();
    }
    friend std::strong_ordering operator<=>(const SharedText& left, const SharedText& right) noexcept {
        return left.view() <=> right.view();
    }
    friend std::ostream& operator<<(std::ostream& stream, const SharedText& text) {
        return stream << text.view();
    }

  private:
    /// What stands before the text's bytes. They begin in its padding: the identifiers of Drive's items have
    /// 33 characters, and two bytes more would make the next larger piece of memory of each.
    struct Block {
        std::atomic<std::uint32_t> owners;
        std::uint16_t length; ///< longMark when the length stands before the bytes.
    };
    static constexpr std::size_t headerSize = 6;
    static constexpr std::uint16_t longMark = 0xFFFF;
    // The low bit tells an inline text; its length stands in the three bits above it, its bytes in the rest.
    static constexpr std::uintptr_t emptyWord = 1;
    static_assert(sizeof(std::uintptr_t) == 8);

    bool isInline() const noexcept { return word_ & 1; }
    Block* block() const noexcept { return reinterpret_cast<Block*>(word_); }
    void retain() const noexcept {
        if (!isInline())
            block()->owners.fetch_add(1, std::memory_order_relaxed);
    }
    void releaseBlock() noexcept;

    std::uintptr_t word_ = emptyWord;
};

struct SharedTextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept;
};

struct SharedTextEqual {
    using is_transparent = void;
    bool operator()(std::string_view left, std::string_view right) const noexcept { return left == right; }
};

/// Gives equal texts one body. It lives as long as the work that reads many records; the texts outlive it.
/// Not safe to share between threads.
class TextPool {
  public:
    SharedText shared(std::string_view text);
    /// Makes a text that exists already the one that later equal ones share.
    void adopt(const SharedText& text) { texts_.insert(text); }

  private:
    boost::unordered_flat_set<SharedText, SharedTextHash, SharedTextEqual> texts_;
};

} // namespace marrowbox

template <>
struct std::hash<marrowbox::SharedText> {
    std::size_t operator()(const marrowbox::SharedText& text) const noexcept {
        return marrowbox::SharedTextHash()(text.view());
    }
};
