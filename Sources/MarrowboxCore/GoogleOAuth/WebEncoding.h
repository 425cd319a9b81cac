#pragma once

#include "Platform/RandomBytes.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

/// The encodings that web addresses and sign-ins need. Any thread.
namespace marrowbox::WebEncoding {

/// Gives random bytes, or nothing when the generator fails.
using RandomSource = std::function<std::optional<std::string>(std::size_t)>;

/// The body of a form: pairs sorted by key, everything but A-Z a-z 0-9 - . _ ~ as %XX.
std::string form(const std::map<std::string, std::string>& fields);

/// URL-safe Base64 without padding.
std::string base64URL(std::string_view bytes);

/// 256 random bits as 43 characters of URL-safe Base64. Throws BackupError when the generator fails.
std::string random(const RandomSource& source = randomBytes);

} // namespace marrowbox::WebEncoding
