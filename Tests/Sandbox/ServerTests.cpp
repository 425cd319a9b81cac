#include "Client.h"

#include <curl/curl.h>
#include <gmock/gmock.h>

namespace marrowbox::test {
namespace {

using namespace sandbox;
using testing::ElementsAre;

const std::string root = "https://www.googleapis.com/drive/v3/files/root";

TEST(SandboxServer, keepsAConnectionAliveForManyRequests) {
    SandboxServer sandbox;
    Client client(sandbox);
    client.setToken(sandbox.identity().issueToken().accessToken);
    for (int count = 0; count < 5; ++count)
        EXPECT_EQ(client.get(root).status, 200);
    EXPECT_EQ(sandbox.requests().connectionCount(), 1);
}

TEST(SandboxServer, refusesAnyOtherHostAtTheProxy) {
    SandboxServer sandbox;
    Client client(sandbox);
    EXPECT_NE(client.get("https://example.com/").failure, CURLE_OK);
    EXPECT_THAT(sandbox.requests().refusedHosts(), ElementsAre("example.com:443"));
    EXPECT_THAT(sandbox.requests().lines(), ElementsAre());
}

TEST(SandboxServer, isNotTrustedByAClientOfAnotherSandbox) {
    SandboxServer sandbox;
    SandboxServer other;
    Client client(sandbox, other);
    EXPECT_EQ(client.get(root).failure, CURLE_PEER_FAILED_VERIFICATION);
    EXPECT_THAT(sandbox.requests().lines(), ElementsAre());
}

TEST(SandboxServer, recordsARequestAsItCame) {
    SandboxServer sandbox;
    Client client(sandbox);
    client.post("https://oauth2.googleapis.com/token?a%20b=c%2Fd&a=%C3%A9", "x=1&y=2%20", {"X-Sent: yes"});
    const auto requests = sandbox.requests().all();
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests[0].method, "POST");
    EXPECT_EQ(requests[0].host, "oauth2.googleapis.com");
    EXPECT_EQ(requests[0].path, "/token");
    EXPECT_EQ(requests[0].query, (NamedValues{{"a b", "c/d"}, {"a", "é"}}));
    EXPECT_EQ(requests[0].header("x-sent"), "yes");
    EXPECT_EQ(requests[0].body, "x=1&y=2%20");
    EXPECT_EQ(firstValue(requests[0].form(), "y"), "2 ");
    EXPECT_EQ(requests[0].status, 401);
}

TEST(SandboxServer, givesEachAccountADriveOfItsOwn) {
    SandboxServer sandbox;
    Drive& second = sandbox.addAccount({.sub = "2", .email = "bob@example.com", .name = "Bob"});
    const std::string file = second.addFile("root", "bob.txt", "x");
    const std::string address = "https://www.googleapis.com/drive/v3/files/" + file;
    Client client(sandbox);
    client.setToken(sandbox.identity().issueToken().accessToken);
    EXPECT_EQ(client.get(address).status, 404);
    client.setToken(sandbox.identity().issueToken({}, {}, "2").accessToken);
    EXPECT_EQ(client.get(address).status, 200);
}

TEST(SandboxServer, endsWithConnectionsOpenAndRequestsUnanswered) {
    auto sandbox = std::make_unique<SandboxServer>();
    Client idle(*sandbox);
    idle.get(root);
    Client waiting(*sandbox);
    sandbox->inject(Fault::on(anyRequest()).latency(std::chrono::hours(1)).always());
    Reply reply;
    std::thread asking([&] { reply = waiting.get(root); });
    ASSERT_TRUE(sandbox->requests().waitFor(anyRequest(), 2));
    sandbox.reset();
    asking.join();
    EXPECT_NE(reply.failure, CURLE_OK);
}

TEST(SandboxServer, servesManyAtOnce) {
    std::vector<std::unique_ptr<SandboxServer>> sandboxes;
    for (int count = 0; count < 8; ++count)
        sandboxes.push_back(std::make_unique<SandboxServer>());
    for (auto& sandbox : sandboxes) {
        Client client(*sandbox);
        client.setToken(sandbox->identity().issueToken().accessToken);
        EXPECT_EQ(client.get(root).status, 200);
    }
}

TEST(SandboxServer, servesManyClientsWhileATestChangesTheDrive) {
    SandboxServer sandbox;
    const std::string folder = sandbox.drive().addFolder("root", "folder");
    const std::string token = sandbox.identity().issueToken().accessToken;
    std::vector<std::thread> threads;
    for (int count = 0; count < 4; ++count)
        threads.emplace_back([&] {
            Client client(sandbox);
            client.setToken(token);
            for (int round = 0; round < 50; ++round)
                EXPECT_EQ(
                    client.get("https://www.googleapis.com/drive/v3/files?q='" + folder + "'+in+parents")
                        .status,
                    200);
        });
    for (int round = 0; round < 200; ++round)
        sandbox.drive().replaceContent(sandbox.drive().addFile(folder, "file", "x"), "y");
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(sandbox.requests().count(listing(folder)), 200);
}

} // namespace
} // namespace marrowbox::test
