#include "DriveAPI/DriveNames.h"

#include "Models/BackupError.h"
#include "Platform/Digest.h"

#include <boost/unordered/unordered_flat_map.hpp>
#include <cstdint>
#include <numeric>
#include <optional>

namespace marrowbox::DriveNames {

namespace {

constexpr std::string_view nativeTypePrefix = "application/vnd.google-apps.";
constexpr std::size_t nameLimit = 240; // bytes; most file systems take 255

/// What a native document is exported to.
struct ExportType {
    std::string_view drive;
    std::string_view extension;
};

constexpr ExportType exportTypes[] = {
    {"document", "docx"},
    {"spreadsheet", "xlsx"},
    {"presentation", "pptx"},
    {"drawing", "svg"},
};

/// The extension of an export, with its dot; empty for what is downloaded as it is; absent for a native type
/// that is neither.
std::optional<std::string_view> exportExtension(const DriveFile& file) {
    const std::string_view type = file.mimeType.view();
    if (!type.starts_with(nativeTypePrefix) || file.isFolder())
        return std::string_view();
    const std::string_view kind = type.substr(nativeTypePrefix.size());
    for (const ExportType& known : exportTypes)
        if (known.drive == kind)
            return known.extension;
    return std::nullopt;
}

/// Printable ASCII but for the four separators: what stands for itself.
bool isPlain(char letter) {
    return letter >= ' ' && letter < '\x7F' && letter != '%' && letter != '/' && letter != ':' &&
           letter != '\\';
}

void appendEscape(char32_t scalar, std::string& to) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    to += '%';
    int shift = 4;
    while (shift < 28 && scalar >> (shift + 4) != 0)
        shift += 4;
    for (; shift >= 0; shift -= 4)
        to += digits[(scalar >> shift) & 15];
}

bool isSeparator(char32_t scalar) {
    return scalar == '%' || scalar == '/' || scalar == ':' || scalar == '\\';
}

std::string escaped(const std::string& name) {
    if (std::ranges::all_of(name, isPlain))
        return name;
    std::string result;
    forEachScalar(name, [&](char32_t scalar, std::string_view bytes) {
        if (isSeparator(scalar) || isControlCharacter(scalar))
            appendEscape(scalar, result);
        else
            result += bytes;
    });
    return result;
}

/// What some file systems drop from the end of a name, and the two names that a path cannot hold.
void escapeEnds(std::string& name) {
    if (name == "." || name == "..")
        name = name == "." ? "%2E" : "%2E%2E";
    if (name.ends_with(' '))
        name.replace(name.size() - 1, 1, "%20");
    if (name.ends_with('.'))
        name.replace(name.size() - 1, 1, "%2E");
}

} // namespace

bool isIdentifier(std::string_view text) {
    const auto isAllowed = [](char letter) {
        return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
               (letter >= '0' && letter <= '9') || letter == '_' || letter == '-';
    };
    return !text.empty() && std::ranges::all_of(text, isAllowed);
}

std::string exportedName(const DriveFile& file) {
    const auto extension = exportExtension(file);
    if (!extension)
        throw BackupError(
            "“" + file.name +
            "” is a Google type that cannot be exported by this version (for example a Form or "
            "shortcut). Choose a source folder without that item. Nothing will be marked as fully "
            "backed up.");
    std::string name = escaped(file.name);
    escapeEnds(name);
    if (!extension->empty())
        name.append(".").append(*extension);
    if (name.empty() || name.size() >= nameLimit)
        throw BackupError("The name “" + file.name + "” is too long for a portable backup.");
    return name;
}

std::string tagged(std::string_view name, std::string_view id) {
    const std::string tag = " [" + hexadecimal(sha256(id).substr(0, 5)) + "]";
    const std::string_view extension = pathExtension(name);
    if (extension.empty())
        return std::string(name) + tag;
    return std::string(withoutPathExtension(name)) + tag + "." + std::string(extension);
}

std::vector<std::string> namesOf(std::span<const DriveFile> children) {
    std::vector<std::string> names;
    names.reserve(children.size());
    for (const DriveFile& child : children)
        names.push_back(exportedName(child));

    std::vector<std::string> keys;
    keys.reserve(names.size());
    boost::unordered_flat_map<std::string_view, std::size_t> groups;
    groups.reserve(names.size());
    for (const std::string& name : names)
        ++groups[keys.emplace_back(collisionKey(name))];
    if (groups.size() == names.size())
        return names;
    for (std::size_t index = 0; index < names.size(); ++index)
        if (groups.at(keys[index]) > 1)
            names[index] = tagged(names[index], children[index].id.view());
    return names;
}

void sort(std::span<DriveFile> files, const NameOrder& order) {
    const auto comesBefore = [&](const DriveFile& left, const DriveFile& right) {
        return order.compare(left.name, right.name) < 0;
    };
    if (std::ranges::is_sorted(files, comesBefore))
        return;
    std::vector<std::uint32_t> places(files.size());
    std::iota(places.begin(), places.end(), 0);
    std::ranges::sort(places, [&](std::uint32_t left, std::uint32_t right) {
        const int compared = order.compare(files[left].name, files[right].name);
        return compared != 0 ? compared < 0 : left < right;
    });
    std::vector<DriveFile> sorted;
    sorted.reserve(files.size());
    for (const std::uint32_t place : places)
        sorted.push_back(std::move(files[place]));
    std::ranges::move(sorted, files.begin());
}

} // namespace marrowbox::DriveNames
