#include "Credentials/AppCredentials.h"

#include "Models/BackupError.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(AppCredentials, savesReadsAndRemoves) {
    test::ScratchFolder folder;
    const AppCredentials credentials(folder / "Credentials");
    credentials.save("token", "google.1");
    EXPECT_EQ(credentials.read("google.1"), "token");
    EXPECT_TRUE(credentials.contains("google.1"));
    credentials.remove("google.1");
    EXPECT_EQ(credentials.read("google.1"), std::nullopt);
}

TEST(AppCredentials, doesNotContainAnUnknownKey) {
    test::ScratchFolder folder;
    const AppCredentials credentials(folder / "Credentials");
    EXPECT_FALSE(credentials.contains("google.1"));
}

TEST(AppCredentials, doesNotAskWhetherItContainsABadKey) {
    test::ScratchFolder folder;
    const AppCredentials credentials(folder / "Credentials");
    EXPECT_THROW(credentials.contains("google 1"), BackupError);
}

TEST(AppCredentials, tellsAllKeysAtOnce) {
    test::ScratchFolder folder;
    const AppCredentials credentials(folder / "Credentials");
    EXPECT_EQ(credentials.keys(), std::set<std::string>());
    credentials.save("token", "google.1");
    credentials.save("token", "google.2");
    EXPECT_EQ(credentials.keys(), (std::set<std::string>{"google.1", "google.2"}));
}

TEST(AppCredentials, tellNoKeyThatCannotBeRead) {
    test::ScratchFolder folder;
    const AppCredentials credentials(folder / "Credentials");
    credentials.save("token", "google.1");
    std::string text = readFile(folder / "Credentials" / "credentials.json");
    text.replace(text.find("google.1"), 8, "google 1");
    writeAll(openFile(folder / "Credentials" / "credentials.json", O_WRONLY | O_TRUNC), text);
    EXPECT_EQ(credentials.keys(), std::set<std::string>());
}

TEST(AppCredentials, readsAnewEachTime) {
    test::ScratchFolder folder;
    const AppCredentials one(folder / "Credentials");
    const AppCredentials other(folder / "Credentials");
    EXPECT_FALSE(one.contains("google.1"));
    other.save("token", "google.1");
    EXPECT_EQ(one.read("google.1"), "token");
}

TEST(AppCredentials, areKeptInTheDataFolder) {
    EXPECT_EQ(credentialDirectory({{"MARROW_DATA_DIR", "/data"}}), "/data/Credentials");
    EXPECT_EQ(credentialDirectory({{"XDG_DATA_HOME", "/share"}}), "/share/Marrowbox/Credentials");
}

} // namespace marrowbox
