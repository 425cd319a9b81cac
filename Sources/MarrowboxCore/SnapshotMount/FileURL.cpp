#include "SnapshotMount/FileURL.h"

#include "SnapshotMount/MountPaths.h"

#include <optional>

namespace marrowbox {

namespace {

constexpr std::string_view scheme = "file://";
/// What stands in the path of a URL without an escape, besides letters and digits.
constexpr std::string_view plainMarks = "/-._~!$&'()*+,:@=";

bool isPlain(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           plainMarks.find(byte) != std::string_view::npos;
}

std::string escaped(std::string_view path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char byte : path) {
        if (isPlain(byte)) {
            text += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        text += {'%', digits[value >> 4], digits[value & 15]};
    }
    return text;
}

std::optional<unsigned> hexadecimalDigit(char digit) {
    if (digit >= '0' && digit <= '9')
        return static_cast<unsigned>(digit - '0');
    if (digit >= 'a' && digit <= 'f')
        return static_cast<unsigned>(digit - 'a' + 10);
    if (digit >= 'A' && digit <= 'F')
        return static_cast<unsigned>(digit - 'A' + 10);
    return std::nullopt;
}

/// Absent when an escape is broken or stands for NUL, which no path can hold.
std::optional<std::string> unescaped(std::string_view text) {
    std::string path;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (text[position] != '%') {
            path += text[position];
            continue;
        }
        const auto digits = text.substr(position + 1, 2);
        if (digits.size() < 2)
            return std::nullopt;
        const auto high = hexadecimalDigit(digits[0]);
        const auto low = hexadecimalDigit(digits[1]);
        if (!high || !low || (*high == 0 && *low == 0))
            return std::nullopt;
        path += static_cast<char>(*high << 4 | *low);
        position += 2;
    }
    if (path.find('\0') != std::string::npos)
        return std::nullopt;
    return path;
}

/// The path of a file URL on this machine, before its escapes are undone.
std::optional<std::string_view> escapedPath(std::string_view text) {
    if (!text.starts_with(scheme))
        return std::nullopt;
    text.remove_prefix(scheme.size());
    if (constexpr std::string_view host = "localhost"; text.starts_with(host))
        text.remove_prefix(host.size());
    if (!text.starts_with('/') || text.find_first_of("?#") != std::string_view::npos)
        return std::nullopt;
    return text;
}

} // namespace

FileURL FileURL::ofFile(const fs::path& path) {
    return {std::string(scheme) + escaped(path.native())};
}

FileURL FileURL::ofFolder(const fs::path& path) {
    return {std::string(scheme) + escaped(path.native()) + "/"};
}

fs::path FileURL::path() const {
    if (const auto local = escapedPath(text))
        if (const auto path = unescaped(*local))
            return standardized(*path);
    return "not a file/" + text;
}

} // namespace marrowbox
