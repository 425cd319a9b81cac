#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace marrowbox::test {

/// The texts in quotes of a C++ or QML source, comments apart. Adjacent ones are one text, as the compiler
/// has it; escapes stay as they are written, but for that of a quote.
std::vector<std::string> stringLiterals(std::string_view source);

} // namespace marrowbox::test
