#include "Processes/RcloneCommand.h"

#include <gtest/gtest.h>
#include <limits>

namespace marrowbox {

namespace {

using Variables = std::map<std::string, std::string>;

SourceEntry listedFile(std::string id, std::string path) {
    SourceEntry entry;
    entry.id = id;
    entry.path = path;
    return entry;
}

SourceEntry listedFolder(std::string id, std::string path) {
    SourceEntry entry = listedFile(id, path);
    entry.isDirectory = true;
    return entry;
}

std::vector<std::string> commonArguments() {
    return {"backend",
            "copyid",
            "marrow:",
            "--config",
            "/dev/null",
            "--drive-export-formats",
            "docx,xlsx,pptx,svg",
            "--retries",
            "3",
            "--low-level-retries",
            "5",
            "--contimeout",
            "20s",
            "--timeout",
            "5m",
            "--log-level",
            "ERROR",
            "--stats",
            "0",
            "--"};
}

TEST(RcloneCommand, beginsWithTheSameTwentyArguments) {
    EXPECT_EQ(RcloneCommand::arguments({}), commonArguments());
    EXPECT_EQ(commonArguments().size(), 20U);
}

TEST(RcloneCommand, addsIdentifierAndTargetOfEachFileInOrder) {
    const std::vector<SourceEntry> batch{listedFile("b", "z/second.txt"), listedFolder("d", "z"),
                                         listedFile("-a", "first – “1”")};
    auto expected = commonArguments();
    expected.insert(expected.end(), {"b", "/scratch/z/second.txt", "-a", "/scratch/first – “1”"});
    EXPECT_EQ(RcloneCommand::arguments(RcloneCommand::items(batch, "/scratch")), expected);
}

TEST(RcloneCommand, holdsAtMostEightyFourArguments) {
    std::vector<SourceEntry> batch;
    for (std::size_t index = 0; index < RcloneCommand::batchSize; ++index)
        batch.push_back(listedFile("id", "path" + std::to_string(index)));
    EXPECT_EQ(RcloneCommand::arguments(RcloneCommand::items(batch, "/scratch")).size(), 84U);
}

TEST(RcloneCommand, knowsThePathsThatRcloneWouldWriteElsewhere) {
    const std::vector<std::pair<std::string, bool>> rows{
        {"", false},
        {"plain/name.txt", false},
        {"tab\tand\nline", false},
        {"␀ is left alone", false},
        {"␁", true},
        {"line␊break", true},
        {"␟", true},
        {"␠ is left alone", false},
        {"␡/below", true},
        {"␢ ␣ ␤", false},
        {"‛quoted", true},
        {"‘quoted’ “twice” ‚low’ ‟reversed”", false},
        {"full／width． ％", false},
        {"cut \xE2\x90", false},
    };
    for (const auto& [path, expected] : rows)
        EXPECT_EQ(RcloneCommand::isRewritten(path), expected) << path;
}

TEST(RcloneCommand, fetchesAFileThatWouldBeRewrittenToAPlainName) {
    const std::vector<SourceEntry> batch{listedFile("a", "folder/‛Twas"), listedFile("b", "folder/␊")};
    const auto items = RcloneCommand::items(batch, "/scratch");
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].target, "/scratch/folder/‛Twas");
    EXPECT_EQ(items[0].fetchedTo.parent_path(), "/scratch");
    EXPECT_FALSE(RcloneCommand::isRewritten(items[0].fetchedTo.string()));
    EXPECT_NE(items[0].fetchedTo, items[1].fetchedTo);
}

TEST(RcloneCommand, definesTheRemoteByVariables) {
    const OAuthClient client{"client", "secret", {}};
    const OAuthToken token{"access", "refresh", Date{794'050'200}, "scope"};
    const Variables expected{
        {"RCLONE_CONFIG_MARROW_TYPE", "drive"},
        {"RCLONE_CONFIG_MARROW_SCOPE", "drive.readonly"},
        {"RCLONE_CONFIG_MARROW_CLIENT_ID", "client"},
        {"RCLONE_CONFIG_MARROW_CLIENT_SECRET", "secret"},
        {"RCLONE_CONFIG_MARROW_TEAM_DRIVE", "shared"},
        {"RCLONE_CONFIG_MARROW_TOKEN", R"({"access_token":"access","expiry":"2026-03-01T09:30:00Z",)"
                                       R"("refresh_token":"refresh","token_type":"Bearer"})"},
    };
    EXPECT_EQ(RcloneCommand::environment(client, token, {"folder", "Folder", "shared"}), expected);
}

TEST(RcloneCommand, leavesOutWhatIsAbsent) {
    const auto variables = RcloneCommand::environment({"client", {}, {}}, {}, {"root", "My Drive", {}});
    EXPECT_FALSE(variables.contains("RCLONE_CONFIG_MARROW_CLIENT_SECRET"));
    EXPECT_FALSE(variables.contains("RCLONE_CONFIG_MARROW_TEAM_DRIVE"));
    EXPECT_EQ(variables.size(), 4U);
}

TEST(RcloneCommand, writesTheExpiryInWholeSecondsOfUTC) {
    const std::vector<std::pair<double, std::string>> rows{
        {0, "2001-01-01T00:00:00Z"},
        {0.999, "2001-01-01T00:00:00Z"},
        {-0.001, "2000-12-31T23:59:59Z"},
        {794'050'200, "2026-03-01T09:30:00Z"},
        {221'011'199, "2008-01-02T23:59:59Z"},
        {760'838'400, "2025-02-10T00:00:00Z"},
        {-978'307'201, "1969-12-31T23:59:59Z"},
        {252'423'993'599, "9999-12-31T23:59:59Z"},
        {252'423'993'600, "9999-12-31T23:59:59Z"},
        {std::numeric_limits<double>::max(), "9999-12-31T23:59:59Z"},
        {std::numeric_limits<double>::lowest(), "0001-01-01T00:00:00Z"},
    };
    for (const auto& [seconds, expected] : rows) {
        OAuthToken token;
        token.expiry = Date{seconds};
        const auto text = RcloneCommand::environment({}, token, {}).at("RCLONE_CONFIG_MARROW_TOKEN");
        EXPECT_NE(text.find("\"expiry\":\"" + expected + "\""), std::string::npos) << text;
    }
}

} // namespace

} // namespace marrowbox
