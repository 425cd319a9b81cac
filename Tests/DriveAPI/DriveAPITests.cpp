#include "DriveAPI/DriveAPI.h"

#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Sandbox/SandboxServer.h"
#include "Support/Coroutine.h"
#include "Support/RecordedWaits.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <atomic>
#include <boost/asio/thread_pool.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

using namespace sandbox;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::string fields =
    "id,name,mimeType,version,modifiedTime,size,md5Checksum,trashed,driveId,capabilities(canDownload)";

struct RequestsUnderWay {
    std::atomic<int> now = 0;
    std::atomic<int> most = 0;
};

asio::awaitable<HTTPResponse> counted(HTTPSession& session, RequestsUnderWay& underWay,
                                      std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
    underWay.most = std::max(underWay.most.load(), ++underWay.now);
    HTTPResponse response = co_await session.send(std::move(request), std::move(stop));
    --underWay.now;
    co_return response;
}

/// An account at the simulated service, reached through its proxy over TLS.
class DriveAPITest : public testing::Test {
  protected:
    DriveAPITest() {
        const SandboxToken token = sandbox_.identity().issueToken();
        const OAuthToken stored{token.accessToken, token.refreshToken, systemClock()() + 3600, token.scope};
        credentials_.save(encodeJSON(stored, JSONStyle::compact), "google.1");
    }
    ~DriveAPITest() override { EXPECT_THAT(sandbox_.failures(), IsEmpty()); }

    HTTPSettings settings() {
        sandbox_.writeAuthority(folder_ / "authority.pem");
        HTTPSettings settings;
        settings.certificateFile = folder_ / "authority.pem";
        settings.proxy = sandbox_.proxyURL();
        return settings;
    }
    DriveAPI apiOver(HTTP http) {
        const OAuthClient client{sandbox_.identity().client().id, {}, {}};
        return {std::make_shared<GoogleAuth>(client, std::move(http), credentials_, systemClock(),
                                             pool_.get_executor()),
                "1"};
    }
    DriveLocation location(const std::string& id) { return {id, "Source", std::nullopt}; }
    std::vector<SourceEntry> inventory(DriveLocation of) { return await(api_.inventory(std::move(of), {})); }
    std::string refusalOf(DriveLocation of) {
        return thrown<BackupError>([&] { inventory(std::move(of)); });
    }
    std::vector<std::string> childNames(const std::string& id) {
        std::vector<std::string> names;
        for (const DriveFile& file : await(api_.children(location(id), DriveItems::all, {})))
            names.push_back(file.name);
        return names;
    }
    NamedValues sortedQuery(const RequestMatch& match) {
        NamedValues query = sandbox_.requests().matching(match).back().query;
        std::ranges::sort(query);
        return query;
    }

    ScratchFolder folder_;
    SandboxServer sandbox_;
    Drive& drive_ = sandbox_.drive();
    AppCredentials credentials_{folder_ / "Credentials"};
    asio::thread_pool pool_{2};
    RecordedWaits waits_;
    HTTPSession session_{settings()};
    DriveAPI api_ = apiOver(HTTP(session_, waits_.wait()));
};

} // namespace

TEST_F(DriveAPITest, listsMyDriveAndThenTheSharedDrives) {
    const std::string zebra = drive_.addSharedDrive("Zebra");
    const std::string apple = drive_.addSharedDrive("Apple");
    const auto roots = await(api_.roots({}));
    EXPECT_THAT(roots,
                ElementsAre(DriveLocation{"root", "My Drive", std::nullopt},
                            DriveLocation{zebra, "Zebra", zebra}, DriveLocation{apple, "Apple", apple}));
}

TEST_F(DriveAPITest, asksForTheSharedDrivesPageByPage) {
    for (int index = 0; index < 101; ++index)
        drive_.addSharedDrive("Drive " + std::to_string(index));
    EXPECT_THAT(await(api_.roots({})), SizeIs(102));
    const auto requests = sandbox_.requests().matching(listingDrives());
    ASSERT_THAT(requests, SizeIs(2));
    NamedValues first = requests[0].query;
    std::ranges::sort(first);
    EXPECT_EQ(first, (NamedValues{{"fields", "nextPageToken,drives(id,name)"}, {"pageSize", "100"}}));
    EXPECT_EQ(requests[1].query.size(), 3U);
    EXPECT_TRUE(requests[1].queryItem("pageToken"));
}

TEST_F(DriveAPITest, fetchesOneItem) {
    const std::string id = drive_.addFile("root", "a.txt", "words", "text/plain");
    const DriveFile file = await(api_.file(id, {}));
    EXPECT_EQ(file.id, id);
    EXPECT_EQ(file.name, "a.txt");
    EXPECT_EQ(file.mimeType, "text/plain");
    EXPECT_EQ(file.size, "5");
    EXPECT_EQ(file.trashed, false);
    EXPECT_EQ(sortedQuery(metadata(id)), (NamedValues{{"fields", fields}, {"supportsAllDrives", "true"}}));
    const RecordedRequest request = sandbox_.requests().all().at(0);
    EXPECT_EQ(request.method + " " + request.host + request.path,
              "GET www.googleapis.com/drive/v3/files/" + id);
}

TEST_F(DriveAPITest, fetchesMyDriveItself) {
    EXPECT_TRUE(await(api_.file("root", {})).isFolder());
}

TEST_F(DriveAPITest, refusesAnIdentifierBeforeItAsksAnybody) {
    for (const std::string& id :
         {std::string(), std::string("a'b"), std::string("a\n"), std::string("../x")}) {
        EXPECT_EQ(thrown<BackupError>([&] { await(api_.file(id, {})); }), "Invalid Google Drive item ID.");
        EXPECT_EQ(thrown<BackupError>([&] { await(api_.children(location(id), DriveItems::all, {})); }),
                  "Invalid Google Drive folder ID.");
    }
    EXPECT_EQ(sandbox_.requests().connectionCount(), 0U);
}

TEST_F(DriveAPITest, asksForTheChildrenOfAFolderInMyDrive) {
    const std::string folder = drive_.addFolder("root", "Folder");
    childNames(folder);
    EXPECT_EQ(sortedQuery(listing(folder)),
              (NamedValues{{"corpora", "user"},
                           {"fields", "nextPageToken,incompleteSearch,files(" + fields + ")"},
                           {"includeItemsFromAllDrives", "true"},
                           {"pageSize", "1000"},
                           {"q", "'" + folder + "' in parents and trashed = false"},
                           {"supportsAllDrives", "true"}}));
}

TEST_F(DriveAPITest, asksForTheFoldersOfAFolderInASharedDrive) {
    const std::string shared = drive_.addSharedDrive("Team");
    const std::string folder = drive_.addFolder(shared, "Folder");
    const std::string inside = drive_.addFolder(folder, "Inside");
    drive_.addFile(folder, "file", "words");
    const auto folders = await(api_.folders({folder, "Folder", shared}, {}));
    EXPECT_THAT(folders, ElementsAre(DriveLocation{inside, "Inside", shared}));
    EXPECT_EQ(sortedQuery(listing(folder)),
              (NamedValues{{"corpora", "drive"},
                           {"driveId", shared},
                           {"fields", "nextPageToken,incompleteSearch,files(" + fields + ")"},
                           {"includeItemsFromAllDrives", "true"},
                           {"pageSize", "1000"},
                           {"q", "'" + folder +
                                     "' in parents and trashed = false and mimeType = "
                                     "'application/vnd.google-apps.folder'"},
                           {"supportsAllDrives", "true"}}));
}

TEST_F(DriveAPITest, sortsChildrenAsAFileBrowserDoes) {
    for (const char* name : {"file 10", "File 9", "file 1", "banana"})
        drive_.addFile("root", name, "");
    EXPECT_THAT(childNames("root"), ElementsAre("banana", "file 1", "File 9", "file 10"));
}

TEST_F(DriveAPITest, keepsTheOrderOfEqualNames) {
    std::vector<std::string> ids;
    for (int index = 0; index < 5; ++index)
        ids.push_back(drive_.addFile("root", "same", ""));
    drive_.addFile("root", "a", "");
    const auto files = await(api_.children(location("root"), DriveItems::all, {}));
    for (std::size_t index = 0; index < ids.size(); ++index)
        EXPECT_EQ(files.at(index + 1).id, ids[index]);
}

TEST_F(DriveAPITest, gathersAllPagesOfAFolder) {
    const std::string folder = drive_.addGenerated("root", "Many", {.folders = 1, .filesPerFolder = 2500});
    const auto inside = await(api_.folders(location(folder), {}));
    EXPECT_THAT(await(api_.children(inside.at(0), DriveItems::all, {})), SizeIs(2500));
    EXPECT_EQ(sandbox_.requests().count(listing(inside.at(0).id)), 3U);
}

TEST_F(DriveAPITest, refusesAFolderWhoseThirdPageIsIncomplete) {
    const std::string folder = drive_.addGenerated("root", "Many", {.folders = 1, .filesPerFolder = 2500});
    const DriveLocation inside = await(api_.folders(location(folder), {})).at(0);
    sandbox_.inject(Fault::on(listing(inside.id)).nth(3).incompleteSearch());
    EXPECT_EQ(thrown<BackupError>([&] { await(api_.children(inside, DriveItems::all, {})); }),
              "Google returned an incomplete folder listing. Please try again.");
}

TEST_F(DriveAPITest, passesOnAPageThatDoesNotDecode) {
    sandbox_.inject(Fault::on(listing("root")).body("{\"files\": [{\"id\": \"a\"}]}"));
    EXPECT_THROW(childNames("root"), JSONDecodingError);
}

TEST_F(DriveAPITest, asksAgainAfterARefusalThatPasses) {
    drive_.addFile("root", "a", "");
    sandbox_.inject(Fault::on(listing("root")).answer(429).retryAfter("1.5"));
    EXPECT_THAT(childNames("root"), ElementsAre("a"));
    EXPECT_THAT(waits_.seconds(), ElementsAre(1.5));
}

TEST_F(DriveAPITest, takesInventoryOfATreeInOrder) {
    const std::string top = drive_.addFolder("root", "Top");
    const std::string second = drive_.addFolder(top, "Folder 10");
    const std::string first = drive_.addFolder(top, "Folder 9");
    const std::string deep = drive_.addFolder(first, "Deep");
    drive_.addFile(deep, "leaf.bin", "12345");
    drive_.addNative(second, "Plan", NativeKind::document, "words");
    const auto entries = inventory(location(top));
    std::vector<std::string> paths;
    for (const SourceEntry& entry : entries)
        paths.push_back(entry.path.string());
    EXPECT_THAT(paths, ElementsAre("Folder 10", "Folder 10/Plan.docx", "Folder 9", "Folder 9/Deep",
                                   "Folder 9/Deep/leaf.bin"));
    EXPECT_EQ(entries.back().size, 5);
    std::vector<std::string> asked;
    for (const RecordedRequest& request : sandbox_.requests().all())
        asked.push_back(request.queryItem("q").value_or(request.path));
    const auto children = [](const std::string& id) { return "'" + id + "' in parents and trashed = false"; };
    EXPECT_THAT(asked, ElementsAre("/drive/v3/files/" + top, children(top), children(first), children(second),
                                   children(deep)));
}

TEST_F(DriveAPITest, takesInventoryOfAnEmptyFolder) {
    EXPECT_THAT(inventory(location(drive_.addFolder("root", "Empty"))), IsEmpty());
}

TEST_F(DriveAPITest, takesInventoryOfAWholeSharedDrive) {
    const std::string shared = drive_.addSharedDrive("Team");
    const std::string folder = drive_.addFolder(shared, "Folder");
    drive_.addFile(folder, "a", "words");
    EXPECT_THAT(inventory({shared, "Team", shared}), SizeIs(2));
    EXPECT_EQ(sandbox_.requests().matching(listing(folder)).at(0).queryItem("driveId"), shared);
}

TEST_F(DriveAPITest, leavesOutWhatIsInTheTrash) {
    const std::string top = drive_.addFolder("root", "Top");
    drive_.trash(drive_.addFile(top, "gone", ""));
    drive_.addFile(top, "here", "");
    EXPECT_THAT(inventory(location(top)), SizeIs(1));
}

TEST_F(DriveAPITest, refusesASourceThatIsAFileOrInTheTrash) {
    const std::string sentence = "The source folder is unavailable or in the Google Drive trash.";
    const std::string folder = drive_.addFolder("root", "Gone");
    drive_.trash(folder);
    EXPECT_EQ(refusalOf(location(folder)), sentence);
    EXPECT_EQ(refusalOf(location(drive_.addFile("root", "a", ""))), sentence);
}

TEST_F(DriveAPITest, refusesAShortcutAnywhereInTheTree) {
    const std::string top = drive_.addFolder("root", "Top");
    drive_.addNative(drive_.addFolder(top, "Sub"), "To elsewhere", NativeKind::shortcut);
    EXPECT_TRUE(
        refusalOf(location(top)).starts_with("“To elsewhere” is a Google type that cannot be exported"));
}

TEST_F(DriveAPITest, refusesACycleOfFolders) {
    const std::string top = drive_.addFolder("root", "Top");
    const std::string inner = drive_.addFolder(top, "Inner");
    drive_.addParent(top, inner);
    EXPECT_EQ(refusalOf(location(top)), "A folder cycle was found in Google Drive.");
}

TEST_F(DriveAPITest, refusesAFolderReachedTwice) {
    const std::string top = drive_.addFolder("root", "Top");
    const std::string left = drive_.addFolder(top, "Left");
    const std::string right = drive_.addFolder(top, "Right");
    drive_.addParent(drive_.addFolder(left, "Both"), right);
    EXPECT_EQ(refusalOf(location(top)), "A folder cycle was found in Google Drive.");
}

TEST_F(DriveAPITest, passesOnARefusalInMidTree) {
    const std::string top = drive_.addFolder("root", "Top");
    const std::string sub = drive_.addFolder(top, "Sub");
    sandbox_.inject(Fault::on(listing(sub)).answer(403).always());
    EXPECT_EQ(refusalOf(location(top)),
              "Access was denied. Check account permissions and that the required Google API is enabled.");
}

TEST_F(DriveAPITest, tellsAFoldersOwnRefusalThoughTheNextAlreadyFailed) {
    const std::string top = drive_.addFolder("root", "Top");
    const std::string first = drive_.addFolder(top, "1");
    const std::string second = drive_.addFolder(top, "2");
    drive_.addNative(first, "Form", NativeKind::form);
    sandbox_.inject(Fault::on(listing(second)).answer(404).always());
    EXPECT_THAT(refusalOf(location(top)), testing::StartsWith("“Form” is a Google type"));
}

TEST_F(DriveAPITest, asksForOneFolderAtATime) {
    const std::string top = drive_.addGenerated("root", "Many", {.folders = 30, .filesPerFolder = 40});
    RequestsUnderWay underWay;
    const HTTPSend counting = [&](std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
        return counted(session_, underWay, std::move(request), std::move(stop));
    };
    const DriveAPI api = apiOver(HTTP(counting, waits_.wait()));
    EXPECT_THAT(await(api.inventory(location(top), {})), SizeIs(30 + 30 * 40));
    EXPECT_EQ(underWay.most, 1);
    EXPECT_EQ(underWay.now, 0);
}

TEST_F(DriveAPITest, endsAtOnceWhenCancelledInMidTree) {
    const std::string top = drive_.addGenerated("root", "Many", {.folders = 20, .filesPerFolder = 5});
    std::stop_source stop;
    sandbox_.inject(Fault::on(anyListing()).nth(5).run([&] { stop.request_stop(); }));
    EXPECT_THROW(await(api_.inventory(location(top), stop.get_token())), CancellationError);
    EXPECT_EQ(sandbox_.requests().count(anyListing()), 5U);
}

TEST_F(DriveAPITest, keepsOneConnectionForAWholeInventory) {
    const std::string top = drive_.addGenerated("root", "Many", {.folders = 50, .filesPerFolder = 5});
    EXPECT_THAT(inventory(location(top)), SizeIs(300));
    EXPECT_EQ(sandbox_.requests().count(anyRequest()), 52U);
    EXPECT_EQ(sandbox_.requests().connectionCount(), 1U);
}

TEST_F(DriveAPITest, finishesAFolderOfSeveralPagesBeforeItAsksForTheNext) {
    const std::string top = drive_.addGenerated("root", "Many", {.folders = 3, .filesPerFolder = 1001});
    EXPECT_THAT(inventory(location(top)), SizeIs(3 + 3 * 1001));
    std::vector<bool> isLaterPage;
    for (const RecordedRequest& request : sandbox_.requests().matching(anyListing()))
        isLaterPage.push_back(request.queryItem("pageToken").has_value());
    EXPECT_THAT(isLaterPage, ElementsAre(false, false, true, false, true, false, true));
}

TEST_F(DriveAPITest, asksForEachFolderOnceThoughAnAnswerBetweenThemFails) {
    const std::string top = drive_.addFolder("root", "Top");
    std::vector<std::string> folders;
    for (const char* name : {"1", "2", "3", "4"})
        folders.push_back(drive_.addFolder(top, name));
    sandbox_.inject(Fault::on(listing(folders[1])).answer(503).times(2));
    EXPECT_THAT(inventory(location(top)), SizeIs(4));
    std::vector<std::string> asked;
    for (const RecordedRequest& request : sandbox_.requests().matching(anyListing()))
        asked.push_back(*request.queryItem("q"));
    const auto children = [](const std::string& id) { return "'" + id + "' in parents and trashed = false"; };
    EXPECT_THAT(asked,
                ElementsAre(children(top), children(folders[0]), children(folders[1]), children(folders[1]),
                            children(folders[1]), children(folders[2]), children(folders[3])));
    EXPECT_THAT(waits_.seconds(), ElementsAre(2, 4));
}

TEST_F(DriveAPITest, staysUsableWhileACopyOfItWorks) {
    const std::string id = drive_.addFile("root", "a", "");
    auto work = DriveAPI(api_).file(id, {});
    EXPECT_EQ(await(std::move(work)).name, "a");
}

TEST_F(DriveAPITest, namesAnExportForOthers) {
    DriveFile file;
    file.name = "Plan";
    file.mimeType = "application/vnd.google-apps.drawing";
    EXPECT_EQ(DriveAPI::exportedName(file), "Plan.svg");
}

} // namespace marrowbox::test
