#pragma once

#include "DriveAPI/DriveAPI.h"

#include <map>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

/// What is asked of the service, and what it answers.
namespace marrowbox::DriveRequests {

using Query = std::map<std::string, std::string>;

struct FilePage {
    std::vector<DriveFile> files;
    std::optional<std::string> nextPageToken;
    std::optional<bool> incompleteSearch;
};

BOOST_DESCRIBE_STRUCT(FilePage, (), (files, nextPageToken, incompleteSearch))

struct DrivePage {
    std::vector<DriveLocation> drives;
    std::optional<std::string> nextPageToken;
};

BOOST_DESCRIBE_STRUCT(DrivePage, (), (drives, nextPageToken))

/// The body of one answer.
asio::awaitable<std::string> fetch(DriveAPI api, std::string path, Query query, std::stop_token stop);
/// The same for one of several requests that belong together.
asio::awaitable<std::string> fetch(DriveAPI api, std::string path, Query query, HTTPOrder order,
                                   std::stop_token stop);

Query drivesQuery();
Query fileQuery();
/// Throws BackupError for a folder whose identifier is not one of Drive's.
Query childrenQuery(const DriveLocation& of, DriveItems items);

/// A page of children. Throws BackupError when the service did not search everywhere.
FilePage filePage(std::string_view body);

/// Whether a page is sure to be the last of its folder and complete, by a look at its bytes that is much
/// faster than decoding them. False when only decoding can tell.
bool isSurelyLast(std::string_view body);

} // namespace marrowbox::DriveRequests
