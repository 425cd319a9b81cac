#include "Sandbox/WireText.h"

#include "Platform/Base64.h"
#include "Platform/Digest.h"

#include <algorithm>
#include <charconv>
#include <strings.h>

namespace marrowbox::sandbox {

namespace {

bool isUnreserved(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '-' || byte == '.' || byte == '_' || byte == '~';
}

std::optional<char> escapedByte(std::string_view digits) {
    unsigned value = 0;
    if (digits.size() != 2)
        return std::nullopt;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + 2, value, 16);
    if (error != std::errc{} || end != digits.data() + 2)
        return std::nullopt;
    return static_cast<char>(value);
}

} // namespace

std::optional<std::string> firstValue(const NamedValues& values, std::string_view name) {
    for (const auto& [key, value] : values)
        if (key == name)
            return value;
    return std::nullopt;
}

std::optional<std::string> firstHeader(const NamedValues& headers, std::string_view name) {
    for (const auto& [key, value] : headers)
        if (key.size() == name.size() && strncasecmp(key.data(), name.data(), name.size()) == 0)
            return value;
    return std::nullopt;
}

std::string percentDecoded(std::string_view text, bool plusIsBlank) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (text[position] == '%') {
            if (const auto byte = escapedByte(text.substr(position + 1, 2))) {
                decoded += *byte;
                position += 2;
                continue;
            }
        }
        decoded += plusIsBlank && text[position] == '+' ? ' ' : text[position];
    }
    return decoded;
}

std::string percentEncoded(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char byte : text) {
        if (isUnreserved(byte)) {
            encoded += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        encoded += '%';
        encoded += digits[value >> 4];
        encoded += digits[value & 15];
    }
    return encoded;
}

NamedValues queryItems(std::string_view query) {
    NamedValues items;
    while (!query.empty()) {
        const std::size_t end = std::min(query.find('&'), query.size());
        const std::string_view item = query.substr(0, end);
        query.remove_prefix(std::min(end + 1, query.size()));
        if (item.empty())
            continue;
        const std::size_t equals = std::min(item.find('='), item.size());
        const std::string_view value = equals < item.size() ? item.substr(equals + 1) : std::string_view();
        items.emplace_back(percentDecoded(item.substr(0, equals)), percentDecoded(value));
    }
    return items;
}

std::string base64URLEncoded(std::string_view bytes) {
    std::string text = base64Encoded(bytes);
    std::replace(text.begin(), text.end(), '+', '-');
    std::replace(text.begin(), text.end(), '/', '_');
    text.erase(std::find(text.begin(), text.end(), '='), text.end());
    return text;
}

std::optional<std::string> base64URLDecoded(std::string_view text) {
    if (text.find_first_of("+/=") != std::string_view::npos)
        return std::nullopt;
    std::string standard(text);
    std::replace(standard.begin(), standard.end(), '-', '+');
    std::replace(standard.begin(), standard.end(), '_', '/');
    standard.append((4 - standard.size() % 4) % 4, '=');
    return base64Decoded(standard);
}

void appendJSONText(std::string& to, std::string_view text) {
    to += '"';
    for (const char byte : text) {
        if (byte == '"' || byte == '\\') {
            to += '\\';
            to += byte;
        } else if (static_cast<unsigned char>(byte) < 0x20) {
            to += "\\u00";
            to += hexadecimal(std::string_view(&byte, 1));
        } else {
            to += byte;
        }
    }
    to += '"';
}

} // namespace marrowbox::sandbox
