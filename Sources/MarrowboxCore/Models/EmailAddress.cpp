#include "Models/EmailAddress.h"

#include <algorithm>

namespace marrowbox {

namespace {

bool isLetter(char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

bool isLetterOrDigit(char byte) {
    return isLetter(byte) || (byte >= '0' && byte <= '9');
}

bool isLocalPart(std::string_view text) {
    constexpr std::string_view marks = ".!#$%&'*+/=?^_`{|}~-";
    return !text.empty() && std::ranges::all_of(text, [&](char byte) {
        return isLetterOrDigit(byte) || marks.find(byte) != std::string_view::npos;
    });
}

bool isDomain(std::string_view text) {
    const auto lastDot = text.rfind('.');
    if (lastDot == std::string_view::npos || lastDot == 0)
        return false;
    const auto name = text.substr(0, lastDot);
    const auto top = text.substr(lastDot + 1);
    const bool nameFits = std::ranges::all_of(
        name, [](char byte) { return isLetterOrDigit(byte) || byte == '.' || byte == '-'; });
    return nameFits && isLetterOrDigit(name.front()) && isLetterOrDigit(name.back()) && top.size() >= 2 &&
           std::ranges::all_of(top, isLetter);
}

} // namespace

bool isEmailAddress(std::string_view text) {
    const auto at = text.find('@');
    return at != std::string_view::npos && isLocalPart(text.substr(0, at)) && isDomain(text.substr(at + 1));
}

} // namespace marrowbox
