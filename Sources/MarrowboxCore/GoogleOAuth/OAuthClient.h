#pragma once

#include <boost/describe/class.hpp>
#include <filesystem>
#include <optional>
#include <string>

namespace marrowbox {

/// The identity of a Desktop OAuth client. Field names are the keys of Google's file.
struct OAuthClient {
    std::string client_id;
    std::optional<std::string> client_secret; ///< Absent for a public client.
    std::optional<std::string> project_id;    ///< Name of the cloud project.

    /// The client in a file that Google Cloud let the user download. Throws BackupError when it is not one
    /// for a Desktop app; failures to read and decode pass through unchanged.
    static OAuthClient load(const std::filesystem::path& path);

    friend bool operator==(const OAuthClient&, const OAuthClient&) = default;
};

BOOST_DESCRIBE_STRUCT(OAuthClient, (), (client_id, client_secret, project_id))

} // namespace marrowbox
