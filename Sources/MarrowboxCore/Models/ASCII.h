#pragma once

namespace marrowbox {

/// Of the Latin alphabet, whatever the user's language counts as a letter.
constexpr bool isASCIILetter(char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

constexpr bool isASCIILetterOrDigit(char byte) {
    return isASCIILetter(byte) || (byte >= '0' && byte <= '9');
}

} // namespace marrowbox
