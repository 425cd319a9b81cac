#include "Models/EmailAddress.h"

#include "Models/ASCII.h"

#include <algorithm>

namespace marrowbox {

namespace {

bool isLocalPart(std::string_view text) {
    constexpr std::string_view marks = ".!#$%&'*+/=?^_`{|}~-";
    return !text.empty() && std::ranges::all_of(text, [&](char byte) {
        return isASCIILetterOrDigit(byte) || marks.find(byte) != std::string_view::npos;
    });
}

bool isDomain(std::string_view text) {
    const auto lastDot = text.rfind('.');
    if (lastDot == std::string_view::npos || lastDot == 0)
        return false;
    const auto name = text.substr(0, lastDot);
    const auto top = text.substr(lastDot + 1);
    const bool nameFits = std::ranges::all_of(
        name, [](char byte) { return isASCIILetterOrDigit(byte) || byte == '.' || byte == '-'; });
    return nameFits && isASCIILetterOrDigit(name.front()) && isASCIILetterOrDigit(name.back()) &&
           top.size() >= 2 && std::ranges::all_of(top, isASCIILetter);
}

} // namespace

bool isEmailAddress(std::string_view text) {
    const auto at = text.find('@');
    return at != std::string_view::npos && isLocalPart(text.substr(0, at)) && isDomain(text.substr(at + 1));
}

} // namespace marrowbox
