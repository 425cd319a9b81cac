#include "Client.h"

#include <boost/json.hpp>
#include <gmock/gmock.h>

namespace marrowbox::test {
namespace {

using namespace sandbox;
using testing::ElementsAre;

const std::string files = "https://www.googleapis.com/drive/v3/files";

struct DriveListing : testing::Test {
    SandboxServer sandbox;
    Drive& drive = sandbox.drive();
    Client client{sandbox};

    DriveListing() { client.setToken(sandbox.identity().issueToken().accessToken); }

    boost::json::object got(const std::string& address) {
        const Reply reply = client.get(address);
        EXPECT_EQ(reply.status, 200) << reply.body;
        return boost::json::parse(reply.body).as_object();
    }
    /// A page of a folder; more query items behind it.
    boost::json::object page(const std::string& folder, const std::string& more = "") {
        return got(files + "?q='" + folder + "'+in+parents+and+trashed+%3D+false" + more);
    }
    std::vector<std::string> names(const boost::json::object& listed) {
        std::vector<std::string> found;
        for (const auto& item : listed.at("files").as_array())
            found.emplace_back(std::string_view(item.at("name").as_string()));
        return found;
    }
};

TEST_F(DriveListing, refusesARequestWithoutAValidToken) {
    client.setToken("");
    EXPECT_EQ(client.get(files + "/root").status, 401);
    client.setToken("made-up");
    EXPECT_EQ(client.get(files + "/root").status, 401);
}

TEST_F(DriveListing, refusesATokenWithoutTheDriveScope) {
    client.setToken(sandbox.identity().issueToken({}, "openid").accessToken);
    EXPECT_EQ(client.get(files + "/root").status, 403);
}

TEST_F(DriveListing, tellsChildrenInPagesUntilNoneIsLeft) {
    for (const char* name : {"one", "two", "three"})
        drive.addFile("root", name, name);

    const auto first = page("root", "&pageSize=2");
    EXPECT_THAT(names(first), ElementsAre("one", "two"));
    const auto second =
        page("root", "&pageSize=2&pageToken=" + std::string(first.at("nextPageToken").as_string()));
    EXPECT_THAT(names(second), ElementsAre("three"));
    EXPECT_FALSE(second.contains("nextPageToken"));
}

TEST_F(DriveListing, tellsExactlyTheFieldsThatAreAskedFor) {
    const std::string id = drive.addFile("root", "a.txt", "text");
    const auto item = got(files + "/" + id + "?fields=id,size,md5Checksum,capabilities(canDownload)");
    EXPECT_EQ(boost::json::serialize(item),
              R"({"id":")" + id + R"(","size":"4","md5Checksum":"1cb251ec0d568de6a929b520c4aed8d1",)" +
                  R"("capabilities":{"canDownload":true}})");
}

TEST_F(DriveListing, leavesOutTheTrashAndWhatLiesInATrashedFolder) {
    const std::string folder = drive.addFolder("root", "old");
    drive.addFile(folder, "inside", "x");
    drive.trash(folder);
    EXPECT_THAT(names(page("root")), ElementsAre());
    EXPECT_THAT(names(page(folder)), ElementsAre());
    drive.untrash(folder);
    EXPECT_THAT(names(page(folder)), ElementsAre("inside"));
}

TEST_F(DriveListing, narrowsToFoldersByType) {
    drive.addFile("root", "file", "x");
    drive.addFolder("root", "folder");
    const auto listed = page("root", "+and+mimeType+%3D+'application/vnd.google-apps.folder'");
    EXPECT_THAT(names(listed), ElementsAre("folder"));
}

TEST_F(DriveListing, showsASharedDriveToItsOwnCorporaAlone) {
    const std::string shared = drive.addSharedDrive("Team");
    drive.addFile(shared, "file", "x");
    EXPECT_THAT(names(page(shared)), ElementsAre());
    const std::string flags = "&supportsAllDrives=true&includeItemsFromAllDrives=true&corpora=drive";
    EXPECT_THAT(names(page(shared, flags + "&driveId=" + shared)), ElementsAre("file"));
    EXPECT_EQ(client.get(files + "?q='x'+in+parents" + flags).status, 400);
    EXPECT_EQ(client.get(files + "/" + shared).status, 404);
    EXPECT_EQ(client.get(files + "/" + shared + "?supportsAllDrives=true").status, 200);
}

TEST_F(DriveListing, tellsSharedDrivesInPages) {
    for (int index = 0; index < 3; ++index)
        drive.addSharedDrive("Drive " + std::to_string(index));
    const std::string address = "https://www.googleapis.com/drive/v3/drives?pageSize=2";
    const auto first = got(address);
    EXPECT_EQ(first.at("drives").as_array().size(), 2);
    const auto second = got(address + "&pageToken=" + std::string(first.at("nextPageToken").as_string()));
    EXPECT_EQ(second.at("drives").as_array().size(), 1);
    EXPECT_FALSE(second.contains("nextPageToken"));
}

TEST_F(DriveListing, refusesAQueryThatItDoesNotUnderstand) {
    EXPECT_EQ(client.get(files + "?q=fullText+contains+'x'").status, 400);
    EXPECT_EQ(client.get(files).status, 400);
}

TEST_F(DriveListing, advancesTheVersionWithEveryChange) {
    const std::string id = drive.addFile("root", "a", "one");
    const auto before = got(files + "/" + id + "?fields=version,modifiedTime");
    drive.replaceContent(id, "two");
    const auto after = got(files + "/" + id + "?fields=version,modifiedTime");
    EXPECT_NE(before.at("version"), after.at("version"));
    EXPECT_NE(before.at("modifiedTime"), after.at("modifiedTime"));
}

} // namespace
} // namespace marrowbox::test
