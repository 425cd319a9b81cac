#pragma once

#include <optional>
#include <string>
#include <string_view>

// The escapes of addresses: "%" and two hexadecimal digits for a byte. Any thread.
namespace marrowbox {

/// The marks that mean themselves wherever they stand in an address.
inline constexpr std::string_view unreservedMarks = "-._~";

/// Escapes every byte but ASCII letters, digits and these marks.
std::string percentEncoded(std::string_view text, std::string_view plainMarks = unreservedMarks);

/// Absent when an escape is malformed. It may stand for any byte, NUL too.
std::optional<std::string> percentDecoded(std::string_view text);

} // namespace marrowbox
