#include "Email/EmailDelivery.h"

#include "GoogleOAuth/GoogleScopes.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "ParsedMail.h"
#include "Platform/Base64.h"
#include "RunBuilder.h"
#include "Sandbox/SandboxServer.h"
#include "Support/Coroutine.h"
#include "Support/RecordedWaits.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <boost/asio/thread_pool.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

namespace {

const std::string mailScopes = std::string(GoogleScopes::drive) + "  " + std::string(GoogleScopes::send);

/// The mail service, as a status to answer with and the requests that came.
struct MailService {
    int status = 200;
    std::vector<HTTPRequest> requests;

    asio::awaitable<HTTPResponse> send(std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
        throwIfCancelled(stop);
        requests.push_back(*request);
        co_return HTTPResponse{.status = status, .retryAfter = "0", .body = "what nobody reads"};
    }
};

/// A delivery with one account whose token lasts, at one fixed moment.
class EmailDeliveryTest : public testing::Test {
  protected:
    EmailDeliveryTest() { storeToken({"access", "refresh", morning + 3'600, mailScopes}); }

    void storeToken(const OAuthToken& token) {
        credentials_.save(encodeJSON(token, JSONStyle::compact), "google.7");
    }
    HTTP http() {
        return {[this](std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
                    return service_.send(std::move(request), std::move(stop));
                },
                waits_.wait()};
    }
    EmailDelivery delivery(HTTP http) {
        const auto clock = [] { return morning; };
        auto auth = std::make_shared<const GoogleAuth>(OAuthClient{.client_id = "c"}, http, credentials_,
                                                       clock, pool_.get_executor());
        return {std::move(auth), std::move(http), britishFormats(), clock};
    }
    void send() { await(delivery(http()).send(message_, id_, settings_, accounts_, stop_.get_token())); }
    std::string refusal() {
        return thrown<BackupError>([&] { send(); });
    }

    ScratchFolder folder_;
    AppCredentials credentials_{folder_ / "Credentials"};
    asio::thread_pool pool_{1};
    MailService service_;
    RecordedWaits waits_;
    std::stop_source stop_;
    EmailMessage message_{.subject = "Subject", .text = "Text ??? >>>", .html = "<p>~~~</p>"};
    Uuid id_ = *Uuid::parse("0123ABCD-4567-89EF-0123-456789ABCDEF");
    EmailSettings settings_{
        .provider = EmailProvider::gmail, .accountID = "7", .recipient = "you@example.com"};
    std::vector<GoogleAccount> accounts_{{.id = "6", .email = "other@example.com"},
                                         {.id = "7", .email = "ada@example.com", .canSendEmail = true}};
};

/// What stands in the one member of the body, turned back into the message.
std::string messageIn(const std::string& body) {
    const std::string begin = R"({"raw":")";
    EXPECT_TRUE(body.starts_with(begin) && body.ends_with("\"}")) << body;
    std::string text = body.substr(begin.size(), body.size() - begin.size() - 2);
    EXPECT_EQ(text.find_first_of("+/=\r\n"), std::string::npos);
    std::ranges::replace(text, '-', '+');
    std::ranges::replace(text, '_', '/');
    text.append((4 - text.size() % 4) % 4, '=');
    return base64Decoded(text).value();
}

} // namespace

TEST_F(EmailDeliveryTest, postsTheMessageAsItsAccount) {
    send();
    ASSERT_THAT(service_.requests, SizeIs(1));
    const HTTPRequest& request = service_.requests.front();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url, "https://gmail.googleapis.com/gmail/v1/users/me/messages/send");
    EXPECT_THAT(request.headers, ElementsAre(Pair("Authorization", "Bearer access"),
                                             Pair("Content-Type", "application/json")));
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
    EXPECT_EQ(messageIn(request.body), message_.mime("ada@example.com", "you@example.com", id_));
}

TEST_F(EmailDeliveryTest, composesTheMailAboutARunUnderItsID) {
    const RunRecord run = successfulRun();
    await(delivery(http()).send(run, settings_, accounts_, {}));
    EXPECT_EQ(
        messageIn(service_.requests.at(0).body),
        EmailMessage::of(run, britishFormats(), morning).mime("ada@example.com", "you@example.com", run.id));
}

TEST_F(EmailDeliveryTest, looksAtTheRecipientFirst) {
    settings_ = {.recipient = "nobody"};
    EXPECT_EQ(refusal(), "Set a valid notification recipient in Settings.");
}

TEST_F(EmailDeliveryTest, sendsNothingWhenEmailIsDisabled) {
    settings_.provider = EmailProvider::disabled;
    settings_.accountID = "gone";
    EXPECT_EQ(refusal(), "Email notifications are disabled.");
    EXPECT_THAT(service_.requests, IsEmpty());
}

TEST_F(EmailDeliveryTest, needsAnAccountThatMaySendAndAnAuthoriser) {
    const std::string sentence = "Enable Gmail sending permission for the notification account in Settings.";
    settings_.accountID = "gone";
    EXPECT_EQ(refusal(), sentence);
    settings_.accountID = "6";
    EXPECT_EQ(refusal(), sentence);
    settings_.accountID = "7";
    EmailDelivery without = delivery(http());
    without.auth.reset();
    EXPECT_EQ(thrown<BackupError>([&] { await(without.send(message_, id_, settings_, accounts_, {})); }),
              sentence);
    EXPECT_THAT(service_.requests, IsEmpty());
}

TEST_F(EmailDeliveryTest, needsTheSendScopeAsAWholeWord) {
    for (const std::string& scope :
         {std::string(), std::string(GoogleScopes::drive), std::string(GoogleScopes::send) + ".more"}) {
        storeToken({"access", "refresh", morning + 3'600, scope});
        EXPECT_EQ(refusal(), "Reconnect with Gmail sending permission.") << scope;
    }
    EXPECT_THAT(service_.requests, IsEmpty());
}

TEST_F(EmailDeliveryTest, passesOnThatAnAccountHasNoToken) {
    credentials_.remove("google.7");
    EXPECT_EQ(refusal(), "Reconnect this Google account in Settings.");
}

TEST_F(EmailDeliveryTest, refusesASenderWithoutAnAddress) {
    accounts_[1].email = "ada@example.com\r\nBcc: spy@example.com";
    EXPECT_EQ(refusal(), "Enter valid sender and recipient email addresses.");
    EXPECT_THAT(service_.requests, IsEmpty());
}

TEST_F(EmailDeliveryTest, sendsOnceAndPassesOnARefusalOfTheService) {
    service_.status = 503;
    EXPECT_EQ(refusal(), "The service returned HTTP 503.");
    EXPECT_THAT(service_.requests, SizeIs(1));
    EXPECT_THAT(waits_.seconds(), IsEmpty());
}

TEST_F(EmailDeliveryTest, endsWhenItIsCancelled) {
    stop_.request_stop();
    EXPECT_THROW(send(), CancellationError);
    EXPECT_THAT(service_.requests, IsEmpty());
}

// Over real TLS: a token that is renewed first, and a mail that arrives as it was composed.
TEST_F(EmailDeliveryTest, reachesTheMailServiceOverTheNetwork) {
    sandbox::SandboxServer sandbox;
    sandbox.writeAuthority(folder_ / "authority.pem");
    HTTPSession session({.certificateFile = folder_ / "authority.pem", .proxy = sandbox.proxyURL()});
    const sandbox::SandboxToken token = sandbox.identity().issueToken();
    storeToken({token.accessToken, token.refreshToken, morning + 60, token.scope});
    const auto client = sandbox.identity().client();
    EmailDelivery real = delivery(HTTP(session, timerWait()));
    real.auth = std::make_shared<const GoogleAuth>(
        OAuthClient{.client_id = client.id, .client_secret = client.secret}, real.http, credentials_,
        [] { return morning; }, pool_.get_executor());

    const RunRecord run = failedRun();
    await(real.send(run, settings_, accounts_, {}));

    const auto received = sandbox.mail();
    ASSERT_THAT(received, SizeIs(1));
    const ParsedMail mail = parseMail(received[0].mime);
    EXPECT_THAT(mail.defects, IsEmpty());
    EXPECT_EQ(mail.subject, "Marrowbox · Snapshot failed · Family photos");
    EXPECT_THAT(mail.to, ElementsAre("you@example.com"));
    EXPECT_THAT(mail.parts.at(0).content, HasSubstr("The destination is not connected."));
    EXPECT_THAT(sandbox.failures(), IsEmpty());
    EXPECT_NE(decodeJSON<OAuthToken>(credentials_.read("google.7").value()).accessToken, token.accessToken);
}

TEST(EmailBackOff, doublesFromTwoMinutesToSixHours) {
    const std::vector<std::pair<std::int64_t, double>> rows = {
        {1, 120},   {2, 240},    {3, 480},    {4, 960},     {5, 1'920},   {6, 3'840},
        {7, 7'680}, {8, 15'360}, {9, 21'600}, {10, 21'600}, {11, 21'600}, {1'000'000'000'000, 21'600}};
    for (const auto& [attempts, seconds] : rows)
        EXPECT_EQ(EmailDelivery::backOff(attempts), seconds) << attempts;
}

} // namespace marrowbox::test
