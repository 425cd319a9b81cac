#include "Platform/Base64.h"

#include <openssl/evp.h>

namespace marrowbox {

std::string base64Encoded(std::string_view bytes) {
    // The library ends its text with a NUL, for which there must be room.
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    const int length =
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                        reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::optional<std::string> base64Decoded(std::string_view text) {
    if (text.size() % 4 != 0)
        return std::nullopt;
    if (text.empty())
        return std::string();
    std::string bytes(text.size() / 4 * 3, '\0');
    const int length =
        EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                        reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    if (length < 0)
        return std::nullopt;
    // The library counts padding as zero bytes.
    std::size_t padding = 0;
    while (padding < 2 && text[text.size() - 1 - padding] == '=')
        ++padding;
    bytes.resize(static_cast<std::size_t>(length) - padding);
    // It also forgives white space at the ends and stray padding; only the one spelling is accepted here.
    if (base64Encoded(bytes) != text)
        return std::nullopt;
    return bytes;
}

} // namespace marrowbox
