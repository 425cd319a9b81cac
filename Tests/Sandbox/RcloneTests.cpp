// What the real rclone does with our services, as its users know it to do with Google's.
#include "Platform/Files.h"
#include "Rclone.h"
#include "Sandbox/Exports.h"
#include "Support/LoopbackServer.h"

#include <csignal>
#include <gmock/gmock.h>
#include <sys/inotify.h>

namespace marrowbox::test {
namespace {

using namespace sandbox;
using testing::ElementsAre;

/// Waits for bytes to stand in a file, watching its folder from construction on.
class FirstWrite {
  public:
    explicit FirstWrite(fs::path file) : file_(std::move(file)), events_(::inotify_init1(IN_CLOEXEC)) {
        ::inotify_add_watch(events_.number(), file_.parent_path().c_str(), IN_MODIFY);
    }
    void wait() const {
        std::array<char, 4096> event{};
        while (regularFileSize(file_).value_or(0) == 0)
            readSome(events_, event);
    }

  private:
    fs::path file_;
    Descriptor events_;
};

struct RcloneOnSandbox : testing::Test {
    SandboxServer sandbox;
    Rclone rclone{sandbox};
    Drive& drive = sandbox.drive();

    std::string fetched(const std::string& name) { return readFile(rclone.folder() / name); }
};

TEST_F(RcloneOnSandbox, fetchesABinaryFileAndAnEmptyOne) {
    const Content content = Content::pattern(7, 300'001);
    const std::string binary = drive.addFile("root", "photo.jpg", content);
    const std::string empty = drive.addFile("root", "empty", "");

    EXPECT_EQ(rclone.copy({{binary, "a"}, {empty, "b"}}), 0) << rclone.complaint();

    EXPECT_EQ(fetched("a"), content.bytes());
    EXPECT_EQ(fetched("b"), "");
    EXPECT_THAT(sandbox.requests().lines(),
                ElementsAre("GET /drive/v3/files/root", "GET /drive/v3/files/" + binary,
                            "GET /drive/v3/files/" + binary, "GET /drive/v3/files/" + empty,
                            "GET /drive/v3/files/" + empty));
    EXPECT_THAT(sandbox.failures(), ElementsAre());
}

TEST_F(RcloneOnSandbox, exportsNativeDocumentsInTheirFourFormats) {
    const std::vector<std::pair<NativeKind, std::string>> kinds{{NativeKind::document, "docx"},
                                                                {NativeKind::spreadsheet, "xlsx"},
                                                                {NativeKind::presentation, "pptx"},
                                                                {NativeKind::drawing, "svg"}};
    std::vector<std::pair<std::string, std::string>> items;
    for (const auto& [kind, extension] : kinds)
        items.emplace_back(drive.addNative("root", "Plan", kind, "words " + extension), "plan." + extension);

    EXPECT_EQ(rclone.copy(items), 0) << rclone.complaint();

    for (const auto& [id, name] : items) {
        const DriveItem item = drive.item(id).value();
        const ExportFormat* format = exportFormat(item, name.substr(5));
        EXPECT_EQ(fetched(name), exported(item, *format).bytes());
    }
    EXPECT_EQ(sandbox.requests().count(withPath("/drive/v3/about")), 1);
    EXPECT_EQ(sandbox.requests().count(toHost("docs.google.com")), 4);
}

TEST_F(RcloneOnSandbox, fetchesFromASharedDriveWithoutAskingForTheRoot) {
    const std::string shared = drive.addSharedDrive("Team");
    const std::string file = drive.addFile(shared, "a.txt", "team");
    rclone.setTeamDrive(shared);

    EXPECT_EQ(rclone.copy({{file, "a.txt"}}), 0) << rclone.complaint();

    EXPECT_EQ(fetched("a.txt"), "team");
    EXPECT_EQ(sandbox.requests().count(metadata("root")), 0);
}

TEST_F(RcloneOnSandbox, fetchesItemsOneAfterAnotherAndEndsAtTheFirstFailure) {
    const std::string first = drive.addFile("root", "a", "a");
    const std::string last = drive.addFile("root", "c", "c");

    EXPECT_EQ(rclone.copy({{first, "a"}, {"unknown", "b"}, {last, "c"}}), 1);

    EXPECT_EQ(fetched("a"), "a");
    EXPECT_EQ(sandbox.requests().count(metadata(last)), 0);
}

TEST_F(RcloneOnSandbox, endsWithStatusOneForAnItemThatItCannotHave) {
    const std::string folder = drive.addFolder("root", "folder");
    const std::string refused = drive.addFile("root", "refused", "x");
    drive.update(refused, [](DriveItem& item) { item.canDownload = false; });

    EXPECT_EQ(rclone.copy({{"unknown", "a"}}), 1);
    EXPECT_EQ(rclone.copy({{folder, "a"}}), 1);
    EXPECT_EQ(rclone.copy({{refused, "a"}}), 1);
    sandbox.identity().revokeEverything();
    EXPECT_EQ(rclone.copy({{refused, "a"}}), 1);
}

TEST_F(RcloneOnSandbox, endsWithStatusOneForAWrongDigestAndForAShortBody) {
    const std::string file = drive.addFile("root", "a", Content::pattern(1, 50'000));
    sandbox.inject(Fault::on(media(file)).flipByte(40'000).always());
    EXPECT_EQ(rclone.copy({{file, "a"}}), 1);

    sandbox.clearFaults();
    sandbox.inject(Fault::on(media(file)).shortenBodyTo(40'000).always());
    EXPECT_EQ(rclone.copy({{file, "a"}}), 1);
}

TEST_F(RcloneOnSandbox, endsWithStatusFourForAFileWithoutADigest) {
    const std::string file = drive.addFile("root", "a", "text");
    drive.update(file, [](DriveItem& item) { item.md5Checksum.reset(); });
    EXPECT_EQ(rclone.copy({{file, "a"}}), 4);
}

TEST_F(RcloneOnSandbox, endsWithStatusFiveForAConnectionThatStaysBroken) {
    const std::string file = drive.addFile("root", "a", Content::pattern(1, 50'000));
    sandbox.inject(Fault::on(media(file)).cutAfterBodyBytes(100).always());
    EXPECT_EQ(rclone.copy({{file, "a"}}), 5) << rclone.complaint();
}

TEST_F(RcloneOnSandbox, mendsABusyServiceAndOneBrokenConnectionWithinACall) {
    const std::string file = drive.addFile("root", "a", Content::pattern(1, 50'000));
    for (const unsigned status : {429U, 503U}) {
        sandbox.clearFaults();
        sandbox.inject(Fault::on(metadata(file)).answer(status));
        sandbox.inject(Fault::on(media(file)).answer(status));
        EXPECT_EQ(rclone.copy({{file, "a"}}), 0) << rclone.complaint();
    }
    sandbox.clearFaults();
    sandbox.inject(Fault::on(media(file)).cutAfterBodyBytes(20'000));
    EXPECT_EQ(rclone.copy({{file, "b"}}), 0) << rclone.complaint();
    EXPECT_EQ(fetched("b"), Content::pattern(1, 50'000).bytes());
}

TEST_F(RcloneOnSandbox, takesAnExportThatIsCutBelowAHundredKilobytesForAWholeOne) {
    const std::string document =
        drive.addNative("root", "Plan", NativeKind::document, std::string(50'000, 'x'));
    sandbox.inject(Fault::on(exportOf(document)).cutAfterBodyBytes(20'000).always());
    EXPECT_EQ(rclone.copy({{document, "plan.docx"}}), 0) << rclone.complaint();
    EXPECT_EQ(fetched("plan.docx").size(), 20'000);
}

// It believes the service, which it has asked for its certificate: see "Whom a token is shown to" in
// ARCHITECTURE.md.
TEST_F(RcloneOnSandbox, followsTheServiceToAnotherHostAndShowsItsTokenThere) {
    LoopbackServer stranger([](const WebRequest&) { return webAnswer("200 OK", "", "content"); });
    const std::string file = drive.addFile("root", "file", "content");
    const std::string document = drive.addNative("root", "Plan", NativeKind::document, "text");
    sandbox.inject(Fault::on(media(file)).answer(302).header("Location", stranger.url("/file")).always());
    sandbox.inject(Fault::on(metadata(document)).always().editBody([&](std::string item) {
        const std::string link = "https://docs.google.com/feeds";
        for (auto place = item.find(link); place != std::string::npos; place = item.find(link))
            item.replace(place, link.size(), stranger.url(""));
        return item;
    }));

    EXPECT_EQ(rclone.copy({{file, "file"}, {document, "plan.docx"}}), 0) << rclone.complaint();

    const auto requests = stranger.requests();
    ASSERT_EQ(requests.size(), 2);
    for (const WebRequest& request : requests)
        EXPECT_THAT(request.head, testing::HasSubstr("Authorization: Bearer "));
}

TEST_F(RcloneOnSandbox, fetchesAVeryLargeFileInRanges) {
    const std::int64_t size = 260LL * 1024 * 1024;
    const std::string file = drive.addFile("root", "film", Content::pattern(3, size));

    EXPECT_EQ(rclone.copy({{file, "film"}}), 0) << rclone.complaint();

    EXPECT_EQ(regularFileSize(rclone.folder() / "film"), size);
    const auto requests = sandbox.requests().matching(media(file));
    EXPECT_GT(requests.size(), 1);
    for (const RecordedRequest& request : requests) {
        EXPECT_EQ(request.status, 206);
        EXPECT_TRUE(request.header("Range"));
    }
}

TEST_F(RcloneOnSandbox, refreshesItsOwnTokenWhenTheEndIsNear) {
    const std::string file = drive.addFile("root", "a", "text");
    rclone.setToken(sandbox.identity().issueToken(std::chrono::seconds(0)), "2020-01-01T00:00:00Z");

    EXPECT_EQ(rclone.copy({{file, "a"}}), 0) << rclone.complaint();

    const auto calls = sandbox.requests().matching(tokenCall());
    ASSERT_EQ(calls.size(), 1);
    EXPECT_EQ(firstValue(calls[0].form(), "grant_type"), "refresh_token");
    EXPECT_EQ(calls[0].status, 200);
}

TEST_F(RcloneOnSandbox, endsWhenToldToAndLeavesThePartThatItHas) {
    const std::string file = drive.addFile("root", "a", Content::pattern(5, 4'000'000));
    sandbox.inject(Fault::on(media(file)).stallAfterBodyBytes(3'000'000));
    const FirstWrite written(rclone.folder() / "a");
    rclone.start({{file, "a"}});
    written.wait();

    rclone.terminate();

    EXPECT_EQ(rclone.wait(), -SIGTERM);
    EXPECT_GT(regularFileSize(rclone.folder() / "a"), 0);
    EXPECT_LT(regularFileSize(rclone.folder() / "a"), 4'000'000);
}

} // namespace
} // namespace marrowbox::test
