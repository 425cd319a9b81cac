#include "Models/PercentEncoding.h"

#include "Models/ASCII.h"

namespace marrowbox {

std::string percentEncoded(std::string_view text, std::string_view plainMarks) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        if (isASCIILetterOrDigit(byte) || plainMarks.find(byte) != std::string_view::npos)
            encoded += byte;
        else
            encoded += {'%', digits[value >> 4], digits[value & 15]};
    }
    return encoded;
}

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (text[position] != '%') {
            decoded += text[position];
            continue;
        }
        const std::string_view digits = text.substr(position + 1, 2);
        if (digits.size() < 2)
            return std::nullopt;
        const auto high = hexadecimalValue(digits[0]);
        const auto low = hexadecimalValue(digits[1]);
        if (!high || !low)
            return std::nullopt;
        decoded += static_cast<char>(*high << 4 | *low);
        position += 2;
    }
    return decoded;
}

} // namespace marrowbox
