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
#include <string_view>
#include <vector>

/// What rclone is told: the argument list and the variables of one call that fetches chosen items by their
/// identifiers. Nothing here runs or writes anything.
namespace marrowbox::RcloneCommand {

/// How many items one call is given at most.
inline constexpr std::size_t batchSize = 32;

/// One file of a call.
struct Item {
    std::string id;
    std::filesystem::path fetchedTo; ///< Where rclone is told to write it.
    std::filesystem::path target;    ///< Where it belongs: almost always the same.

    friend bool operator==(const Item&, const Item&) = default;
};

/// True for a path that rclone would write under another name: it takes some characters for its own
/// stand-ins for control characters.
bool isRewritten(std::string_view path);

/// The files of a batch, in the given order, each to go to folder / path; folders are left out. A file whose
/// path would be rewritten is fetched to a fresh plain name in the folder itself.
std::vector<Item> items(std::span<const SourceEntry> batch, const std::filesystem::path& folder);

/// The arguments that fetch the items in their order.
std::vector<std::string> arguments(std::span<const Item> items);

/// The variables that define the remote, credentials included, so that these never stand on a command line.
/// Throws JSONEncodingError for a token that is not UTF-8.
std::map<std::string, std::string> environment(const OAuthClient& client, const OAuthToken& token,
                                               const DriveLocation& location);

} // namespace marrowbox::RcloneCommand
