#include "GoogleOAuth/OAuthClient.h"

#include "Models/BackupError.h"
#include "Models/JSONFile.h"

#include <string_view>

namespace marrowbox {

namespace {

constexpr std::string_view clientSuffix = ".apps.googleusercontent.com";

/// The file names the kind of application that the client is for.
struct ClientFile {
    std::optional<OAuthClient> installed;
};

BOOST_DESCRIBE_STRUCT(ClientFile, (), (installed))

} // namespace

OAuthClient OAuthClient::load(const std::filesystem::path& path) {
    ClientFile file = JSONFile::read<ClientFile>(path);
    if (!file.installed || !file.installed->client_id.ends_with(clientSuffix))
        throw BackupError("Choose the Google OAuth JSON for a Desktop app.");
    return std::move(*file.installed);
}

} // namespace marrowbox
