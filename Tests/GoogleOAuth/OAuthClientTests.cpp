#include "GoogleOAuth/OAuthClient.h"

#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

const std::string notDesktop = "Choose the Google OAuth JSON for a Desktop app.";

OAuthClient load(const std::string& text) {
    const ScratchFolder folder;
    const auto path = folder / "client.json";
    writeAll(openFile(path, O_WRONLY | O_CREAT), text);
    return OAuthClient::load(path);
}

} // namespace

TEST(OAuthClient, readsADesktopClient) {
    const OAuthClient expected{"7.apps.googleusercontent.com", "s", "p"};
    EXPECT_EQ(load(R"({"installed": {"client_id": "7.apps.googleusercontent.com", "client_secret": "s",
                       "project_id": "p", "redirect_uris": ["http://localhost"]}, "web": 3})"),
              expected);
}

TEST(OAuthClient, readsAPublicClient) {
    const OAuthClient expected{"7.apps.googleusercontent.com", std::nullopt, std::nullopt};
    EXPECT_EQ(load(R"({"installed": {"client_id": "7.apps.googleusercontent.com"}})"), expected);
}

TEST(OAuthClient, refusesAFileForAnotherKindOfApplication) {
    EXPECT_EQ(thrown<BackupError>([] { load(R"({"web": {"client_id": "7.apps.googleusercontent.com"}})"); }),
              notDesktop);
    EXPECT_EQ(thrown<BackupError>([] { load("{}"); }), notDesktop);
    EXPECT_EQ(thrown<BackupError>([] { load(R"({"installed": null})"); }), notDesktop);
}

TEST(OAuthClient, refusesAnIdentifierThatIsNotGoogles) {
    EXPECT_EQ(thrown<BackupError>([] { load(R"({"installed": {"client_id": "7.apps.example.com"}})"); }),
              notDesktop);
    EXPECT_EQ(thrown<BackupError>([] { load(R"({"installed": {"client_id": ""}})"); }), notDesktop);
    EXPECT_EQ(thrown<BackupError>(
                  [] { load(R"({"installed": {"client_id": "7.apps.googleusercontent.com.evil.org"}})"); }),
              notDesktop);
}

TEST(OAuthClient, passesOnAFailureToDecode) {
    EXPECT_THROW(load("{"), JSONDecodingError);
    EXPECT_THROW(load(R"({"installed": {}})"), JSONDecodingError);
}

TEST(OAuthClient, passesOnAFailureToRead) {
    EXPECT_THROW(OAuthClient::load("/nowhere/client.json"), std::system_error);
}

} // namespace marrowbox::test
