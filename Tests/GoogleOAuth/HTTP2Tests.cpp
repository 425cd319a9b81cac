#include "HTTP2Server.h"
#include "WebClient.h"

#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <future>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

int occurrences(const std::string& text, const std::string& part) {
    int count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

HTTPSettings trusting(const HTTP2Server& server) {
    HTTPSettings settings;
    settings.proxy = "";
    settings.certificateFile = server.certificate();
    return settings;
}

} // namespace

TEST(HTTP2, carriesManyRequestsOverOneConnection) {
    HTTP2Server server;
    const std::string url = server.serve("page.json", "{}");
    {
        HTTPSession session(trusting(server));
        const HTTP http(session, timerWait());
        for (int index = 0; index < 10; ++index)
            EXPECT_EQ(await(http.data(webRequest("GET", url), {})), "{}");
    }
    const std::string log = server.finishedLog();
    EXPECT_EQ(occurrences(log, "The negotiated protocol: h2"), 1) << log;
    EXPECT_EQ(occurrences(log, ":path: /page.json"), 10);
}

TEST(HTTP2, carriesRequestsOfOneMomentOverOneConnection) {
    HTTP2Server server;
    const std::string words(200'000, 'x');
    const std::string url = server.serve("page.json", words);
    {
        HTTPSession session(trusting(server));
        const HTTP http(session, timerWait());
        asio::thread_pool pool(2);
        std::vector<std::future<std::string>> bodies;
        for (int index = 0; index < 16; ++index)
            bodies.push_back(asio::co_spawn(pool, http.data(webRequest("GET", url), {}), asio::use_future));
        for (auto& body : bodies)
            EXPECT_EQ(body.get(), words);
        pool.join();
    }
    EXPECT_EQ(occurrences(server.finishedLog(), "The negotiated protocol: h2"), 1);
}

TEST(HTTP2, refusesACertificateOfNobodyItTrusts) {
    HTTP2Server server;
    const std::string url = server.serve("page.json", "{}");
    HTTPSettings settings;
    settings.proxy = "";
    HTTPSession session(settings);
    const auto request = std::make_shared<const HTTPRequest>(webRequest("GET", url));
    try {
        await(session.send(request, {}));
        FAIL() << "nothing was thrown";
    } catch (const TransportError& error) {
        EXPECT_EQ(error.code(), TransportErrorCode::secureConnectionFailed);
    }
}

} // namespace marrowbox::test
