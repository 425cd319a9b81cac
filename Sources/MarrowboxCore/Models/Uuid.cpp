#include "Models/Uuid.h"

#include "Platform/Digest.h"
#include "Platform/RandomBytes.h"

#include <cerrno>
#include <cstring>
#include <system_error>

namespace marrowbox {

namespace {

bool isDashAt(std::size_t position) {
    return position == 8 || position == 13 || position == 18 || position == 23;
}

int digitValue(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

} // namespace

Uuid Uuid::random() {
    const auto random = randomBytes(16);
    if (!random)
        throw std::system_error(EIO, std::generic_category(), "random bytes");
    Uuid id;
    std::memcpy(id.bytes.data(), random->data(), id.bytes.size());
    id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0F) | 0x40);
    id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3F) | 0x80);
    return id;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != textLength)
        return std::nullopt;
    Uuid id;
    std::size_t digits = 0;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (isDashAt(position)) {
            if (text[position] != '-')
                return std::nullopt;
            continue;
        }
        const int value = digitValue(text[position]);
        if (value < 0)
            return std::nullopt;
        auto& byte = id.bytes[digits / 2];
        byte = static_cast<std::uint8_t>(byte << 4 | value);
        ++digits;
    }
    return id;
}

std::string Uuid::text() const {
    std::string text(textLength, '-');
    writeText(text.data());
    return text;
}

void Uuid::writeText(char* to) const {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::size_t position = 0;
    for (const auto byte : bytes) {
        if (isDashAt(position))
            to[position++] = '-';
        to[position++] = digits[byte >> 4];
        to[position++] = digits[byte & 15];
    }
}

} // namespace marrowbox

std::size_t std::hash<marrowbox::Uuid>::operator()(const marrowbox::Uuid& id) const noexcept {
    std::size_t value = 0;
    std::memcpy(&value, id.bytes.data(), sizeof value);
    return value;
}
