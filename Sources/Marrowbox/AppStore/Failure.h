#pragma once

#include <exception>
#include <string>

namespace marrowbox {

/// The words of a failure for the user: a finished sentence as it stands, or what the system says. They are
/// valid UTF-8 whatever file names stand in them, since a run record that keeps them has to be written.
std::string words(const std::exception& failure);

} // namespace marrowbox
