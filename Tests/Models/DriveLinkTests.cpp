#include "Models/DriveLink.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

std::optional<std::string> link(const std::string& id, const std::optional<std::string>& email = {}) {
    return DriveLink::folder({.id = id, .name = "Name", .sharedDriveID = {}}, email);
}

constexpr const char* plainLink = "https://drive.google.com/drive/folders/1a";

} // namespace

TEST(DriveLink, opensAFolder) {
    EXPECT_EQ(link("1aB_-9"), "https://drive.google.com/drive/folders/1aB_-9");
    EXPECT_EQ(link("root"), "https://drive.google.com/drive/my-drive");
    EXPECT_EQ(link("Root"), "https://drive.google.com/drive/folders/Root");
}

TEST(DriveLink, opensASharedDriveByItsOwnId) {
    EXPECT_EQ(DriveLink::folder({.id = "0A", .name = "Team", .sharedDriveID = "0A"}, {}),
              "https://drive.google.com/drive/folders/0A");
}

TEST(DriveLink, refusesWhatIsNoId) {
    for (const char* id : {"", "a.b", "a/b", "a b", "ä", "a?b", "a%2F", "a\n"})
        EXPECT_EQ(link(id), std::nullopt) << id;
    EXPECT_NE(link(std::string(200, 'a')), std::nullopt);
    EXPECT_EQ(link(std::string(201, 'a')), std::nullopt);
}

TEST(DriveLink, namesTheAccount) {
    EXPECT_EQ(link("1a", "me@example.com"),
              "https://drive.google.com/drive/folders/1a?authuser=me%40example.com");
    EXPECT_EQ(link("root", "a.b-c@x.example.co"),
              "https://drive.google.com/drive/my-drive?authuser=a.b-c%40x.example.co");
}

TEST(DriveLink, encodesWhatAQueryWouldReadOtherwise) {
    EXPECT_EQ(link("1a", "a+b&c=d%#/?'~_@example.com"),
              std::string(plainLink) + "?authuser=a%2Bb%26c%3Dd%25%23%2F%3F%27~_%40example.com");
}

TEST(DriveLink, takesEveryFormOfDomain) {
    for (const char* email : {"a@b.co", "a@1.co", "a@b-c.d.museum", "a@b..c.co", "a@b.-c.co", ".@b.co"})
        EXPECT_NE(link("1a", email), plainLink) << email;
}

TEST(DriveLink, leavesOutWhatIsNoAddress) {
    for (const char* email :
         {"", "a", "@b.co", "a@", "a@b", "a@b.c", "a@.co", "a@-b.co", "a@b-.co", "a@b..co", "a@b.co1",
          "a@b.co.", "a@b@c.co", "a b@c.co", "ä@b.co", "a@ä.co", "a@b.co\n", "a,b@c.co", "<a@b.co>"})
        EXPECT_EQ(link("1a", email), plainLink) << email;
}

} // namespace marrowbox
