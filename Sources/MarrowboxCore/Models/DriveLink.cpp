#include "Models/DriveLink.h"

#include "Models/ASCII.h"

#include "Models/EmailAddress.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace marrowbox {

namespace {

constexpr std::string_view driveApplication = "https://drive.google.com/drive/";
constexpr std::size_t longestId = 200;

/// Not empty, and made of ASCII letters, digits and these characters.
bool consistsOf(std::string_view text, std::string_view alsoAllowed) {
    return !text.empty() && std::ranges::all_of(text, [&](char byte) {
        return isASCIILetterOrDigit(byte) || alsoAllowed.find(byte) != std::string_view::npos;
    });
}

std::string percentEncoded(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        if (isASCIILetterOrDigit(byte) || std::string_view("-._~").find(byte) != std::string_view::npos)
            encoded += byte;
        else
            encoded += {'%', digits[value >> 4], digits[value & 15]};
    }
    return encoded;
}

} // namespace

std::optional<std::string> DriveLink::folder(const DriveLocation& location,
                                             const std::optional<std::string>& accountEmail) {
    if (location.id.size() > longestId || !consistsOf(location.id, "-_"))
        return std::nullopt;
    std::string link(driveApplication);
    link += location.id == "root" ? "my-drive" : "folders/" + location.id;
    if (accountEmail && isEmailAddress(*accountEmail))
        link += "?authuser=" + percentEncoded(*accountEmail);
    return link;
}

} // namespace marrowbox
