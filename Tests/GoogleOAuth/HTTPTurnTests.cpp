#include "WebClient.h"

#include "Platform/Cancellation.h"
#include "Support/LoopbackServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>

namespace marrowbox::test {

using testing::ElementsAre;

namespace {

bool always(std::string_view) {
    return true;
}

/// A request that is given to a session and not awaited yet.
class Given {
  public:
    Given(HTTPSession& session, HTTPRequest request) {
        asio::co_spawn(
            context_, session.send(std::make_shared<const HTTPRequest>(std::move(request)), stop.get_token()),
            [this](std::exception_ptr failure, HTTPResponse response) {
                failure_ = failure;
                response_ = std::move(response);
            });
        context_.poll();
    }
    HTTPResponse response() {
        context_.run();
        if (failure_)
            std::rethrow_exception(failure_);
        return response_;
    }

    std::stop_source stop;

  private:
    asio::io_context context_;
    std::exception_ptr failure_;
    HTTPResponse response_;
};

/// A server that answers with the path, except for "/refused".
class HTTPTurnTest : public testing::Test {
  protected:
    HTTPRequest first(const std::string& path = "/first") {
        HTTPRequest request = webRequest("GET", server_.url(path));
        request.order.turn = turn_;
        return request;
    }
    HTTPRequest second() {
        HTTPRequest request = webRequest("GET", server_.url("/second"));
        request.order.after = turn_;
        return request;
    }
    /// When this is answered, the session has dealt with all that it was given before.
    void sendAnother() { client_.get(server_.url("/another")); }

    static std::string pathOf(const WebRequest& request) {
        return request.head.substr(4, request.head.find(' ', 4) - 4);
    }
    std::vector<std::string> sent() {
        std::vector<std::string> paths;
        for (const WebRequest& request : server_.requests())
            paths.push_back(pathOf(request));
        return paths;
    }

    LoopbackServer server_{[](const WebRequest& request) {
        return webAnswer(pathOf(request) == "/refused" ? "404 Not Found" : "200 OK", "", pathOf(request));
    }};
    WebClient client_;
    std::shared_ptr<HTTPTurn> turn_ = std::make_shared<HTTPTurn>(always);
};

} // namespace

TEST_F(HTTPTurnTest, sendsTheSecondRequestWhenTheFirstIsAnswered) {
    Given waiting(client_.session, second());
    sendAnother();
    EXPECT_EQ(client_.send(first()).body, "/first");
    EXPECT_TRUE(turn_->hasPassed());
    EXPECT_EQ(waiting.response().body, "/second");
    EXPECT_THAT(sent(), ElementsAre("/another", "/first", "/second"));
    EXPECT_EQ(server_.connections(), 1);
}

TEST_F(HTTPTurnTest, sendsAtOnceWhatComesAfterTheAnswer) {
    client_.send(first());
    EXPECT_EQ(client_.send(second()).body, "/second");
}

TEST_F(HTTPTurnTest, judgesTheAnswersBody) {
    std::string judged;
    turn_ = std::make_shared<HTTPTurn>([&](std::string_view body) {
        judged = body;
        return false;
    });
    Given waiting(client_.session, second());
    client_.send(first());
    EXPECT_EQ(judged, "/first");
    sendAnother();
    EXPECT_THAT(sent(), ElementsAre("/first", "/another"));
    waiting.stop.request_stop();
    EXPECT_THROW(waiting.response(), CancellationError);
}

TEST_F(HTTPTurnTest, letsARefusedRequestPassNothingOnEvenLater) {
    Given waiting(client_.session, second());
    client_.send(first("/refused"));
    client_.send(first());
    EXPECT_FALSE(turn_->hasPassed());
    sendAnother();
    EXPECT_THAT(sent(), ElementsAre("/refused", "/first", "/another"));
    waiting.stop.request_stop();
    EXPECT_THROW(waiting.response(), CancellationError);
}

TEST_F(HTTPTurnTest, letsAFailureOfTheNetworkPassNothingOn) {
    HTTPRequest broken = webRequest("GET", "http://127.0.0.1:1/");
    broken.order.turn = turn_;
    EXPECT_THROW(client_.send(broken), TransportError);
    client_.send(first());
    EXPECT_FALSE(turn_->hasPassed());
}

TEST_F(HTTPTurnTest, doesNotSendWhatWasCancelledWhileItWaited) {
    Given waiting(client_.session, second());
    waiting.stop.request_stop();
    EXPECT_THROW(waiting.response(), CancellationError);
    client_.send(first());
    sendAnother();
    EXPECT_THAT(sent(), ElementsAre("/first", "/another"));
}

TEST_F(HTTPTurnTest, endsWhatWaitsWithItsSession) {
    std::optional<HTTPSession> session(loopbackSettings());
    Given waiting(*session, second());
    session.reset();
    try {
        waiting.response();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const TransportError& error) {
        EXPECT_EQ(error.code(), TransportErrorCode::cancelled);
    }
}

TEST_F(HTTPTurnTest, isToldToItsOwnersWhetherOrderIsKept) {
    EXPECT_TRUE(client_.http.keepsOrder());
    const HTTPSend sendsAtOnce = [this](std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
        return client_.session.send(std::move(request), std::move(stop));
    };
    EXPECT_FALSE(HTTP(sendsAtOnce, client_.waits.wait()).keepsOrder());
}

} // namespace marrowbox::test
