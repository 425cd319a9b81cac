#include "GoogleOAuth/GoogleSignIn.h"
#include "LoopbackPeer.h"

#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Platform/Digest.h"
#include "Sandbox/WireText.h"
#include "Support/Thrown.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <cstdio>
#include <filesystem>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sys/resource.h>

namespace marrowbox::test {

using sandbox::NamedValues;
using sandbox::queryItems;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

constexpr Date signInDate{800'000'000};
const std::string invalid = "HTTP/1.1 400 Bad Request";

/// A token endpoint that answers when the test lets it.
struct TokenEndpoint {
    explicit TokenEndpoint(asio::any_io_executor executor) : released(executor) {
        released.expires_at(asio::steady_timer::time_point::max());
    }
    asio::awaitable<HTTPResponse> send(std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
        requests.push_back(*request);
        const std::stop_callback onStop(
            stop, [this] { asio::post(released.get_executor(), [this] { released.cancel(); }); });
        reached.set_value();
        if (isHeld) {
            boost::system::error_code woken;
            co_await released.async_wait(asio::redirect_error(asio::use_awaitable, woken));
        }
        throwIfCancelled(stop);
        HTTPResponse answer{
            .status = 200,
            .retryAfter = {},
            .body = R"({"access_token": "a", "refresh_token": "r", "expires_in": 3599, "scope": "s"})"};
        co_return answer;
    }

    std::vector<HTTPRequest> requests;
    std::promise<void> reached;
    bool isHeld = false;
    asio::steady_timer released;
};

/// How many sockets a program that is started now would get.
int inheritedSockets() {
    const std::unique_ptr<FILE, int (*)(FILE*)> lines(::popen("ls -l /proc/self/fd | grep -c socket:", "r"),
                                                      ::pclose);
    int count = -1;
    EXPECT_EQ(std::fscanf(lines.get(), "%d", &count), 1);
    return count;
}

rlimit descriptorLimit() {
    rlimit limit{};
    EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    return limit;
}

/// Says how many descriptors this process may open, until the object ends.
class DescriptorLimit {
  public:
    explicit DescriptorLimit(rlim_t count) {
        const rlimit limit{.rlim_cur = count, .rlim_max = before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &before_); }

  private:
    const rlimit before_ = descriptorLimit();
};

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

/// A sign-in with a real port; the test plays the browser.
class GoogleSignInTest : public testing::Test {
  protected:
    ~GoogleSignInTest() override { pool_.join(); }

    GoogleSignIn signIn(OpenBrowser openBrowser) {
        return GoogleSignIn({.executor = strand_,
                             .http = HTTP(
                                 [this](std::shared_ptr<const HTTPRequest> sent, std::stop_token stop) {
                                     return endpoint_.send(std::move(sent), std::move(stop));
                                 },
                                 timerWait()),
                             .clock = [] { return signInDate; },
                             .wait = wait_,
                             .openBrowser = std::move(openBrowser)});
    }
    /// Begins a sign-in and waits until its browser has been opened.
    void begin() {
        result_ = asio::co_spawn(pool_, signIn_.authorize(request_, stop_.get_token()), asio::use_future);
        const std::string address = opened_.get_future().get();
        ASSERT_THAT(address, StartsWith("https://accounts.google.com/o/oauth2/v2/auth?"));
        for (const auto& [name, value] : queryItems(address.substr(address.find('?') + 1)))
            EXPECT_TRUE(query_.emplace(name, value).second) << name;
    }
    void beginAnew() {
        opened_ = {};
        query_.clear();
        begin();
    }
    std::uint16_t port() {
        return static_cast<std::uint16_t>(std::stoi(query_.at("redirect_uri").substr(17)));
    }
    std::string callback(const std::string& more) { return "/?state=" + query_.at("state") + more; }
    void release() {
        asio::post(strand_, [this] { endpoint_.released.cancel(); });
    }
    void consent() { EXPECT_THAT(get(port(), callback("&code=c")), StartsWith("HTTP/1.1 200 OK")); }
    /// Counted once the strand has let go of the connection whose reply has arrived.
    std::ptrdiff_t settledDescriptors() {
        asio::post(strand_, asio::use_future).get();
        return openDescriptors();
    }
    bool isPortOpen() {
        try {
            LoopbackPeer peer(port());
            return true;
        } catch (const boost::system::system_error&) {
            return false;
        }
    }
    NamedValues exchanged() { return queryItems(endpoint_.requests.at(0).body); }

    asio::thread_pool pool_{2};
    asio::strand<asio::any_io_executor> strand_{pool_.get_executor()};
    TokenEndpoint endpoint_{strand_};
    Wait wait_ = timerWait();
    std::promise<std::string> opened_;
    SignInRequest request_{.client = {"7.apps.googleusercontent.com", "shh", std::nullopt}, .hint = {}};
    GoogleSignIn signIn_ = signIn([this](const std::string& address) {
        opened_.set_value(address);
        return true;
    });
    std::stop_source stop_;
    std::future<OAuthToken> result_;
    std::map<std::string, std::string> query_;
};

asio::awaitable<void> atOnce() {
    co_return;
}

} // namespace

TEST_F(GoogleSignInTest, givesTheTokenOfTheExchange) {
    begin();
    EXPECT_EQ(get(port(), callback("&code=4%2F0")),
              "HTTP/1.1 200 OK\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: 55\r\n"
              "Cache-Control: no-store\r\nConnection: close\r\n\r\n"
              "You can return to Marrowbox. This window may be closed.");
    const OAuthToken expected{"a", "r", signInDate + 3599, "s"};
    EXPECT_EQ(result_.get(), expected);
    EXPECT_FALSE(isPortOpen());
}

TEST_F(GoogleSignInTest, asksForConsentWithExactlyTheseItems) {
    begin();
    auto query = query_;
    EXPECT_EQ(query.at("state").size(), 43U);
    EXPECT_EQ(query.at("code_challenge").size(), 43U);
    EXPECT_THAT(query.at("redirect_uri"), testing::MatchesRegex("http://127\\.0\\.0\\.1:[0-9]+"));
    for (const char* changing : {"state", "code_challenge", "redirect_uri"})
        query.erase(changing);
    const std::map<std::string, std::string> expected{
        {"client_id", "7.apps.googleusercontent.com"},
        {"response_type", "code"},
        {"scope", "openid https://www.googleapis.com/auth/userinfo.email "
                  "https://www.googleapis.com/auth/userinfo.profile "
                  "https://www.googleapis.com/auth/drive.readonly"},
        {"access_type", "offline"},
        {"prompt", "consent select_account"},
        {"code_challenge_method", "S256"},
    };
    EXPECT_EQ(query, expected);
    consent();
    result_.get();
}

TEST_F(GoogleSignInTest, isReachedAtOneAddressOfThisMachineAlone) {
    begin();
    LoopbackPeer peer;
    // Another address of the same machine, as one in its network is.
    EXPECT_THROW(peer.connect(port(), asio::ip::make_address_v4("127.0.0.2")), boost::system::system_error);
    consent();
    result_.get();
}

TEST_F(GoogleSignInTest, asksForMailAndOffersAnAddressWhenTold) {
    request_.sendEmail = true;
    request_.hint = "ann+x@example.org";
    begin();
    EXPECT_EQ(query_.at("login_hint"), "ann+x@example.org");
    EXPECT_TRUE(query_.at("scope").ends_with(" https://www.googleapis.com/auth/gmail.send"));
    consent();
    result_.get();
}

TEST_F(GoogleSignInTest, provesItselfInTheExchange) {
    begin();
    consent();
    result_.get();
    std::map<std::string, std::string> fields;
    for (const auto& [name, value] : exchanged())
        fields.emplace(name, value);
    const std::string verifier = fields.at("code_verifier");
    EXPECT_EQ(verifier.size(), 43U);
    EXPECT_EQ(WebEncoding::base64URL(sha256(verifier)), query_.at("code_challenge"));
    for (const auto& [name, value] : query_)
        EXPECT_EQ(value.find(verifier), std::string::npos)
            << name << " gives away what only the exchange tells";
    const std::map<std::string, std::string> expected{
        {"client_id", "7.apps.googleusercontent.com"},
        {"client_secret", "shh"},
        {"code", "c"},
        {"code_verifier", verifier},
        {"grant_type", "authorization_code"},
        {"redirect_uri", query_.at("redirect_uri")},
    };
    EXPECT_EQ(fields, expected);
}

TEST_F(GoogleSignInTest, sendsNoSecretThatAClientDoesNotHave) {
    request_.client.client_secret.reset();
    begin();
    consent();
    result_.get();
    EXPECT_EQ(sandbox::firstValue(exchanged(), "client_secret"), std::nullopt);
}

TEST_F(GoogleSignInTest, goesOnWaitingAfterStrayRequests) {
    begin();
    for (const std::string& target : {std::string("/favicon.ico"), std::string("/"), callback("x&code=c"),
                                      callback("&code=c&state=" + query_.at("state")), callback("")})
        EXPECT_THAT(get(port(), target), StartsWith(invalid)) << target;
    LoopbackPeer poster(port());
    poster.send("POST " + callback("&code=c") + " HTTP/1.1\r\n\r\n");
    EXPECT_THAT(poster.reply(), StartsWith(invalid));
    consent();
    EXPECT_EQ(result_.get().accessToken, "a");
}

TEST_F(GoogleSignInTest, saysWhatItMissesInACallbackWithoutACode) {
    begin();
    EXPECT_TRUE(get(port(), callback("")).ends_with("\r\n\r\nMissing authorization code."));
    consent();
    result_.get();
}

TEST_F(GoogleSignInTest, letsTheExchangeJudgeAnEmptyCode) {
    begin();
    EXPECT_THAT(get(port(), callback("&code=")), StartsWith("HTTP/1.1 200 OK"));
    result_.get();
    EXPECT_EQ(sandbox::firstValue(exchanged(), "code"), "");
}

TEST_F(GoogleSignInTest, endsWhenAccessIsRefused) {
    begin();
    EXPECT_TRUE(
        get(port(), callback("&error=access_denied")).ends_with("Sign-in cancelled. Return to Marrowbox."));
    EXPECT_EQ(thrown<BackupError>([&] { result_.get(); }), "Google access was not granted.");
    EXPECT_THAT(endpoint_.requests, IsEmpty());
    EXPECT_FALSE(isPortOpen());
}

TEST_F(GoogleSignInTest, putsARequestInPiecesTogether) {
    begin();
    LoopbackPeer peer(port());
    const std::string request = "GET " + callback("&code=c") + " HTTP/1.1\r\nHost: x\r\n\r\n";
    for (const auto& [from, count] : {std::pair(0, 7), std::pair(7, 20), std::pair(27, 1000)}) {
        // Another request's reply shows that the piece before has been looked at.
        get(port(), "/");
        peer.send(std::string_view(request).substr(static_cast<std::size_t>(from),
                                                   static_cast<std::size_t>(count)));
    }
    EXPECT_THAT(peer.reply(), StartsWith("HTTP/1.1 200 OK"));
    result_.get();
}

TEST_F(GoogleSignInTest, servesARequestWhoseSenderHasFinished) {
    begin();
    LoopbackPeer peer(port());
    peer.send("GET " + callback("&code=c") + " HTTP/1.1");
    peer.finishSending();
    EXPECT_THAT(peer.reply(), StartsWith("HTTP/1.1 200 OK"));
    result_.get();
}

TEST_F(GoogleSignInTest, answersASenderOfNothing) {
    begin();
    LoopbackPeer peer(port());
    peer.finishSending();
    EXPECT_THAT(peer.reply(), StartsWith(invalid));
    consent();
    result_.get();
}

TEST_F(GoogleSignInTest, dropsARequestThatIsTooLong) {
    begin();
    LoopbackPeer peer(port());
    peer.send(std::string(16385, 'x'));
    EXPECT_EQ(peer.reply(), "");
    LoopbackPeer justFitting(port());
    std::string request = "GET / HTTP/1.1\r\nX: ";
    request += std::string(16384 - 4 - request.size(), 'x') + "\r\n\r\n";
    justFitting.send(request);
    EXPECT_THAT(justFitting.reply(), StartsWith(invalid));
    consent();
    result_.get();
}

TEST_F(GoogleSignInTest, dropsAnotherConnectionWhileItExchangesTheCode) {
    endpoint_.isHeld = true;
    begin();
    consent();
    endpoint_.reached.get_future().get();
    EXPECT_EQ(get(port(), callback("&code=other")), "");
    release();
    result_.get();
    EXPECT_EQ(sandbox::firstValue(exchanged(), "code"), "c");
}

TEST_F(GoogleSignInTest, holdsNoConnectionAfterItsEnd) {
    std::ptrdiff_t before = 0;
    // The first round leaves behind what the thread pool opens for itself, once.
    for (int round = 0; round < 2; ++round) {
        before = settledDescriptors();
        beginAnew();
        std::vector<std::unique_ptr<LoopbackPeer>> silent;
        for (int index = 0; index < 100; ++index) {
            silent.push_back(std::make_unique<LoopbackPeer>(port()));
            if (index % 2 == 0)
                silent.back()->send("GET /?state=");
        }
        EXPECT_THAT(get(port(), "/"), StartsWith(invalid));
        EXPECT_THAT(get(port(), callback("&error=x")), StartsWith("HTTP/1.1 200 OK"));
        EXPECT_THROW(result_.get(), BackupError);
        for (const auto& peer : silent)
            EXPECT_EQ(peer->reply(), "");
    }
    EXPECT_EQ(settledDescriptors(), before);
}

TEST_F(GoogleSignInTest, leavesItsSocketsToNoOtherProgram) {
    const int before = inheritedSockets();
    begin();
    LoopbackPeer peer(port());
    get(port(), "/");
    // The peer's own end alone.
    EXPECT_EQ(inheritedSockets(), before + 1);
    consent();
    result_.get();
}

TEST_F(GoogleSignInTest, endsWhenCancelled) {
    begin();
    stop_.request_stop();
    EXPECT_THROW(result_.get(), CancellationError);
    EXPECT_FALSE(isPortOpen());
}

TEST_F(GoogleSignInTest, endsWhenCancelledDuringTheExchange) {
    endpoint_.isHeld = true;
    begin();
    consent();
    endpoint_.reached.get_future().get();
    stop_.request_stop();
    EXPECT_THROW(result_.get(), CancellationError);
    EXPECT_FALSE(isPortOpen());
}

TEST_F(GoogleSignInTest, opensNothingWhenCancelledBefore) {
    stop_.request_stop();
    auto result = asio::co_spawn(pool_, signIn_.authorize(request_, stop_.get_token()), asio::use_future);
    EXPECT_THROW(result.get(), CancellationError);
    EXPECT_EQ(opened_.get_future().wait_for(std::chrono::seconds(0)), std::future_status::timeout);
}

TEST_F(GoogleSignInTest, endsAfter300Seconds) {
    const auto span = std::make_shared<std::promise<double>>();
    wait_ = [span](std::chrono::duration<double> seconds, std::stop_token) {
        span->set_value(seconds.count());
        return atOnce();
    };
    signIn_ = signIn([this](const std::string& address) {
        opened_.set_value(address);
        return true;
    });
    begin();
    EXPECT_EQ(thrown<BackupError>([&] { result_.get(); }), "Google sign-in timed out. Please try again.");
    EXPECT_EQ(span->get_future().get(), 300);
    EXPECT_FALSE(isPortOpen());
}

TEST_F(GoogleSignInTest, saysWhenTheBrowserDoesNotOpen) {
    const GoogleSignIn failing = signIn([](const std::string&) { return false; });
    auto result = asio::co_spawn(pool_, failing.authorize(request_, {}), asio::use_future);
    EXPECT_EQ(thrown<BackupError>([&] { result.get(); }), "Could not open your browser.");
}

TEST_F(GoogleSignInTest, opensNothingWithoutASecretOfItsOwn) {
    signIn_ = GoogleSignIn({.executor = strand_,
                            .http = HTTP({}, timerWait()),
                            .openBrowser =
                                [this](const std::string& address) {
                                    opened_.set_value(address);
                                    return true;
                                },
                            .random = [](std::size_t) { return std::nullopt; }});
    auto result = asio::co_spawn(pool_, signIn_.authorize(request_, {}), asio::use_future);
    EXPECT_EQ(thrown<BackupError>([&] { result.get(); }), "Could not generate a secure sign-in request.");
    EXPECT_EQ(opened_.get_future().wait_for(std::chrono::seconds(0)), std::future_status::timeout);
}

TEST_F(GoogleSignInTest, passesOnTheSystemsWordsWhereItGetsNoPort) {
    begin(); // opens what the threads need for themselves
    consent();
    result_.get();
    const DescriptorLimit none(0);
    auto result = asio::co_spawn(pool_, signIn_.authorize(request_, {}), asio::use_future);
    EXPECT_EQ(thrown<std::system_error>([&] { result.get(); }), "Too many open files");
}

TEST_F(GoogleSignInTest, waitsForADescriptorForTheBrowser) {
    wait_ = [usual = descriptorLimit()](std::chrono::duration<double> span, std::stop_token stop) {
        if (span != std::chrono::seconds(1))
            return timerWait()(span, std::move(stop));
        ::setrlimit(RLIMIT_NOFILE, &usual);
        return atOnce();
    };
    signIn_ = signIn([this](const std::string& address) {
        opened_.set_value(address);
        return true;
    });
    begin();
    get(port(), "/");
    LoopbackPeer browser;
    const DescriptorLimit none(0);
    browser.connect(port());
    browser.send("GET " + callback("&code=c") + " HTTP/1.1\r\n\r\n");
    EXPECT_THAT(browser.reply(), StartsWith("HTTP/1.1 200 OK"));
    result_.get();
}

TEST_F(GoogleSignInTest, servesTheBrowserWhileAnotherUserConnectsAndSaysNothing) {
    begin();
    const auto before = settledDescriptors();
    constexpr int strangers = 300;
    asio::io_context context;
    std::vector<asio::ip::tcp::socket> silent;
    for (int number = 0; number < strangers; ++number)
        silent.emplace_back(context).connect({asio::ip::address_v4::loopback(), port()});
    EXPECT_THAT(get(port(), "/"), StartsWith(invalid)); // all of them have been taken by now
    EXPECT_LE(settledDescriptors(), before + strangers + 70);
    char nothing = 0;
    boost::system::error_code dropped;
    silent.front().read_some(asio::buffer(&nothing, 1), dropped);
    EXPECT_EQ(dropped, asio::error::eof) << "the first is dropped for the latest";
    consent();
    EXPECT_EQ(result_.get().accessToken, "a");
}

TEST_F(GoogleSignInTest, canSignInAgain) {
    begin();
    EXPECT_THAT(get(port(), callback("&error=x")), StartsWith("HTTP/1.1 200 OK"));
    EXPECT_THROW(result_.get(), BackupError);
    const std::string firstState = query_.at("state");
    beginAnew();
    EXPECT_NE(query_.at("state"), firstState);
    consent();
    EXPECT_EQ(result_.get().accessToken, "a");
}

} // namespace marrowbox::test
