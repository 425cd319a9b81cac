#pragma once

#include <string>
#include <string_view>

namespace marrowbox::sandbox {

/// A fresh token of 40 random characters behind a prefix.
std::string randomToken(std::string_view prefix);

} // namespace marrowbox::sandbox
