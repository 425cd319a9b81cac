// A cloud that lies, and means harm by it. A backup ends with a sentence or holds what it was told; what was
// backed up before stays as it was, and nothing is written but where a backup may write.
#include "GoogleBackup.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Sandbox/Fault.h"
#include "Sandbox/RequestMatch.h"
#include "Support/Thrown.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace sandbox;
using test::GoogleBackup;
using test::thrown;
using testing::MatchesRegex;
using testing::StartsWith;

constexpr std::size_t largestPage = std::size_t(64) << 20;

/// A backup that has run once, before the cloud turns hostile.
struct HostileCloud : testing::Test {
    HostileCloud() {
        backup.drive.addFile(backup.folder, "kept", "as it was");
        first = backup.run();
    }
    ~HostileCloud() override {
        backup.expectHolds(first, {"kept"});
        expectNothingAstray();
    }

    /// Looks at every name in all folders around the backup.
    void expectNothingAstray() const {
        const std::string uuid = "[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}";
        const std::string repository =
            "Destination(/Marrowbox(/" + uuid +
            "(/(Repository[.]json|[.]lock|Staging|Objects(/[0-9a-f]{2}(/[0-9a-f]{64})?)?|"
            "Snapshots(/" +
            uuid + "[.]json)?))?)?)?";
        const std::string ours = "authority[.]pem|temporary|Credentials(/credentials[.](json|lock))?";
        for (const auto& found : fs::recursive_directory_iterator(backup.place())) {
            const std::string name = found.path().lexically_relative(backup.place()).string();
            EXPECT_THAT(name, MatchesRegex("(" + ours + "|" + repository + ")"));
        }
    }
    /// The end of a run that no rule of ours has a sentence for.
    void expectUndecodable() {
        EXPECT_NE(thrown<JSONDecodingError>([this] { backup.run(); }), "");
        backup.expectSettled(1);
    }
    /// Has the listing tell something that is not so, and what rclone asks for tell the truth.
    void tellInListing(const std::string& truth, const std::string& lie) {
        backup.sandbox.inject(
            Fault::on(listing(backup.folder)).always().editBody([truth, lie](std::string page) {
                const auto place = page.find(truth);
                return place == std::string::npos ? page : page.replace(place, truth.size(), lie);
            }));
    }

    GoogleBackup backup;
    Snapshot first;
};

TEST_F(HostileCloud, escapesNowhereByItsNames) {
    const std::vector<std::pair<std::string, std::string>> names{
        {"../escaped", "..%2Fescaped"},
        {"../../../../../../../../tmp/escaped", "..%2F..%2F..%2F..%2F..%2F..%2F..%2F..%2Ftmp%2Fescaped"},
        {"..\\escaped", "..%5Cescaped"},
        {"/escaped", "%2Fescaped"},
        {"C:\\escaped", "C%3A%5Cescaped"},
        {"%2E%2E%2Fescaped", "%252E%252E%252Fescaped"},
        {std::string("cut\0escaped", 11), "cut%00escaped"},
        {"~", "~"},
        {"$(touch escaped)", "$(touch escaped)"},
        {"`touch escaped`", "`touch escaped`"},
        {"-o escaped", "-o escaped"},
        {"|touch escaped", "|touch escaped"},
        {"\u202Egpj.exe", "%202Egpj.exe"},
        {". . .", ". . %2E"},
        {".. ", "..%20"},
        {".lock", ".lock"},
        {"Repository.json", "Repository.json"},
        {"Staging", "Staging"},
        {"Objects", "Objects"},
        {"con", "con"},
    };
    std::vector<std::string> paths = backup.addFoldersNamed(names);
    paths.insert(paths.begin(), "kept");
    backup.expectHolds(backup.run(), paths);
    backup.expectSettled(2);
}

TEST_F(HostileCloud, isRefusedANameThatFitsNowhere) {
    const std::string name(240, 'n');
    backup.drive.addFolder(backup.folder, name);
    EXPECT_EQ(backup.refusal(), "The name “" + name + "” is too long for a portable backup.");
}

TEST_F(HostileCloud, isRefusedAnIdentifierThatMeansMoreInAQuery) {
    for (const std::string id : {"x' or 'root", "../root", "a b", ""}) {
        GoogleBackup other;
        DriveItem item;
        item.id = "plain";
        item.name = "folder";
        item.mimeType = folderType;
        item.parents = {other.folder};
        other.drive.add(item);
        other.sandbox.inject(Fault::on(listing(other.folder)).editBody([id](std::string page) {
            return page.replace(page.find("\"plain\""), 7, "\"" + id + "\"");
        }));
        EXPECT_EQ(other.refusal(), "Invalid Google Drive folder ID.") << id;
    }
}

TEST_F(HostileCloud, cannotMakeRcloneTakeAnIdentifierForSomethingElse) {
    for (const std::string id :
         {"../../about", "-o", "--config", "?alt=media", "", "root", "id/export?mimeType=x"}) {
        SCOPED_TRACE(id);
        backup.sandbox.clearFaults();
        const std::string file = backup.drive.addFile(backup.folder, "file", "content");
        tellInListing("\"" + file + "\"", "\"" + id + "\"");
        EXPECT_THAT(backup.refusal(), StartsWith("rclone could not download this batch (exit "));
        backup.drive.remove(file);
    }
}

TEST_F(HostileCloud, isRefusedAFolderThatLiesInItself) {
    const auto inner = backup.drive.addFolder(backup.drive.addFolder(backup.folder, "outer"), "inner");
    backup.drive.addParent(backup.folder, inner);
    EXPECT_EQ(backup.refusal(), "A folder cycle was found in Google Drive.");
}

TEST_F(HostileCloud, isRefusedAFolderWithTwoParents) {
    const auto left = backup.drive.addFolder(backup.folder, "left");
    const auto right = backup.drive.addFolder(backup.folder, "right");
    backup.drive.addParent(backup.drive.addFolder(left, "both"), right);
    EXPECT_EQ(backup.refusal(), "A folder cycle was found in Google Drive.");
}

TEST_F(HostileCloud, isRefusedAnItemThatIsListedTwice) {
    const auto file = backup.drive.addFile(backup.folder, "twice", "content");
    backup.sandbox.inject(Fault::on(listing(backup.folder)).editBody([](std::string page) {
        const auto items = page.find('[');
        const std::string all = page.substr(items + 1, page.rfind(']') - items - 1);
        return page.insert(items + 1, all + ",");
    }));
    EXPECT_THAT(backup.refusal(), StartsWith("Two Google Drive items map to “kept ["));
}

TEST_F(HostileCloud, hidesNothingBelowAFile) {
    const auto file = backup.drive.addFile(backup.folder, "file", "content");
    DriveItem below;
    below.name = "below";
    below.mimeType = "text/plain";
    below.version = "1";
    below.parents = {file};
    backup.drive.add(below);
    backup.expectHolds(backup.run(), {"kept", "file"});
    backup.expectSettled(2);
}

TEST_F(HostileCloud, repeatsAPageForEver) {
    backup.sandbox.inject(Fault::on(listing(backup.folder)).endlessPages().always());
    EXPECT_EQ(backup.refusal(), "Google returned an incomplete folder listing. Please try again.");
}

TEST_F(HostileCloud, mayGiveALargePageAndNoLargerOne) {
    const auto padded = [](std::size_t size) {
        return [size](std::string page) {
            const std::string name = "\"padding\":\"";
            const std::size_t missing = size - page.size() - name.size() - 2;
            return page.insert(1, name + std::string(missing, 'x') + "\",");
        };
    };
    backup.sandbox.inject(Fault::on(listing(backup.folder)).editBody(padded(largestPage + 1)));
    EXPECT_EQ(backup.refusal(), "The server returned a response that is too large.");
    backup.sandbox.clearFaults();
    backup.sandbox.inject(Fault::on(listing(backup.folder)).editBody(padded(largestPage)));
    backup.expectHolds(backup.run(), {"kept"});
    backup.expectSettled(2);
}

TEST_F(HostileCloud, cannotOverflowTheReaderOfItsPages) {
    const std::string deep(std::size_t(8) << 20, '[');
    for (const std::string& page : {deep, "{\"files\":" + deep, "{\"unknown\":" + deep + "}"}) {
        backup.sandbox.clearFaults();
        backup.sandbox.inject(Fault::on(listing(backup.folder)).body(page));
        expectUndecodable();
    }
}

TEST_F(HostileCloud, mayTellAnythingButAPage) {
    const std::string nothing;
    for (const std::string& page :
         {nothing, std::string("null"), std::string("<html></html>"), std::string("{\"files\":null}"),
          std::string("{\"files\":[{\"id\":\"\xFF\",\"name\":\"n\",\"mimeType\":\"t\"}]}"),
          std::string(1000, '\0')}) {
        backup.sandbox.clearFaults();
        backup.sandbox.inject(Fault::on(listing(backup.folder)).body(page));
        expectUndecodable();
    }
}

TEST_F(HostileCloud, isCaughtLyingAboutADigest) {
    const auto file = backup.drive.addFile(backup.folder, "file", "content");
    const std::string truth = backup.drive.item(file)->md5Checksum.value();
    tellInListing(truth, std::string(32, '0'));
    EXPECT_EQ(backup.refusal(), "Checksum verification failed for “file”.");
    backup.sandbox.clearFaults();
    tellInListing(truth, "not a digest");
    EXPECT_EQ(backup.refusal(), "Checksum verification failed for “file”.");
    backup.sandbox.clearFaults();
    backup.drive.update(file, [](DriveItem& item) { item.md5Checksum = std::string(32, '0'); });
    EXPECT_THAT(backup.refusal(), StartsWith("rclone could not download this batch (exit "));
    backup.drive.update(file, [&](DriveItem& item) { item.md5Checksum = truth; });
    backup.expectHolds(backup.run(), {"kept", "file"});
    backup.expectSettled(2);
}

TEST_F(HostileCloud, isCaughtLyingAboutASize) {
    const auto file = backup.drive.addFile(backup.folder, "file", "content");
    for (const std::string lie : {"0", "6", "8", "9223372036854775807"}) {
        backup.sandbox.clearFaults();
        tellInListing("\"size\":\"7\"", "\"size\":\"" + lie + "\"");
        EXPECT_EQ(backup.refusal(), "Size verification failed for “file”.") << lie;
    }
    backup.sandbox.clearFaults();
    backup.drive.update(file, [](DriveItem& item) { item.size = "8"; });
    EXPECT_THAT(backup.refusal(), StartsWith("rclone could not download this batch (exit "));
    backup.drive.update(file, [](DriveItem& item) { item.size = "7"; });
    backup.expectHolds(backup.run(), {"kept", "file"});
    backup.expectSettled(2);
}

TEST_F(HostileCloud, sendsRcloneToNobodyWhoCannotBeReached) {
    const auto file = backup.drive.addFile(backup.folder, "file", "content");
    backup.sandbox.inject(
        Fault::on(media(file)).answer(302).header("Location", "https://elsewhere.example/file").always());
    EXPECT_THAT(backup.refusal(), StartsWith("rclone could not download this batch (exit "));
    EXPECT_THAT(backup.sandbox.requests().refusedHosts(), testing::Contains("elsewhere.example:443"));
}

} // namespace

} // namespace marrowbox
