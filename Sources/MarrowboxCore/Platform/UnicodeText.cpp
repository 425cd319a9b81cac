#include "Platform/UnicodeText.h"

#include <stdexcept>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/coll.h>
#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace marrowbox {

namespace {

void requireSuccess(UErrorCode status) {
    if (U_FAILURE(status))
        throw std::runtime_error(std::string("Unicode support failed: ") + u_errorName(status));
}

std::int32_t lengthOf(std::string_view text) {
    if (text.size() > INT32_MAX)
        throw std::length_error("A text is too long.");
    return static_cast<std::int32_t>(text.size());
}

icu::StringPiece piece(std::string_view text) {
    return {text.data(), lengthOf(text)};
}

/// Decodes one scalar and moves behind it; at an invalid byte negative, and moves by that byte.
UChar32 decodeNext(std::string_view text, std::size_t& position) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const std::size_t start = position;
    UChar32 scalar = 0;
    U8_NEXT(bytes, position, text.size(), scalar);
    if (scalar < 0)
        position = start + 1;
    return scalar;
}

void appendLowerCase(std::string_view text, std::string& to) {
    icu::StringByteSink<std::string> sink(&to);
    UErrorCode status = U_ZERO_ERROR;
    icu::CaseMap::utf8ToLower("", 0, piece(text), sink, nullptr, status);
    requireSuccess(status);
}

/// For a text without invalid bytes.
void appendKeyByUnicode(std::string_view text, std::string& to) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* composition = icu::Normalizer2::getNFCInstance(status);
    requireSuccess(status);
    const bool isComposed = composition->isNormalizedUTF8(piece(text), status);
    requireSuccess(status);
    if (isComposed) // as nearly every name is
        return appendLowerCase(text, to);
    std::string composed;
    icu::StringByteSink<std::string> sink(&composed);
    composition->normalizeUTF8(0, piece(text), sink, nullptr, status);
    requireSuccess(status);
    appendLowerCase(composed, to);
}

void appendAsciiKey(std::string_view text, std::string& to) {
    const std::size_t start = to.size();
    to.append(text);
    for (char& byte : std::span(to).subspan(start))
        byte = static_cast<char>(byte | (byte >= 'A' && byte <= 'Z' ? 0x20 : 0));
}

} // namespace

bool isAscii(std::string_view text) {
    unsigned char all = 0;
    for (const char byte : text)
        all |= static_cast<unsigned char>(byte);
    return all < 0x80;
}

void appendCollisionKey(std::string_view text, std::string& to) {
    if (isAscii(text))
        return appendAsciiKey(text, to);
    std::size_t validFrom = 0;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t start = position;
        if (decodeNext(text, position) >= 0)
            continue;
        appendKeyByUnicode(text.substr(validFrom, start - validFrom), to);
        to += text[start];
        validFrom = position;
    }
    appendKeyByUnicode(text.substr(validFrom), to);
}

std::string collisionKey(std::string_view text) {
    std::string key;
    appendCollisionKey(text, key);
    return key;
}

std::string validText(std::string_view text) {
    if (isAscii(text))
        return std::string(text);
    std::string valid;
    valid.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t start = position;
        const bool isValid = decodeNext(text, position) >= 0;
        valid += isValid ? text.substr(start, position - start) : std::string_view("\uFFFD");
    }
    return valid;
}

bool isControlCharacter(char32_t scalar) {
    const auto category = u_charType(static_cast<UChar32>(scalar));
    return category == U_CONTROL_CHAR || category == U_FORMAT_CHAR;
}

char32_t nextScalar(std::string_view text, std::size_t& position) {
    const UChar32 scalar = decodeNext(text, position);
    return scalar < 0 ? U'\uFFFD' : static_cast<char32_t>(scalar);
}

struct NameOrder::Implementation {
    std::unique_ptr<icu::Collator> collator;
};

namespace {

std::unique_ptr<icu::Collator> makeCollator(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(locale, status));
    requireSuccess(status);
    collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
    collator->setAttribute(UCOL_NORMALIZATION_MODE, UCOL_ON, status);
    // Letters and accents count, case does not.
    collator->setAttribute(UCOL_STRENGTH, UCOL_SECONDARY, status);
    requireSuccess(status);
    return collator;
}

/// The C locale sorts by code point, capitals first, which is no order for people.
icu::Locale forPeople(const icu::Locale& locale) {
    const bool isForMachines = std::string_view(locale.getVariant()) == "POSIX";
    return isForMachines ? icu::Locale::getRoot() : locale;
}

} // namespace

NameOrder::NameOrder()
    : implementation_(new Implementation{makeCollator(forPeople(icu::Locale::getDefault()))}) {
}
NameOrder::NameOrder(const std::string& locale)
    : implementation_(new Implementation{makeCollator(forPeople(icu::Locale(locale.c_str())))}) {
}
NameOrder::NameOrder(NameOrder&&) noexcept = default;
NameOrder::~NameOrder() = default;

int NameOrder::compare(std::string_view left, std::string_view right) const {
    UErrorCode status = U_ZERO_ERROR;
    const auto order = implementation_->collator->compareUTF8(piece(left), piece(right), status);
    requireSuccess(status);
    return order;
}

std::string_view pathExtension(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0)
        return {};
    const std::string_view extension = name.substr(dot + 1);
    return extension.find(' ') == std::string_view::npos ? extension : std::string_view();
}

std::string_view withoutPathExtension(std::string_view name) {
    const std::string_view extension = pathExtension(name);
    return extension.empty() ? name : name.substr(0, name.size() - extension.size() - 1);
}

} // namespace marrowbox
