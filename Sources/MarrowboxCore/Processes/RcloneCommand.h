#pragma once

#include "GoogleOAuth/OAuthClient.h"
#include "GoogleOAuth/OAuthToken.h"
#include "Models/DriveLocation.h"
#include "Models/SourceEntry.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <vector>

/// What rclone is told: the argument list and the variables of one call that fetches chosen items by their
/// identifiers. Nothing here runs or writes anything.
namespace marrowbox::RcloneCommand {

/// How many items one call is given at most.
inline constexpr std::size_t batchSize = 32;

/// The arguments that fetch each file of the batch to folder / path, in the given order; folders add none.
std::vector<std::string> arguments(std::span<const SourceEntry> batch, const std::filesystem::path& folder);

/// The variables that define the remote, credentials included, so that these never stand on a command line.
/// Throws JSONEncodingError for a token that is not UTF-8.
std::map<std::string, std::string> environment(const OAuthClient& client, const OAuthToken& token,
                                               const DriveLocation& location);

} // namespace marrowbox::RcloneCommand
