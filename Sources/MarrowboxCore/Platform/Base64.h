#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace marrowbox {

/// Standard Base64 with padding and without line breaks.
std::string base64Encoded(std::string_view bytes);

/// The bytes of standard Base64 text with padding; absent when it is malformed.
std::optional<std::string> base64Decoded(std::string_view text);

} // namespace marrowbox
