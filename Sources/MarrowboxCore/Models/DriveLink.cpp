#include "Models/DriveLink.h"

#include "Models/ASCII.h"
#include "Models/EmailAddress.h"
#include "Models/PercentEncoding.h"

#include <algorithm>
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
