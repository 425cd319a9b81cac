#include "Processes/RcloneDriveSource.h"

#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Platform/Cancellation.h"
#include "Platform/Files.h"
#include "Processes/RcloneCommand.h"
#include "RecordingRclone.h"
#include "Support/Children.h"
#include "Support/Coroutine.h"
#include "Support/Thrown.h"
#include "TestSurroundings.h"

#include <atomic>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using test::RecordingRclone;
using test::TestSurroundings;
using testing::ElementsAre;
using testing::IsEmpty;

/// Answers each renewal of a token with one that has ended already, so that every use of it is another
/// request.
asio::awaitable<HTTPResponse> renewal(std::shared_ptr<std::atomic<int>> count) {
    const int number = ++*count;
    HTTPResponse response;
    response.status = 200;
    response.body = R"({"access_token":"access-)" + std::to_string(number) + R"(","expires_in":0})";
    co_return response;
}

/// A source with a stand-in for rclone, and an account whose token is renewed by every request for it.
class Fixture {
  public:
    explicit Fixture(const std::string& script = "exit 0") : rclone(prepared(surroundings), script) {
        AppCredentials credentials(surroundings / "Credentials");
        const OAuthToken token{"stored", "refresh", now, "scope"};
        credentials.save(encodeJSON(token, JSONStyle::compact), "google.ada");
        const auto count = renewals;
        const HTTP http(
            [count](std::shared_ptr<const HTTPRequest>, std::stop_token) { return renewal(count); },
            timerWait());
        auth = std::make_shared<GoogleAuth>(
            OAuthClient{"client", "secret", {}}, http, credentials, [] { return now; }, pool.get_executor());
        makeDirectory(folder, 0700);
    }

    void download(std::vector<SourceEntry> entries, std::stop_token stop = {}) {
        RcloneDriveSource source({auth, "ada"}, location, rclone.executable(), surroundings.value);
        test::await(source.download(std::move(entries), folder, std::move(stop)));
    }

    static constexpr Date now{794'050'200};
    TestSurroundings surroundings;
    RecordingRclone rclone;
    DriveLocation location{"root", "My Drive", {}};
    fs::path folder = surroundings / "work";
    std::shared_ptr<std::atomic<int>> renewals = std::make_shared<std::atomic<int>>(0);
    asio::thread_pool pool{1};
    std::shared_ptr<GoogleAuth> auth;

  private:
    static fs::path prepared(const TestSurroundings& in) {
        makeDirectory(in / "tool", 0700);
        return in / "tool";
    }
};

SourceEntry file(std::string id, std::string path) {
    SourceEntry entry;
    entry.id = id;
    entry.path = path;
    entry.mimeType = "text/plain";
    return entry;
}

SourceEntry directory(std::string id, std::string path) {
    SourceEntry entry = file(id, path);
    entry.isDirectory = true;
    return entry;
}

std::vector<SourceEntry> files(int count) {
    std::vector<SourceEntry> entries;
    for (int number = 1; number <= count; ++number)
        entries.push_back(file("id" + std::to_string(number), "folder/" + std::to_string(number)));
    return entries;
}

std::vector<std::size_t> itemCounts(const RecordingRclone& rclone) {
    std::vector<std::size_t> counts;
    for (const auto& call : rclone.calls())
        counts.push_back((call.arguments.size() - 20) / 2);
    return counts;
}

TEST(RcloneDriveSource, tellsRcloneExactlyThis) {
    Fixture fixture;
    fixture.location = {"folder", "Folder", "shared"};
    fixture.surroundings.value.environment["HTTPS_PROXY"] = "http://127.0.0.1:1";
    fixture.surroundings.value.environment["RCLONE_DRIVE_SHARED_WITH_ME"] = "true";
    fixture.download({directory("d", "a folder"), file("-id", "a folder/b.txt"), file("id2", "c")});
    const auto calls = fixture.rclone.calls();
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].arguments,
                ElementsAre("backend", "copyid", "marrow:", "--config", "/dev/null", "--drive-export-formats",
                            "docx,xlsx,pptx,svg", "--retries", "3", "--low-level-retries", "5",
                            "--contimeout", "20s", "--timeout", "5m", "--log-level", "ERROR", "--stats", "0",
                            "--", "-id", (fixture.folder / "a folder/b.txt").string(), "id2",
                            (fixture.folder / "c").string()));
    const std::map<std::string, std::string> expected{
        {"HTTPS_PROXY", "http://127.0.0.1:1"},
        {"PATH", "/usr/bin:/bin"},
        {"RCLONE_CONFIG_MARROW_TYPE", "drive"},
        {"RCLONE_CONFIG_MARROW_SCOPE", "drive.readonly"},
        {"RCLONE_CONFIG_MARROW_CLIENT_ID", "client"},
        {"RCLONE_CONFIG_MARROW_CLIENT_SECRET", "secret"},
        {"RCLONE_CONFIG_MARROW_TEAM_DRIVE", "shared"},
        {"RCLONE_CONFIG_MARROW_TOKEN", R"({"access_token":"access-1","expiry":"2026-03-01T09:30:00Z",)"
                                       R"("refresh_token":"refresh","token_type":"Bearer"})"},
    };
    EXPECT_EQ(calls[0].environment, expected);
}

TEST(RcloneDriveSource, fillsTheFolder) {
    Fixture fixture;
    fixture.download({file("a", "one"), directory("d", "deep"), file("b", "deep/er/two")});
    EXPECT_EQ(readFile(fixture.folder / "one"), "bytes of a");
    EXPECT_EQ(readFile(fixture.folder / "deep/er/two"), "bytes of b");
}

TEST(RcloneDriveSource, fetchesThirtyThreeFilesInTwoCallsWithATokenEach) {
    Fixture fixture;
    fixture.download(files(33));
    EXPECT_THAT(itemCounts(fixture.rclone), ElementsAre(32, 1));
    EXPECT_EQ(*fixture.renewals, 2);
    const auto calls = fixture.rclone.calls();
    EXPECT_EQ(calls[0].arguments[20], "id1");
    EXPECT_EQ(calls[1].arguments[20], "id33");
    EXPECT_THAT(calls[0].environment.at("RCLONE_CONFIG_MARROW_TOKEN"), testing::HasSubstr("\"access-1\""));
    EXPECT_THAT(calls[1].environment.at("RCLONE_CONFIG_MARROW_TOKEN"), testing::HasSubstr("\"access-2\""));
}

TEST(RcloneDriveSource, fetchesSixtyFiveFilesInThreeCalls) {
    Fixture fixture;
    fixture.download(files(65));
    EXPECT_THAT(itemCounts(fixture.rclone), ElementsAre(32, 32, 1));
}

TEST(RcloneDriveSource, asksForNothingWhenTheListIsEmpty) {
    Fixture fixture;
    fixture.download({});
    EXPECT_EQ(*fixture.renewals, 0);
    EXPECT_THAT(fixture.rclone.calls(), IsEmpty());
}

TEST(RcloneDriveSource, runsTheToolWithoutItemsForABatchOfFolders) {
    Fixture fixture;
    fixture.download({directory("a", "one"), directory("b", "two")});
    EXPECT_THAT(itemCounts(fixture.rclone), ElementsAre(0));
    EXPECT_FALSE(fs::exists(fixture.folder / "one"));
}

TEST(RcloneDriveSource, refusesUnsafePathsBeforeTheToolIsStarted) {
    for (const std::string path : {"../x", "a//b", "/a", "a/./b", "", "a/"}) {
        for (const bool isDirectory : {false, true}) {
            Fixture fixture;
            SourceEntry unsafe = file("b", path);
            unsafe.isDirectory = isDirectory;
            const auto words =
                test::thrown<BackupError>([&] { fixture.download({file("a", "safe"), unsafe}); });
            EXPECT_EQ(words, "Unsafe path in backup: " + path);
            EXPECT_THAT(fixture.rclone.calls(), IsEmpty());
            EXPECT_THAT(directoryNames(fixture.folder), IsEmpty());
        }
    }
}

TEST(RcloneDriveSource, refusesAnUnsafePathOfALaterBatchWhenItComesToIt) {
    Fixture fixture;
    auto entries = files(33);
    entries[32].path = "a/../b";
    EXPECT_EQ(test::thrown<BackupError>([&] { fixture.download(entries); }), "Unsafe path in backup: a/../b");
    EXPECT_THAT(itemCounts(fixture.rclone), ElementsAre(32));
    EXPECT_EQ(directoryNames(fixture.folder / "folder").size(), 32U);
}

TEST(RcloneDriveSource, namesTheExitStatus) {
    Fixture fixture("exit 3");
    EXPECT_EQ(test::thrown<BackupError>([&] { fixture.download(files(1)); }),
              "rclone could not download this batch (exit 3). Check connectivity, download permissions, and "
              "Google export limits. Earlier backups are safe.");
}

TEST(RcloneDriveSource, namesTheSignalThatEndedTheTool) {
    Fixture fixture("kill -9 $$");
    EXPECT_EQ(test::thrown<BackupError>([&] { fixture.download(files(1)); }),
              "rclone could not download this batch (exit 9). Check connectivity, download permissions, and "
              "Google export limits. Earlier backups are safe.");
}

TEST(RcloneDriveSource, leavesTheFilesOfEarlierBatchesWhenALaterOneFails) {
    Fixture fixture("[ $call -lt 2 ]");
    EXPECT_THROW(fixture.download(files(65)), BackupError);
    EXPECT_THAT(itemCounts(fixture.rclone), ElementsAre(32, 32));
    EXPECT_EQ(readFile(fixture.folder / "folder/1"), "bytes of id1");
    EXPECT_EQ(readFile(fixture.folder / "folder/32"), "bytes of id32");
}

TEST(RcloneDriveSource, bringsNamesThatRcloneWouldRewriteToTheirPlace) {
    Fixture fixture;
    fixture.download({file("a", "␊/‛Twas"), file("b", "plain")});
    EXPECT_EQ(readFile(fixture.folder / "␊/‛Twas"), "bytes of a");
    EXPECT_EQ(directoryNames(fixture.folder).size(), 2U);
}

TEST(RcloneDriveSource, reachesAFolderThatRcloneWouldRewriteThroughALink) {
    Fixture fixture;
    fixture.folder = fixture.surroundings / "‛Backups␊";
    makeDirectory(fixture.folder, 0700);
    fixture.download({file("a", "deep/one"), file("b", "␊")});
    EXPECT_EQ(readFile(fixture.folder / "deep/one"), "bytes of a");
    EXPECT_EQ(readFile(fixture.folder / "␊"), "bytes of b");
    EXPECT_EQ(directoryNames(fixture.folder).size(), 2U);
    const auto calls = fixture.rclone.calls();
    for (const std::string& argument : calls.at(0).arguments)
        EXPECT_FALSE(RcloneCommand::isRewritten(argument)) << argument;
    EXPECT_THAT(fixture.surroundings.leftovers(), IsEmpty());
}

TEST(RcloneDriveSource, passesAFailureToMakeAFolderThrough) {
    Fixture fixture;
    writeAll(openFile(fixture.folder / "taken", O_WRONLY | O_CREAT), "a file");
    EXPECT_THROW(fixture.download({file("a", "taken/one")}), std::system_error);
    EXPECT_THAT(fixture.rclone.calls(), IsEmpty());
}

TEST(RcloneDriveSource, passesAMissingTokenThrough) {
    Fixture fixture;
    RcloneDriveSource source({fixture.auth, "nobody"}, fixture.location, fixture.rclone.executable(),
                             fixture.surroundings.value);
    EXPECT_EQ(test::thrown<BackupError>([&] { test::await(source.download(files(1), fixture.folder, {})); }),
              "Reconnect this Google account in Settings.");
    EXPECT_THAT(fixture.rclone.calls(), IsEmpty());
}

TEST(RcloneDriveSource, endsTheToolAndStartsNoOtherWhenCancelled) {
    const test::ScratchFolder scratch;
    const test::NamedPipe said(scratch / "said");
    const test::NamedPipe never(scratch / "never");
    const Descriptor held = never.hold();
    Fixture fixture("echo ready >" + said.path().string() + "; exec cat " + never.path().string());
    RcloneDriveSource source({fixture.auth, "ada"}, fixture.location, fixture.rclone.executable(),
                             fixture.surroundings.value);
    std::stop_source stop;
    asio::thread_pool pool(1);
    auto download =
        asio::co_spawn(pool, source.download(files(65), fixture.folder, stop.get_token()), asio::use_future);
    EXPECT_EQ(said.read(), "ready\n");
    stop.request_stop();
    EXPECT_THROW(download.get(), CancellationError);
    EXPECT_EQ(fixture.rclone.calls().size(), 1U);
    EXPECT_TRUE(test::hasNoChild());
    EXPECT_THAT(fixture.surroundings.leftovers(), IsEmpty());
}

TEST(RcloneDriveSource, looksBesideTheProgramFirst) {
    const std::vector<fs::path> expected{"/opt/app/libexec/marrowbox/rclone", "/opt/homebrew/bin/rclone",
                                         "/usr/local/bin/rclone", "/usr/bin/rclone"};
    EXPECT_EQ(RcloneDriveSource::candidates("/opt/app/bin/marrowbox"), expected);
}

TEST(RcloneDriveSource, locatesTheFirstFileThatMayBeExecuted) {
    const test::ScratchFolder scratch;
    const auto make = [&](std::string_view name, mode_t mode) {
        const auto path = scratch / name;
        writeAll(openFile(path, O_WRONLY | O_CREAT, mode), "");
        return path;
    };
    makeDirectory(scratch / "folder", 0700);
    fs::create_symlink("second", scratch / "link");
    const std::vector<fs::path> none{scratch / "missing", scratch / "folder", make("plain", 0600)};
    EXPECT_EQ(RcloneDriveSource::locate(none), std::nullopt);
    auto candidates = none;
    candidates.insert(candidates.end(), {scratch / "link", make("second", 0700)});
    EXPECT_EQ(RcloneDriveSource::locate(candidates), scratch / "link");
}

} // namespace

} // namespace marrowbox
