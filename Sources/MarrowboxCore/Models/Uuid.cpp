#include "Models/Uuid.h"

#include "Models/ASCII.h"
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
        const auto value = hexadecimalValue(text[position]);
        if (!value)
            return std::nullopt;
        auto& byte = id.bytes[digits / 2];
        byte = static_cast<std::uint8_t>(unsigned{byte} << 4 | *value);
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
