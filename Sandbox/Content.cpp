#include "Sandbox/Content.h"

#include "Platform/Digest.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace marrowbox::sandbox {

namespace {

constexpr std::size_t wordSize = sizeof(std::uint64_t);

/// One step of a splittable generator: each word of a pattern is computed from its place, in any order.
std::uint64_t patternWord(std::uint64_t seed, std::uint64_t index) {
    std::uint64_t mixed = seed * 0xD1342543DE82EF95U + (index + 1) * 0x9E3779B97F4A7C15U;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31);
}

} // namespace

Content::Content(std::string bytes)
    : size_(static_cast<std::int64_t>(bytes.size())),
      given_(std::make_shared<const std::string>(std::move(bytes))) {
}

Content Content::pattern(std::uint64_t seed, std::int64_t size) {
    Content content;
    content.seed_ = seed;
    content.size_ = size;
    return content;
}

void Content::read(std::int64_t offset, std::span<char> into) const {
    const auto start = static_cast<std::size_t>(offset);
    if (given_) {
        given_->copy(into.data(), into.size(), start);
        return;
    }
    std::uint64_t index = start / wordSize;
    std::size_t skipped = start % wordSize;
    for (std::size_t done = 0; done < into.size(); ++index) {
        const std::uint64_t word = patternWord(seed_, index);
        const std::size_t count = std::min(wordSize - skipped, into.size() - done);
        if (count == wordSize)
            std::memcpy(into.data() + done, &word, wordSize); // a fixed size is one store
        else
            std::memcpy(into.data() + done, reinterpret_cast<const char*>(&word) + skipped, count);
        done += count;
        skipped = 0;
    }
}

std::string Content::bytes() const {
    std::string all(static_cast<std::size_t>(size_), '\0');
    read(0, all);
    return all;
}

std::string Content::md5() const {
    Digest digest = Digest::md5();
    std::array<char, 16384> block{};
    for (std::int64_t offset = 0; offset < size_;) {
        const auto count = std::min<std::int64_t>(size_ - offset, block.size());
        const std::span<char> part(block.data(), static_cast<std::size_t>(count));
        read(offset, part);
        digest.update({part.data(), part.size()});
        offset += count;
    }
    return hexadecimal(digest.finish());
}

} // namespace marrowbox::sandbox
