#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace marrowbox {

/// Bytes of the system's secure generator; absent when it reports failure. Any thread.
std::optional<std::string> randomBytes(std::size_t count);

} // namespace marrowbox
