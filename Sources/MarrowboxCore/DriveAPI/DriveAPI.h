#pragma once

#include "DriveAPI/DriveFile.h"
#include "GoogleOAuth/GoogleAuth.h"
#include "Models/DriveLocation.h"
#include "Models/SourceEntry.h"

#include <boost/asio/awaitable.hpp>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

namespace marrowbox {

enum class DriveItems { all, foldersOnly };

/// The read-only view of one Google account's Drive. A value; any thread. A listing is complete or fails:
/// every refusal is a BackupError, and failures of the token, the request and decoding pass through
/// unchanged.
struct DriveAPI {
    std::shared_ptr<const GoogleAuth> auth;
    std::string accountID;

    /// What a source can be picked from: My Drive, then the shared drives in the service's order.
    asio::awaitable<std::vector<DriveLocation>> roots(std::stop_token stop) const;

    /// One item; "root" is My Drive itself.
    asio::awaitable<DriveFile> file(std::string id, std::stop_token stop) const;

    /// What lies directly in a folder, in the order of a file browser.
    asio::awaitable<std::vector<DriveFile>> children(DriveLocation of, DriveItems items,
                                                     std::stop_token stop) const;

    /// The folders directly in a folder.
    asio::awaitable<std::vector<DriveLocation>> folders(DriveLocation in, std::stop_token stop) const;

    /// The complete tree below a folder, sorted by path; the folder itself is not in it. One request at a
    /// time.
    asio::awaitable<std::vector<SourceEntry>> inventory(DriveLocation of, std::stop_token stop) const;

    /// The one path component that an item becomes. Throws BackupError for a type that cannot be exported and
    /// for a name that is too long.
    static std::string exportedName(const DriveFile& file);
};

} // namespace marrowbox
