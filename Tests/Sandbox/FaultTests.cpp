#include "Client.h"

#include <curl/curl.h>
#include <gmock/gmock.h>

namespace marrowbox::test {
namespace {

using namespace sandbox;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string filesAddress = "https://www.googleapis.com/drive/v3/files";

struct SandboxFault : testing::Test {
    SandboxServer sandbox;
    Drive& drive = sandbox.drive();
    Client client{sandbox};
    std::string file = drive.addFile("root", "a", "0123456789");

    SandboxFault() { client.setToken(sandbox.identity().issueToken().accessToken); }
    Reply bytes(const std::vector<std::string>& headers = {}) {
        return client.get(filesAddress + "/" + file + "?alt=media", headers);
    }
    Reply page() { return client.get(filesAddress + "?q='root'+in+parents"); }
};

TEST_F(SandboxFault, answersTheNthRequestAndThoseBehindItAsScripted) {
    sandbox.inject(Fault::on(media(file)).nth(2).answer(503).retryAfter("1.5").times(2));
    std::vector<long> statuses;
    for (int count = 0; count < 4; ++count)
        statuses.push_back(bytes().status);
    EXPECT_THAT(statuses, ElementsAre(200, 503, 503, 200));
    sandbox.inject(Fault::on(media(file)).answer(429).retryAfter("1.5"));
    EXPECT_THAT(bytes().head, HasSubstr("Retry-After: 1.5\r\n"));
}

TEST_F(SandboxFault, leavesOtherRequestsAlone) {
    sandbox.inject(Fault::on(media("other")).answer(500).always());
    EXPECT_EQ(bytes().status, 200);
}

TEST_F(SandboxFault, cutsTheConnectionBeforeAnAnswerOrInTheMiddleOfIt) {
    sandbox.inject(Fault::on(media(file)).cutBeforeAnswer());
    sandbox.inject(Fault::on(media(file)).nth(2).cutAfterBodyBytes(4));
    EXPECT_EQ(bytes().failure, CURLE_GOT_NOTHING);
    const Reply half = bytes();
    EXPECT_NE(half.failure, CURLE_OK);
    EXPECT_EQ(half.body, "0123");
    EXPECT_EQ(bytes().body, "0123456789");
    EXPECT_EQ(sandbox.requests().matching(media(file))[0].status, 0);
}

TEST_F(SandboxFault, shortensAndFlipsBytesWithoutASign) {
    sandbox.inject(Fault::on(media(file)).shortenBodyTo(3));
    sandbox.inject(Fault::on(media(file)).nth(2).flipByte(1));
    EXPECT_EQ(bytes().body, "012");
    EXPECT_EQ(bytes().body, "0\xCE"
                            "23456789");
}

TEST_F(SandboxFault, sendsNothingMoreUntilTheClientLeaves) {
    sandbox.inject(Fault::on(media(file)).stallAfterBodyBytes(5));
    client.setLimit(300);
    const Reply reply = bytes();
    EXPECT_EQ(reply.failure, CURLE_OPERATION_TIMEDOUT);
    EXPECT_EQ(reply.body, "01234");
    EXPECT_TRUE(sandbox.requests().waitForClosedConnections(1));
}

TEST_F(SandboxFault, sendsABodyInChunks) {
    sandbox.inject(Fault::on(media(file)).chunked());
    const Reply reply = bytes();
    EXPECT_EQ(reply.body, "0123456789");
    EXPECT_THAT(reply.head, HasSubstr("Transfer-Encoding: chunked"));
}

TEST_F(SandboxFault, changesTheDriveBetweenTwoListings) {
    sandbox.inject(Fault::on(listing("root")).nth(2).run([&] { drive.rename(file, "renamed"); }));
    EXPECT_THAT(page().body, HasSubstr("\"name\":\"a\""));
    EXPECT_THAT(page().body, HasSubstr("\"name\":\"renamed\""));
}

TEST_F(SandboxFault, tellsOfAnIncompleteSearchAndOfPagesWithoutEnd) {
    sandbox.inject(Fault::on(listing("root")).incompleteSearch());
    sandbox.inject(Fault::on(listing("root")).nth(2).endlessPages());
    EXPECT_THAT(page().body, HasSubstr("\"incompleteSearch\":true"));
    EXPECT_THAT(page().body, HasSubstr("\"nextPageToken\":"));
}

TEST_F(SandboxFault, refusesADownloadAsDriveDoes) {
    sandbox.inject(Fault::on(media(file)).refuseDownload());
    const Reply reply = bytes();
    EXPECT_EQ(reply.status, 403);
    EXPECT_THAT(reply.body, HasSubstr("cannotDownloadFile"));
}

TEST_F(SandboxFault, waitsBeforeItAnswers) {
    sandbox.inject(Fault::on(media(file)).latency(std::chrono::milliseconds(150)));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(bytes().status, 200);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
}

TEST_F(SandboxFault, reportsAHookThatThrows) {
    sandbox.inject(Fault::on(media(file)).run([] { throw std::runtime_error("hook broke"); }));
    EXPECT_EQ(bytes().status, 500);
    EXPECT_THAT(sandbox.failures(), ElementsAre(HasSubstr("hook broke")));
}

TEST_F(SandboxFault, servesTheRangeThatIsAskedFor) {
    const Reply middle = bytes({"Range: bytes=2-4"});
    EXPECT_EQ(middle.status, 206);
    EXPECT_EQ(middle.body, "234");
    EXPECT_THAT(middle.head, HasSubstr("Content-Range: bytes 2-4/10\r\n"));
    EXPECT_EQ(bytes({"Range: bytes=7-"}).body, "789");
    EXPECT_EQ(bytes({"Range: bytes=-2"}).body, "89");
    EXPECT_EQ(bytes({"Range: bytes=10-"}).status, 416);
}

} // namespace
} // namespace marrowbox::test
