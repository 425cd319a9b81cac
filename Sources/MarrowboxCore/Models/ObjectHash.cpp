#include "Models/ObjectHash.h"

#include <cstring>
#include <stdexcept>

namespace marrowbox {

namespace {

constexpr std::size_t digestSize = 32;

/// The value of each lower-case hexadecimal digit, and 255 for every other byte.
constexpr auto digitValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(255);
    for (std::uint8_t value = 0; value < 16; ++value)
        values[static_cast<unsigned char>("0123456789abcdef"[value])] = value;
    return values;
}();

bool decodeDigits(std::string_view text, std::array<std::uint8_t, digestSize>& into) {
    if (text.size() != 2 * digestSize)
        return false;
    std::uint8_t unknown = 0;
    for (std::size_t index = 0; index < digestSize; ++index) {
        const auto high = digitValues[static_cast<unsigned char>(text[2 * index])];
        const auto low = digitValues[static_cast<unsigned char>(text[2 * index + 1])];
        unknown |= static_cast<std::uint8_t>((high | low) & 0xF0);
        into[index] = static_cast<std::uint8_t>(high << 4 | (low & 15));
    }
    return unknown == 0;
}

} // namespace

ObjectHash::ObjectHash(std::string_view text) {
    if (!decodeDigits(text, std::get<0>(value_)))
        value_.emplace<1>(text);
}

ObjectHash ObjectHash::ofDigest(std::string_view raw) {
    if (raw.size() != digestSize)
        throw std::invalid_argument("A SHA-256 has 32 bytes.");
    ObjectHash hash;
    std::memcpy(std::get<0>(hash.value_).data(), raw.data(), digestSize);
    return hash;
}

std::string ObjectHash::text() const {
    if (!isValid())
        return std::get<1>(value_).string();
    std::string text(2 * digestSize, '\0');
    writeText(text.data());
    return text;
}

void ObjectHash::writeText(char* to) const noexcept {
    constexpr std::string_view digits = "0123456789abcdef";
    for (const auto byte : *std::get_if<0>(&value_)) {
        *to++ = digits[byte >> 4];
        *to++ = digits[byte & 15];
    }
}

std::size_t ObjectHash::tableHash() const noexcept {
    if (!isValid())
        return SharedTextHash()(std::get_if<1>(&value_)->view());
    std::size_t value = 0;
    std::memcpy(&value, std::get_if<0>(&value_)->data(), sizeof value);
    return value;
}

} // namespace marrowbox
