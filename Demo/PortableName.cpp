#include "Demo/PortableName.h"

#include "Platform/Digest.h"

#include <cstdio>
#include <optional>

namespace marrowbox::demo {

namespace {

/// The first character of a text in UTF-8.
std::string_view firstCharacter(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    return text.substr(0, length);
}

unsigned scalarOf(std::string_view character) {
    const auto lead = static_cast<unsigned char>(character.front());
    if (character.size() == 1)
        return lead;
    unsigned scalar = lead & (0x7Fu >> character.size());
    for (const char byte : character.substr(1))
        scalar = scalar << 6 | (static_cast<unsigned char>(byte) & 0x3Fu);
    return scalar;
}

std::string escapeOf(std::string_view character) {
    char escape[16];
    const int length = std::snprintf(escape, sizeof escape, "%%%02X", scalarOf(character));
    return {escape, static_cast<std::size_t>(length)};
}

/// What follows the name in the text; absent when the text does not begin with the name.
std::optional<std::string_view> afterName(std::string_view text, std::string_view name) {
    while (!name.empty()) {
        const std::string_view character = firstCharacter(name);
        const std::string escape = escapeOf(character);
        const bool isPlain = text.starts_with(character) && character != "%";
        if (!isPlain && !text.starts_with(escape))
            return std::nullopt;
        text.remove_prefix(isPlain ? character.size() : escape.size());
        name.remove_prefix(character.size());
    }
    return text;
}

std::string withoutTag(std::string_view found, const std::string& id) {
    const std::string tag = " [" + hexadecimal(std::string_view(sha256(id)).substr(0, 5)) + "]";
    std::string plain(found);
    if (const auto at = plain.rfind(tag); at != std::string::npos)
        plain.erase(at, tag.size());
    return plain;
}

} // namespace

bool isNameOf(std::string_view found, const DrivePicture& item) {
    return afterName(found, item.name) == item.extension ||
           afterName(withoutTag(found, item.id), item.name) == item.extension;
}

} // namespace marrowbox::demo
