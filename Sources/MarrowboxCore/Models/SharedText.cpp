#include "Models/SharedText.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

namespace marrowbox {

namespace {

constexpr std::size_t inlineCapacity = 7;

} // namespace

SharedText::SharedText(std::string_view text) {
    if (text.size() <= inlineCapacity) {
        word_ = 1 | text.size() << 1;
        text.copy(reinterpret_cast<char*>(&word_) + 1, text.size());
        return;
    }
    if (text.size() > UINT32_MAX)
        throw std::length_error("A text is too long.");
    const bool isLong = text.size() >= longMark;
    const auto length = static_cast<std::uint32_t>(text.size());
    auto* memory = static_cast<char*>(std::malloc(headerSize + (isLong ? sizeof length : 0) + text.size()));
    if (memory == nullptr)
        throw std::bad_alloc();
    auto* made = new (memory) Block{1, isLong ? longMark : static_cast<std::uint16_t>(length)};
    char* to = memory + headerSize;
    if (isLong) {
        std::memcpy(to, &length, sizeof length);
        to += sizeof length;
    }
    std::memcpy(to, text.data(), text.size());
    word_ = reinterpret_cast<std::uintptr_t>(made);
}

void SharedText::releaseBlock() noexcept {
    if (isInline())
        return;
    if (block()->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        block()->~Block();
        std::free(block());
    }
}

std::size_t SharedTextHash::operator()(std::string_view text) const noexcept {
    return std::hash<std::string_view>()(text);
}

SharedText TextPool::shared(std::string_view text) {
    if (text.size() <= inlineCapacity)
        return text;
    const auto found = texts_.find(text);
    if (found != texts_.end())
        return *found;
    return *texts_.emplace(text).first;
}

} // namespace marrowbox
