#include "Models/JSONScalars.h"

#include "Platform/Base64.h"

#include <charconv>
#include <cmath>

namespace marrowbox {

namespace {

/// Beyond this a double no longer tells neighbouring whole numbers apart.
constexpr double largestExactWhole = 9'007'199'254'740'992.0;

} // namespace

std::optional<double> exactDouble(std::string_view text) {
    double value = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::optional<std::int64_t> wholeNumber(const JSONNumber& number) {
    if (number.integer)
        return number.integer;
    const auto value = exactDouble(number.text);
    if (!value || std::trunc(*value) != *value || std::abs(*value) > largestExactWhole)
        return std::nullopt;
    return static_cast<std::int64_t>(*value);
}

void JSONTypeOf<Uuid>::string(void* target, std::string_view value, JSONSharing*) const {
    const auto id = Uuid::parse(value);
    if (!id)
        throw Mismatch();
    *static_cast<Uuid*>(target) = *id;
}

void JSONTypeOf<ByteString>::string(void* target, std::string_view value, JSONSharing*) const {
    auto bytes = base64Decoded(value);
    if (!bytes)
        throw Mismatch();
    static_cast<ByteString*>(target)->bytes = std::move(*bytes);
}

} // namespace marrowbox
