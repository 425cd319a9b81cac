// Servers that answer a request with what was never an answer, or without end.
#include "WebClient.h"

#include "Models/BackupError.h"
#include "Support/LoopbackServer.h"
#include "Support/Thrown.h"

#include <gtest/gtest.h>
#include <optional>
#include <random>

namespace marrowbox::test {

namespace {

constexpr std::size_t flood = std::size_t(4) << 20;
/// For what ends by itself, however slow the machine is, and for what is waited for in vain.
constexpr std::chrono::seconds ample(60);
constexpr std::chrono::seconds inVain(1);

/// A text again and again, up to that many bytes.
std::string repeated(const std::string& text, std::size_t size) {
    std::string bytes;
    bytes.reserve(size + text.size());
    while (bytes.size() < size)
        bytes += text;
    return bytes;
}

std::string manyHeaders() {
    return repeated("X-Filler: " + std::string(1000, 'x') + "\r\n", flood);
}

std::string randomText(std::size_t size) {
    std::mt19937 random(20261121);
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

/// A server of plain bytes in place of the service, behind a proxy that lets everybody through to it.
struct BehindProxy {
    explicit BehindProxy(std::string bytes, bool closes = true)
        : server([bytes = std::move(bytes), closes](const WebRequest&) {
              return WebAnswer{"HTTP/1.1 200 Connection established\r\n\r\n" + bytes, closes};
          }) {
        HTTPSettings settings;
        settings.proxy = server.url("");
        session.emplace(settings);
    }
    TransportErrorCode failure(std::chrono::seconds timeout = ample) {
        HTTPRequest request = webRequest("GET", "https://www.googleapis.com/drive/v3/files");
        request.headers = {{"Authorization", "Bearer of-everything"}};
        request.timeout = timeout;
        try {
            await(session->send(std::make_shared<const HTTPRequest>(std::move(request)), {}));
        } catch (const TransportError& error) {
            EXPECT_EQ(std::string(error.what()).find("of-everything"), std::string::npos);
            return error.code();
        }
        ADD_FAILURE() << "nothing was thrown";
        return TransportErrorCode::cancelled;
    }
    void expectToldNothing() {
        for (const WebRequest& request : server.requests())
            EXPECT_EQ((request.head + request.body).find("of-everything"), std::string::npos);
    }

    LoopbackServer server;
    std::optional<HTTPSession> session;
};

/// Asks a server that answers with these bytes and then keeps silent.
void askFor(const std::string& bytes, std::chrono::seconds timeout = ample) {
    LoopbackServer server([&](const WebRequest&) { return WebAnswer{bytes, false}; });
    WebClient client;
    HTTPRequest request = webRequest("GET", server.url("/"));
    request.timeout = timeout;
    client.send(request);
}

TransportErrorCode failureOver(const std::string& bytes, std::chrono::seconds timeout = ample) {
    try {
        askFor(bytes, timeout);
    } catch (const TransportError& error) {
        return error.code();
    }
    ADD_FAILURE() << "nothing was thrown";
    return TransportErrorCode::cancelled;
}

void expectTooLarge(const std::string& bytes) {
    EXPECT_EQ(thrown<BackupError>([&] { askFor(bytes); }),
              "The server returned a response that is too large.");
}

} // namespace

TEST(HostileServer, withoutEncryptionIsToldNothing) {
    BehindProxy plain(webAnswer("200 OK", "", "{\"files\":[]}").bytes);
    EXPECT_EQ(plain.failure(), TransportErrorCode::secureConnectionFailed);
    plain.expectToldNothing();
}

TEST(HostileServer, ofRandomBytesIsToldNothing) {
    BehindProxy noise(randomText(100'000));
    EXPECT_EQ(noise.failure(), TransportErrorCode::secureConnectionFailed);
    noise.expectToldNothing();
}

TEST(HostileServer, thatIsSilentInTheHandshakeIsGivenUp) {
    BehindProxy silent("", false);
    EXPECT_EQ(silent.failure(inVain), TransportErrorCode::timedOut);
    silent.expectToldNothing();
}

TEST(HostileServer, ofManyHeadersIsGivenUp) {
    expectTooLarge("HTTP/1.1 200 OK\r\n" + manyHeaders() + "Content-Length: 0\r\n\r\n");
}

TEST(HostileServer, ofManyHeadersBehindTheBodyIsGivenUp) {
    expectTooLarge("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n" + manyHeaders());
}

TEST(HostileServer, ofInterimAnswersWithoutEndIsGivenUp) {
    expectTooLarge(repeated("HTTP/1.1 103 Early Hints\r\nLink: </a>; rel=preload\r\n\r\n", flood));
}

TEST(HostileServer, mayGiveAsManyHeadersAsAnyServerDoes) {
    askFor("HTTP/1.1 200 OK\r\nX-Filler: " + std::string(60'000, 'x') + "\r\nContent-Length: 0\r\n\r\n");
}

TEST(HostileServer, ofOneHeaderWithoutEndIsGivenUp) {
    EXPECT_EQ(failureOver("HTTP/1.1 200 OK\r\nX-Filler: " + std::string(flood, 'x')),
              TransportErrorCode::other);
}

TEST(HostileServer, thatStopsInItsHeadersIsGivenUp) {
    EXPECT_EQ(failureOver("HTTP/1.1 200 OK\r\nContent-Le", inVain), TransportErrorCode::timedOut);
}

TEST(HostileServer, cannotHideALargeBodyInASmallOne) {
    // The first bytes of a body that was compressed; what is no text is not unpacked.
    LoopbackServer server([](const WebRequest&) {
        return WebAnswer{webAnswer("200 OK", "Content-Encoding: gzip\r\n", "\x1F\x8B\x08 and so on")};
    });
    WebClient client;
    EXPECT_EQ(client.get(server.url("/")), "\x1F\x8B\x08 and so on");
    EXPECT_EQ(server.requests().at(0).head.find("Accept-Encoding"), std::string::npos);
}

TEST(HostileServer, ofAnImpossibleChunkIsGivenUp) {
    for (const char* size : {"FFFFFFFFFFFFFFFFFFFF", "-1", "zz"}) {
        LoopbackServer server([&](const WebRequest&) {
            return WebAnswer{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + std::string(size) +
                                 "\r\n{}\r\n",
                             true};
        });
        WebClient client;
        EXPECT_NE(thrown<TransportError>([&] { client.send(webRequest("GET", server.url("/"))); }), "")
            << size;
    }
}

TEST(HostileServer, getsNoMemoryForALengthThatItOnlyPromises) {
    for (const char* length : {"9223372036854775807", "68719476736"}) {
        LoopbackServer server([&](const WebRequest&) {
            return WebAnswer{"HTTP/1.1 200 OK\r\nContent-Length: " + std::string(length) + "\r\n\r\n{}",
                             true};
        });
        WebClient client;
        EXPECT_NE(thrown<TransportError>([&] { client.send(webRequest("GET", server.url("/"))); }), "")
            << length;
    }
}

} // namespace marrowbox::test
