#pragma once

#include "Models/DriveLocation.h"

#include <optional>
#include <string>

namespace marrowbox::DriveLink {

/// The web address that opens a source in a browser; absent when its identifier is not one of Drive's. An
/// account address that does not look like one is left out of the link.
std::optional<std::string> folder(const DriveLocation& location,
                                  const std::optional<std::string>& accountEmail);

} // namespace marrowbox::DriveLink
