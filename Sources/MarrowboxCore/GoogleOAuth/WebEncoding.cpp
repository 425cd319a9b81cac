#include "GoogleOAuth/WebEncoding.h"

#include "Models/BackupError.h"
#include "Platform/Base64.h"

#include <array>

namespace marrowbox::WebEncoding {

namespace {

constexpr std::string_view unreserved = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~";

constexpr std::array<bool, 256> isUnreserved = [] {
    std::array<bool, 256> table{};
    for (const char letter : unreserved)
        table[static_cast<unsigned char>(letter)] = true;
    return table;
}();

} // namespace

void appendPercentEncoded(std::string_view text, std::string& to) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        if (isUnreserved[byte]) {
            to += letter;
            continue;
        }
        to += '%';
        to += digits[byte >> 4];
        to += digits[byte & 15];
    }
}

std::string form(const std::map<std::string, std::string>& fields) {
    std::string body;
    for (const auto& [key, value] : fields) {
        if (!body.empty())
            body += '&';
        appendPercentEncoded(key, body);
        body += '=';
        appendPercentEncoded(value, body);
    }
    return body;
}

std::string base64URL(std::string_view bytes) {
    std::string text = base64Encoded(bytes);
    for (char& letter : text) {
        if (letter == '+')
            letter = '-';
        else if (letter == '/')
            letter = '_';
    }
    text.erase(std::min(text.find('='), text.size()));
    return text;
}

std::string random(const RandomSource& source) {
    const auto bytes = source(32);
    if (!bytes)
        throw BackupError("Could not generate a secure sign-in request.");
    return base64URL(*bytes);
}

} // namespace marrowbox::WebEncoding
