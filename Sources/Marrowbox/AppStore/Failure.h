#pragma once

#include <exception>
#include <string>

namespace marrowbox {

/// The words of a failure for the user: a finished sentence as it stands, or what the system says.
std::string words(const std::exception& failure);

} // namespace marrowbox
