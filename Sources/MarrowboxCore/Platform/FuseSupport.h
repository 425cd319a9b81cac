#pragma once

#include <optional>
#include <string>

namespace marrowbox {

/// Why this user's programs cannot mount through FUSE on this machine; absent where nothing speaks against
/// it. Whether the tools are installed is another question.
std::optional<std::string> reasonForNoFUSE();

} // namespace marrowbox
