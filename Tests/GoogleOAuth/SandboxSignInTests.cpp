#include "GoogleOAuth/GoogleAuth.h"
#include "GoogleOAuth/GoogleSignIn.h"
#include "LoopbackPeer.h"

#include "Models/BackupError.h"
#include "Sandbox/SandboxServer.h"
#include "Support/Coroutine.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <atomic>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace marrowbox::test {

using namespace sandbox;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// A sign-in at the simulated service, with curl as the browser: it follows the redirect to the port.
class SandboxSignIn : public testing::Test {
  protected:
    ~SandboxSignIn() override {
        if (browser_.joinable())
            browser_.join();
        pool_.join();
        EXPECT_THAT(sandbox_.failures(), IsEmpty());
    }

    HTTPSettings settings() {
        sandbox_.writeAuthority(authority_);
        HTTPSettings settings;
        settings.certificateFile = authority_;
        settings.proxy = sandbox_.proxyURL();
        return settings;
    }
    bool open(const std::string& address) {
        const std::string command = "curl --silent --location --noproxy 127.0.0.1 --proxy " +
                                    sandbox_.proxyURL() + " --cacert " + authority_.string() + " '" +
                                    address + "' > " + (folder_ / "page").string();
        browser_ = std::thread([command] { EXPECT_EQ(std::system(command.c_str()), 0); });
        return true;
    }
    SignInRequest request() {
        const ClientIdentity& client = sandbox_.identity().client();
        return {.client = {client.id, client.secret, client.project}, .sendEmail = true, .hint = {}};
    }
    OAuthToken authorize() { return await(signIn_.authorize(request(), {})); }
    std::string shownPage() {
        browser_.join();
        return readFile(folder_ / "page");
    }

    ScratchFolder folder_;
    fs::path authority_ = folder_ / "authority.pem";
    SandboxServer sandbox_;
    asio::thread_pool pool_{2};
    HTTPSession session_{settings()};
    HTTP http_{session_, timerWait()};
    std::thread browser_;
    OpenBrowser browse_ = [this](const std::string& address) { return open(address); };
    GoogleSignIn signIn_{{.executor = asio::make_strand(pool_.get_executor()),
                          .http = http_,
                          .openBrowser = [this](const std::string& address) { return browse_(address); }}};
};

/// Throws requests of every wrong kind at a port until it closes or the sign-in is over.
void disturb(std::uint16_t port, std::atomic<bool>& isOver) {
    try {
        LoopbackPeer slow(port);
        while (!isOver) {
            slow.send("G");
            LoopbackPeer silent(port);
            LoopbackPeer tooLong(port);
            tooLong.send(std::string(16385, 'x'));
            get(port, "/?state=wrong&code=c");
            get(port, "/favicon.ico");
        }
    } catch (const boost::system::system_error&) {
    }
}

} // namespace

TEST_F(SandboxSignIn, connectsAnAccount) {
    const OAuthToken token = authorize();
    EXPECT_EQ(shownPage(), "You can return to Marrowbox. This window may be closed.");
    const AppCredentials credentials(folder_ / "Credentials");
    const GoogleAuth auth({}, http_, credentials, systemClock(), pool_.get_executor());
    const GoogleAccount account = await(auth.save(token, {}));
    EXPECT_EQ(account.email, "ada@example.com");
    EXPECT_TRUE(account.canSendEmail);
    EXPECT_TRUE(credentials.contains("google." + account.id));
}

TEST_F(SandboxSignIn, failsWhenTheServerRefusesItsProof) {
    // The challenge that reaches the server is another one's.
    browse_ = [this](std::string address) {
        const auto at = address.find("code_challenge=") + std::string("code_challenge=").size();
        address[at] = address[at] == 'A' ? 'B' : 'A';
        return open(address);
    };
    EXPECT_EQ(thrown<BackupError>([&] { authorize(); }), "The service returned HTTP 400.");
}

TEST_F(SandboxSignIn, endsWhenTheUserRefuses) {
    sandbox_.identity().setSignIn({.consent = ConsentAnswer::denied});
    EXPECT_EQ(thrown<BackupError>([&] { authorize(); }), "Google access was not granted.");
    EXPECT_EQ(shownPage(), "Sign-in cancelled. Return to Marrowbox.");
}

TEST_F(SandboxSignIn, refusesAGrantWithoutARefreshToken) {
    sandbox_.identity().setSignIn({.grantsRefreshToken = false});
    EXPECT_EQ(
        thrown<BackupError>([&] { authorize(); }),
        "Google did not grant background access. Please reconnect and accept the requested permissions.");
}

TEST_F(SandboxSignIn, passesOnARefusalOfTheExchange) {
    sandbox_.inject(Fault::on(tokenCall()).answer(400));
    EXPECT_EQ(thrown<BackupError>([&] { authorize(); }), "The service returned HTTP 400.");
    EXPECT_EQ(sandbox_.requests().count(tokenCall()), 1U);
}

TEST_F(SandboxSignIn, isNotDisturbedByStrangersAllTheWhile) {
    std::atomic<bool> isOver = false;
    std::vector<std::thread> strangers;
    browse_ = [&](const std::string& address) {
        const auto redirect = firstValue(queryItems(address.substr(address.find('?') + 1)), "redirect_uri");
        const auto port = static_cast<std::uint16_t>(std::stoi(redirect.value().substr(17)));
        for (int index = 0; index < 4; ++index)
            strangers.emplace_back(disturb, port, std::ref(isOver));
        return open(address);
    };
    const OAuthToken token = authorize();
    isOver = true;
    for (std::thread& stranger : strangers)
        stranger.join();
    EXPECT_EQ(shownPage(), "You can return to Marrowbox. This window may be closed.");
    EXPECT_FALSE(token.accessToken.empty());
}

} // namespace marrowbox::test
