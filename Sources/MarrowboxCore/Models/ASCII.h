#pragma once

#include <optional>

namespace marrowbox {

/// Of the Latin alphabet, whatever the user's language counts as a letter.
constexpr bool isASCIILetter(char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

constexpr bool isASCIILetterOrDigit(char byte) {
    return isASCIILetter(byte) || (byte >= '0' && byte <= '9');
}

/// The value of a hexadecimal digit in either case; absent for any other byte.
constexpr std::optional<unsigned> hexadecimalValue(char digit) {
    if (digit >= '0' && digit <= '9')
        return static_cast<unsigned>(digit - '0');
    if (digit >= 'a' && digit <= 'f')
        return static_cast<unsigned>(digit - 'a' + 10);
    if (digit >= 'A' && digit <= 'F')
        return static_cast<unsigned>(digit - 'A' + 10);
    return std::nullopt;
}

} // namespace marrowbox
