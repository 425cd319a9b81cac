#include "GoogleOAuth/WebEncoding.h"

#include "Models/BackupError.h"
#include "Models/PercentEncoding.h"
#include "Platform/Base64.h"

#include <algorithm>

namespace marrowbox::WebEncoding {

std::string form(const std::map<std::string, std::string>& fields) {
    std::string body;
    for (const auto& [key, value] : fields) {
        if (!body.empty())
            body += '&';
        body += percentEncoded(key) + '=' + percentEncoded(value);
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
