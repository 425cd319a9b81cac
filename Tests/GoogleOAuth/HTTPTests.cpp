#include "WebClient.h"

#include "Models/BackupError.h"
#include "Support/LoopbackServer.h"
#include "Support/Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Answers one after the other; the last one again and again.
LoopbackServer::Script answers(std::vector<WebAnswer> list) {
    return [list = std::move(list), next = std::size_t(0)](const WebRequest&) mutable {
        const WebAnswer answer = list[next];
        next = std::min(next + 1, list.size() - 1);
        return answer;
    };
}

WebAnswer refusal(const std::string& status, const std::string& headers = "") {
    return webAnswer(status, headers, "the service's own words");
}

const WebAnswer brokenConnection{.bytes = "", .closes = true};

} // namespace

TEST(HTTP, givesTheBodyOfASuccess) {
    for (const char* status : {"200 OK", "204 No Content", "299 Fine"}) {
        LoopbackServer server(answers({webAnswer(status, "", status[2] == '4' ? "" : "words")}));
        WebClient client;
        EXPECT_EQ(client.get(server.url("/")), status[2] == '4' ? "" : "words");
    }
}

TEST(HTTP, sendsARefusedGetFourTimesWithGrowingWaits) {
    LoopbackServer server(answers({refusal("503 Service Unavailable")}));
    WebClient client;
    EXPECT_EQ(thrown<BackupError>([&] { client.get(server.url("/")); }), "The service returned HTTP 503.");
    EXPECT_EQ(server.requests().size(), 4U);
    EXPECT_THAT(client.waits.seconds(), ElementsAre(2, 4, 8));
}

TEST(HTTP, givesTheBodyThatFollowsARefusal) {
    LoopbackServer server(answers({refusal("500 Internal Server Error"), webAnswer("200 OK", "", "second")}));
    WebClient client;
    EXPECT_EQ(client.get(server.url("/")), "second");
    EXPECT_THAT(client.waits.seconds(), ElementsAre(2));
}

TEST(HTTP, waitsAtMostThirtySecondsOfARetryAfter) {
    LoopbackServer server(
        answers({refusal("429 Too Many Requests", "Retry-After: 120\r\n"), webAnswer("200 OK", "", "ok")}));
    WebClient client;
    EXPECT_EQ(client.get(server.url("/")), "ok");
    EXPECT_THAT(client.waits.seconds(), ElementsAre(30));
}

TEST(HTTP, honoursAFractionOfASecond) {
    LoopbackServer server(
        answers({refusal("429 Too Many Requests", "retry-after: 1.5\r\n"), webAnswer("200 OK", "", "ok")}));
    WebClient client;
    client.get(server.url("/"));
    EXPECT_THAT(client.waits.seconds(), ElementsAre(1.5));
}

TEST(HTTP, repeatsAtOnceAfterARetryAfterOfZero) {
    LoopbackServer server(
        answers({refusal("429 Too Many Requests", "Retry-After: 0\r\n"), webAnswer("200 OK", "", "ok")}));
    WebClient client;
    client.get(server.url("/"));
    EXPECT_EQ(server.requests().size(), 2U);
    EXPECT_THAT(client.waits.seconds(), IsEmpty());
}

TEST(HTTP, waitsByTheExponentialRuleAfterADate) {
    LoopbackServer server(
        answers({refusal("429 Too Many Requests", "Retry-After: Wed, 21 Oct 2026 07:28:00 GMT\r\n"),
                 webAnswer("200 OK", "", "ok")}));
    WebClient client;
    client.get(server.url("/"));
    EXPECT_THAT(client.waits.seconds(), ElementsAre(2));
}

TEST(HTTP, saysThatTheServiceLimitsRequests) {
    LoopbackServer server(answers({refusal("429 Too Many Requests")}));
    WebClient client;
    const std::string sentence = "The service is rate limiting requests. Please try again later.";
    EXPECT_EQ(thrown<BackupError>([&] { client.get(server.url("/")); }), sentence);
    EXPECT_EQ(server.requests().size(), 4U);
    EXPECT_EQ(thrown<BackupError>([&] { client.data(webRequest("POST", server.url("/"))); }), sentence);
    EXPECT_EQ(server.requests().size(), 5U);
}

TEST(HTTP, sendsOnceWhatWillNotGetBetter) {
    for (const char* status : {"401 Unauthorized", "403 Forbidden", "404 Not Found", "302 Found"}) {
        LoopbackServer server(answers({refusal(status, "Location: /elsewhere\r\n")}));
        WebClient client;
        EXPECT_EQ(thrown<BackupError>([&] { client.get(server.url("/")); }),
                  HTTPRetry::refusal(std::stoi(status)));
        EXPECT_EQ(server.requests().size(), 1U) << status;
    }
}

TEST(HTTP, neverRepeatsAPost) {
    LoopbackServer server(answers({refusal("503 Service Unavailable", "Retry-After: 0\r\n")}));
    WebClient client;
    EXPECT_EQ(thrown<BackupError>([&] { client.data(webRequest("POST", server.url("/"))); }),
              "The service returned HTTP 503.");
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST(HTTP, repeatsAGetWhoseConnectionBreaks) {
    LoopbackServer server(answers({brokenConnection, brokenConnection, webAnswer("200 OK", "", "third")}));
    WebClient client;
    EXPECT_EQ(client.get(server.url("/")), "third");
    EXPECT_THAT(client.waits.seconds(), ElementsAre(2, 4));
}

TEST(HTTP, passesOnTheFourthFailureOfTheNetwork) {
    LoopbackServer server(answers({brokenConnection}));
    WebClient client;
    try {
        client.get(server.url("/"));
        FAIL() << "nothing was thrown";
    } catch (const TransportError& error) {
        EXPECT_EQ(error.code(), TransportErrorCode::connectionLost);
        EXPECT_STREQ(error.what(), "Empty reply from server");
    }
    EXPECT_EQ(server.requests().size(), 4U);
    EXPECT_THAT(client.waits.seconds(), ElementsAre(2, 4, 8));
}

TEST(HTTP, repeatsABodyThatIsCutOff) {
    LoopbackServer server(answers(
        {{"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nshort", true}, webAnswer("200 OK", "", "whole")}));
    WebClient client;
    EXPECT_EQ(client.get(server.url("/")), "whole");
}

TEST(HTTP, passesOnAPostWhoseConnectionBreaks) {
    LoopbackServer server(answers({brokenConnection}));
    WebClient client;
    EXPECT_THROW(client.data(webRequest("POST", server.url("/"))), TransportError);
    EXPECT_EQ(server.requests().size(), 1U);
    EXPECT_THAT(client.waits.seconds(), IsEmpty());
}

TEST(HTTP, refusesWhatIsNoHTTP) {
    LoopbackServer server(answers({{"SSH-2.0-OpenSSH_9.2\r\n", true}}));
    WebClient client;
    EXPECT_EQ(thrown<BackupError>([&] { client.get(server.url("/")); }),
              "The server returned an invalid response.");
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST(HTTP, doesNotRepeatAfterTheSessionEnded) {
    auto session = std::make_unique<HTTPSession>(loopbackSettings());
    LoopbackServer server([&](const WebRequest&) {
        session.reset();
        return WebAnswer();
    });
    RecordedWaits waits;
    const HTTP http(*session, waits.wait());
    try {
        await(http.data(webRequest("GET", server.url("/")), {}));
        FAIL() << "nothing was thrown";
    } catch (const TransportError& error) {
        EXPECT_EQ(error.code(), TransportErrorCode::cancelled);
    }
    EXPECT_THAT(waits.seconds(), IsEmpty());
}

TEST(HTTP, sendsNothingOnceCancelled) {
    LoopbackServer server(answers({webAnswer("200 OK", "", "ok")}));
    WebClient client;
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(client.data(webRequest("GET", server.url("/")), stop.get_token()), CancellationError);
    EXPECT_EQ(server.connections(), 0);
}

TEST(HTTP, endsWithoutAFurtherSendWhenCancelledInAWait) {
    LoopbackServer server(answers({refusal("503 Service Unavailable")}));
    HTTPSession session(loopbackSettings());
    std::stop_source stop;
    const Wait cancelledWait = [&stop](std::chrono::duration<double> span, std::stop_token token) {
        stop.request_stop();
        return timerWait()(span, std::move(token));
    };
    const HTTP http(session, cancelledWait);
    EXPECT_THROW(await(http.data(webRequest("GET", server.url("/")), stop.get_token())), CancellationError);
    EXPECT_EQ(server.requests().size(), 1U);
}

} // namespace marrowbox::test
