#pragma once

#include <string_view>

namespace marrowbox {

/// Whether the whole text, untrimmed, is one address: letters, digits and .!#$%&'*+/=?^_`{|}~- before the @,
/// and behind it a dotted name that begins with a letter or digit and ends with two letters or more.
bool isEmailAddress(std::string_view text);

} // namespace marrowbox
