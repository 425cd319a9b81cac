#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The encodings of names and values on the wire. Written apart from the program's own, so that one does not
/// hide a fault of the other. Any thread.
namespace marrowbox::sandbox {

/// Names and values in the order in which they came; a name may come more than once.
using NamedValues = std::vector<std::pair<std::string, std::string>>;

/// The first value of this name; absent when there is none.
std::optional<std::string> firstValue(const NamedValues& values, std::string_view name);

/// The same for header names, which ignore case.
std::optional<std::string> firstHeader(const NamedValues& headers, std::string_view name);

/// Undoes %XX, and + for a blank. A malformed escape stays as it stands.
std::string percentDecoded(std::string_view text, bool plusIsBlank = true);

/// Leaves letters, digits and -._~ alone.
std::string percentEncoded(std::string_view text);

/// Splits a query or a form, decoded.
NamedValues queryItems(std::string_view query);

std::string base64URLEncoded(std::string_view bytes);
/// Only the unpadded form; absent when malformed.
std::optional<std::string> base64URLDecoded(std::string_view text);

/// Appends a JSON text with its quotes.
void appendJSONText(std::string& to, std::string_view text);

} // namespace marrowbox::sandbox
