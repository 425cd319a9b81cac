#include "WebClient.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "Support/LoopbackServer.h"
#include "Support/Thrown.h"

#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <cstdlib>
#include <future>
#include <gtest/gtest.h>
#include <thread>

namespace marrowbox::test {

namespace {

WebAnswer ok(const WebRequest&) {
    return webAnswer("200 OK", "", "ok");
}

TransportErrorCode failureOf(WebClient& client, HTTPRequest request) {
    try {
        client.send(std::move(request));
    } catch (const TransportError& error) {
        return error.code();
    }
    ADD_FAILURE() << "nothing was thrown";
    return TransportErrorCode::other;
}

/// How many threads of this process let no signal in that can be kept out.
std::size_t threadsWithoutSignals() {
    std::size_t count = 0;
    for (const std::string& thread : directoryNames("/proc/self/task"))
        if (readFile(fs::path("/proc/self/task") / thread / "status").find("\nSigBlk:\tfffffffe") !=
            std::string::npos)
            ++count;
    return count;
}

} // namespace

TEST(HTTPSession, keepsAConnectionAlive) {
    LoopbackServer server(ok);
    WebClient client;
    for (int index = 0; index < 20; ++index)
        client.get(server.url("/" + std::to_string(index)));
    EXPECT_EQ(server.requests().size(), 20U);
    EXPECT_EQ(server.connections(), 1);
}

TEST(HTTPSession, sendsAGetAsItIs) {
    LoopbackServer server(ok);
    WebClient client;
    HTTPRequest request = webRequest("GET", server.url("/files?q=%27a%27"));
    request.headers = {{"Authorization", "Bearer secret"}};
    client.send(request);
    EXPECT_EQ(server.requests().at(0).head,
              "GET /files?q=%27a%27 HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
                  "\r\nAccept: */*\r\nAuthorization: Bearer secret");
}

TEST(HTTPSession, sendsAPostAsItIs) {
    LoopbackServer server(ok);
    WebClient client;
    HTTPRequest request = webRequest("POST", server.url("/token"));
    request.headers = {{"Content-Type", "application/x-www-form-urlencoded"}};
    request.body = std::string("a=1\0b", 5);
    client.send(request);
    const WebRequest seen = server.requests().at(0);
    EXPECT_EQ(seen.head, "POST /token HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
                             "\r\nAccept: */*\r\nContent-Type: application/x-www-form-urlencoded\r\n"
                             "Content-Length: 5");
    EXPECT_EQ(seen.body, request.body);
}

TEST(HTTPSession, sendsALargeBodyWithoutAskingFirst) {
    LoopbackServer server(ok);
    WebClient client;
    HTTPRequest request = webRequest("POST", server.url("/"));
    request.body = std::string(std::size_t(3) << 20, 'x');
    client.send(request);
    const WebRequest seen = server.requests().at(0);
    EXPECT_EQ(seen.head.find("Expect"), std::string::npos);
    EXPECT_EQ(seen.head.find("Content-Type"), std::string::npos);
    EXPECT_EQ(seen.body, request.body);
}

TEST(HTTPSession, sendsOtherMethodsByTheirNames) {
    LoopbackServer server([](const WebRequest& request) {
        return WebAnswer{webAnswer("200 OK", "", request.head.starts_with("HEAD") ? "" : "ok")};
    });
    WebClient client;
    for (const char* method : {"HEAD", "DELETE", "get", "PUT"})
        client.send(webRequest(method, server.url("/")));
    const auto seen = server.requests();
    EXPECT_TRUE(seen.at(0).head.starts_with("HEAD / "));
    EXPECT_TRUE(seen.at(1).head.starts_with("DELETE / "));
    EXPECT_TRUE(seen.at(2).head.starts_with("get / "));
    EXPECT_TRUE(seen.at(3).head.starts_with("PUT / "));
}

TEST(HTTPSession, doesNotSendAPostAgainOnAKeptConnectionThatBreaks) {
    LoopbackServer server([](const WebRequest& request) {
        return request.head.starts_with("GET") ? ok(request) : WebAnswer{"", true};
    });
    WebClient client;
    client.get(server.url("/"));
    EXPECT_EQ(failureOf(client, webRequest("POST", server.url("/"))), TransportErrorCode::connectionLost);
    EXPECT_EQ(server.requests().size(), 2U);
}

TEST(HTTPSession, refusesALineBreakInAHeader) {
    LoopbackServer server(ok);
    WebClient client;
    HTTPRequest request = webRequest("GET", server.url("/"));
    request.headers = {{"Authorization", "Bearer a\r\nX-Planted: b"}};
    EXPECT_EQ(failureOf(client, request), TransportErrorCode::other);
    EXPECT_EQ(server.connections(), 0);
}

TEST(HTTPSession, acceptsABodyOfExactly64MiB) {
    const std::string body(std::size_t(64) << 20, 'x');
    LoopbackServer server([&](const WebRequest&) { return webAnswer("200 OK", "", body); });
    WebClient client;
    EXPECT_EQ(client.get(server.url("/")).size(), body.size());
}

TEST(HTTPSession, refusesALongerBodyThatNamesItsLength) {
    const std::string body((std::size_t(64) << 20) + 1, 'x');
    LoopbackServer server([&](const WebRequest&) { return webAnswer("200 OK", "", body); });
    WebClient client;
    EXPECT_EQ(thrown<BackupError>([&] { client.get(server.url("/")); }),
              "The server returned a response that is too large.");
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST(HTTPSession, refusesALongerBodyWithoutALength) {
    const std::string bytes = "HTTP/1.1 200 OK\r\n\r\n" + std::string((std::size_t(64) << 20) + 1, 'x');
    LoopbackServer server([&](const WebRequest&) { return WebAnswer{bytes, true}; });
    WebClient client;
    EXPECT_EQ(thrown<BackupError>([&] { client.get(server.url("/")); }),
              "The server returned a response that is too large.");
}

TEST(HTTPSession, throwsTheBodyOfARefusalAway) {
    LoopbackServer server([](const WebRequest&) { return webAnswer("404 Not Found", "", "secret words"); });
    WebClient client;
    const HTTPResponse response = client.send(webRequest("GET", server.url("/")));
    EXPECT_EQ(response.status, 404);
    EXPECT_EQ(response.body, "");
}

TEST(HTTPSession, timesOutWhenNothingMoves) {
    LoopbackServer server([](const WebRequest&) { return WebAnswer(); });
    WebClient client;
    HTTPRequest request = webRequest("GET", server.url("/"));
    request.timeout = std::chrono::seconds(1);
    EXPECT_EQ(failureOf(client, request), TransportErrorCode::timedOut);
}

TEST(HTTPSession, tellsFailuresOfTheNetworkApart) {
    WebClient client;
    EXPECT_EQ(failureOf(client, webRequest("GET", "http://nowhere.invalid/")),
              TransportErrorCode::cannotFindHost);
    EXPECT_EQ(failureOf(client, webRequest("GET", "http://127.0.0.1:1/")), TransportErrorCode::cannotConnect);
    EXPECT_EQ(failureOf(client, webRequest("GET", "http://[broken/")), TransportErrorCode::other);
    LoopbackServer closing([](const WebRequest&) { return WebAnswer{"", true}; });
    EXPECT_EQ(failureOf(client, webRequest("GET", closing.url("/"))), TransportErrorCode::connectionLost);
}

TEST(HTTPSession, speaksHTTPSAlone) {
    LoopbackServer server(ok);
    HTTPSettings settings;
    settings.proxy = "";
    HTTPSession session(settings);
    const auto request = std::make_shared<const HTTPRequest>(webRequest("GET", server.url("/")));
    EXPECT_THROW(await(session.send(request, {})), TransportError);
    EXPECT_EQ(server.connections(), 0);
}

TEST(HTTPSession, neverPutsAHeaderIntoTheWordsOfAFailure) {
    WebClient client;
    HTTPRequest request = webRequest("GET", "http://127.0.0.1:1/");
    request.headers = {{"Authorization", "Bearer ya29.secret"}};
    EXPECT_EQ(thrown<TransportError>([&] { client.send(request); }).find("secret"), std::string::npos);
}

TEST(HTTPSession, abortsAtOnceWhenCancelled) {
    std::stop_source stop;
    LoopbackServer server([&](const WebRequest&) {
        stop.request_stop();
        return WebAnswer();
    });
    WebClient client;
    EXPECT_THROW(client.send(webRequest("GET", server.url("/")), stop.get_token()), CancellationError);
}

TEST(HTTPSession, goesOnAfterACancel) {
    std::stop_source stop;
    LoopbackServer server([&](const WebRequest& request) {
        if (stop.request_stop())
            return WebAnswer();
        return ok(request);
    });
    WebClient client;
    EXPECT_THROW(client.send(webRequest("GET", server.url("/")), stop.get_token()), CancellationError);
    EXPECT_EQ(client.get(server.url("/")), "ok");
}

TEST(HTTPSession, takesNoSignalFromTheThreadsThatWaitForOne) {
    LoopbackServer server(ok);
    WebClient first;
    first.get(server.url("/")); // so that all threads of the server are at work
    const std::size_t before = threadsWithoutSignals();
    WebClient client;
    client.get(server.url("/"));
    EXPECT_EQ(threadsWithoutSignals(), before + 1);
}

TEST(HTTPSession, isCancelledAtAnyMoment) {
    LoopbackServer server(ok);
    WebClient client;
    for (int round = 0; round < 300; ++round) {
        std::stop_source stop;
        std::thread canceller([&] { stop.request_stop(); });
        try {
            const HTTPResponse response = client.send(webRequest("GET", server.url("/")), stop.get_token());
            EXPECT_EQ(response.body, "ok");
        } catch (const CancellationError&) {
        }
        canceller.join();
    }
}

TEST(HTTPSession, servesManyAtATime) {
    LoopbackServer server([](const WebRequest& request) {
        return webAnswer("200 OK", "", request.head.substr(5, request.head.find(' ', 5) - 5));
    });
    WebClient client;
    asio::thread_pool pool(4);
    std::vector<std::future<std::string>> bodies;
    for (int index = 0; index < 64; ++index)
        bodies.push_back(asio::co_spawn(
            pool, client.http.data(webRequest("GET", server.url("/" + std::to_string(index))), {}),
            asio::use_future));
    for (int index = 0; index < 64; ++index)
        EXPECT_EQ(bodies[static_cast<std::size_t>(index)].get(), std::to_string(index));
    pool.join();
}

TEST(HTTPSession, takesTheCertificatesOfItsSurroundings) {
    ::setenv("SSL_CERT_FILE", "/some/authority.pem", 1);
    EXPECT_EQ(HTTPSettings::fromEnvironment().certificateFile, "/some/authority.pem");
    ::setenv("SSL_CERT_FILE", "", 1);
    EXPECT_EQ(HTTPSettings::fromEnvironment().certificateFile, std::nullopt);
    ::unsetenv("SSL_CERT_FILE");
    EXPECT_EQ(HTTPSettings::fromEnvironment().certificateFile, std::nullopt);
}

} // namespace marrowbox::test
