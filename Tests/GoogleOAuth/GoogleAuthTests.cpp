#include "GoogleOAuth/GoogleAuth.h"

#include "GoogleOAuth/GoogleScopes.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Support/Coroutine.h"
#include "Support/RecordedWaits.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <boost/asio/thread_pool.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

constexpr Date now{800'000'000};
const std::string driveScope(GoogleScopes::drive);

/// Google, as far as tokens go: a list of answers, and the requests that they were given for.
struct Services {
    std::vector<HTTPRequest> requests;
    std::vector<HTTPResponse> answers;

    asio::awaitable<HTTPResponse> send(std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
        throwIfCancelled(stop);
        requests.push_back(*request);
        HTTPResponse answer = answers.at(requests.size() - 1);
        co_return answer;
    }
};

/// An authoriser over a credential file of its own, at one fixed moment.
class GoogleAuthTest : public testing::Test {
  protected:
    GoogleAuthTest() { std::filesystem::permissions(folder_.path(), std::filesystem::perms::owner_all); }

    void answer(int status, const std::string& body) {
        services_.answers.push_back({.status = status, .retryAfter = {}, .body = body});
    }
    HTTP http() {
        return {[this](std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
                    return services_.send(std::move(request), std::move(stop));
                },
                waits_.wait()};
    }
    GoogleAuth auth() {
        return {client_, http(), credentials_, [] { return now; }, pool_.get_executor()};
    }
    void store(const std::string& account, double secondsLeft) {
        const OAuthToken token{"old-access", "old-refresh", now + secondsLeft, "old-scope"};
        credentials_.save(encodeJSON(token, JSONStyle::compact), "google." + account);
    }
    OAuthToken stored(const std::string& account) {
        return decodeJSON<OAuthToken>(credentials_.read("google." + account).value());
    }
    OAuthToken token(const std::string& account) { return await(auth().token(account, {})); }
    OAuthToken exchange(std::optional<OAuthToken> previous) {
        return await(
            GoogleAuth::exchange(http(), {{"code", "4/a b"}}, std::move(previous), [] { return now; }, {}));
    }
    GoogleAccount save(const std::string& scope) {
        return await(auth().save({"new-access", "new-refresh", now + 3600, scope}, {}));
    }

    ScratchFolder folder_;
    Services services_;
    RecordedWaits waits_;
    OAuthClient client_{"7.apps.googleusercontent.com", "shh", std::nullopt};
    AppCredentials credentials_{folder_ / "Credentials"};
    asio::thread_pool pool_{2};
};

} // namespace

TEST_F(GoogleAuthTest, returnsATokenThatLasts) {
    for (const double secondsLeft : {120.0, 121.0, 3600.0}) {
        store("1", secondsLeft);
        EXPECT_EQ(token("1").accessToken, "old-access") << secondsLeft;
    }
    EXPECT_THAT(services_.requests, IsEmpty());
}

TEST_F(GoogleAuthTest, renewsATokenNearItsEnd) {
    for (const double secondsLeft : {119.0, 119.99, 0.0, -5000.0}) {
        store("1", secondsLeft);
        answer(200, R"({"access_token": "new", "expires_in": 3599})");
        EXPECT_EQ(token("1").accessToken, "new") << secondsLeft;
    }
    EXPECT_EQ(services_.requests.size(), 4U);
}

TEST_F(GoogleAuthTest, asksTheTokenEndpointForARenewal) {
    store("1", 0);
    answer(200, R"({"access_token": "new", "expires_in": 3599})");
    token("1");
    const HTTPRequest& request = services_.requests.at(0);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url, "https://oauth2.googleapis.com/token");
    EXPECT_THAT(request.headers, ElementsAre(Pair("Content-Type", "application/x-www-form-urlencoded")));
    EXPECT_EQ(request.body,
              "client_id=7.apps.googleusercontent.com&client_secret=shh&grant_type=refresh_token&"
              "refresh_token=old-refresh");
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
}

TEST_F(GoogleAuthTest, sendsNoSecretThatAClientDoesNotHave) {
    client_.client_secret.reset();
    store("1", 0);
    answer(200, R"({"access_token": "new", "expires_in": 3599})");
    token("1");
    EXPECT_EQ(services_.requests.at(0).body,
              "client_id=7.apps.googleusercontent.com&grant_type=refresh_token&refresh_token=old-refresh");
}

TEST_F(GoogleAuthTest, keepsWhatARenewalLeavesOut) {
    store("1", 0);
    answer(200, R"({"access_token": "new", "expires_in": 3599.5})");
    const OAuthToken expected{"new", "old-refresh", now + 3599.5, "old-scope"};
    EXPECT_EQ(token("1"), expected);
    EXPECT_EQ(stored("1"), expected);
}

TEST_F(GoogleAuthTest, takesWhatARenewalSays) {
    store("1", 0);
    answer(200, R"({"access_token": "new", "refresh_token": "r", "expires_in": 10, "scope": "s"})");
    const OAuthToken expected{"new", "r", now + 10, "s"};
    EXPECT_EQ(token("1"), expected);
    EXPECT_EQ(stored("1"), expected);
}

TEST_F(GoogleAuthTest, asksToReconnectAnAccountWithoutAToken) {
    EXPECT_EQ(thrown<BackupError>([&] { token("1"); }), "Reconnect this Google account in Settings.");
}

TEST_F(GoogleAuthTest, failsOnARecordThatDoesNotDecode) {
    credentials_.save(R"({"accessToken": "a", "refreshToken": "b", "expiry": 1})", "google.1");
    EXPECT_THROW(token("1"), JSONDecodingError);
}

TEST_F(GoogleAuthTest, leavesTheStoredTokenAloneWhenARenewalFails) {
    store("1", 0);
    const OAuthToken before = stored("1");
    answer(400, "");
    EXPECT_EQ(thrown<BackupError>([&] { token("1"); }), "The service returned HTTP 400.");
    answer(401, "");
    EXPECT_EQ(thrown<BackupError>([&] { token("1"); }),
              "Google sign-in expired or was revoked. Reconnect the account in Settings.");
    answer(200, "{");
    EXPECT_THROW(token("1"), JSONDecodingError);
    answer(200, R"({"access_token": "new", "expires_in": 1e400})");
    EXPECT_ANY_THROW(token("1"));
    EXPECT_EQ(stored("1"), before);
}

TEST_F(GoogleAuthTest, returnsARenewedTokenOnlyOnceItIsStored) {
    store("1", 0);
    answer(200, R"({"access_token": "new", "expires_in": 3599})");
    const GoogleAuth authoriser{client_,
                                HTTP(
                                    [this](std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
                                        std::filesystem::permissions(folder_ / "Credentials/credentials.json",
                                                                     std::filesystem::perms(0644));
                                        return services_.send(std::move(request), std::move(stop));
                                    },
                                    waits_.wait()),
                                credentials_, [] { return now; }, pool_.get_executor()};
    EXPECT_EQ(thrown<BackupError>([&] { await(authoriser.token("1", {})); }),
              "Credential file identity or permissions are unsafe. Credentials were not accessed.");
}

TEST_F(GoogleAuthTest, exchangesACodeForAToken) {
    answer(200, R"({"access_token": "a", "refresh_token": "r", "expires_in": 3599, "scope": "s t"})");
    const OAuthToken expected{"a", "r", now + 3599, "s t"};
    EXPECT_EQ(exchange(std::nullopt), expected);
    EXPECT_EQ(services_.requests.at(0).body, "code=4%2Fa%20b");
}

TEST_F(GoogleAuthTest, leavesTheScopeOfAFirstExchangeEmptyWhenNoneIsTold) {
    answer(200, R"({"access_token": "a", "refresh_token": "r", "expires_in": 3599})");
    EXPECT_EQ(exchange(std::nullopt).scope, "");
}

TEST_F(GoogleAuthTest, refusesAFirstExchangeWithoutARefreshToken) {
    answer(200, R"({"access_token": "a", "expires_in": 3599})");
    EXPECT_EQ(
        thrown<BackupError>([&] { exchange(std::nullopt); }),
        "Google did not grant background access. Please reconnect and accept the requested permissions.");
}

TEST_F(GoogleAuthTest, neverRepeatsAnExchange) {
    answer(503, "");
    EXPECT_EQ(thrown<BackupError>([&] { exchange(std::nullopt); }), "The service returned HTTP 503.");
    EXPECT_EQ(services_.requests.size(), 1U);
}

TEST_F(GoogleAuthTest, readsTheClockAfterTheAnswer) {
    answer(200, R"({"access_token": "a", "refresh_token": "r", "expires_in": 10})");
    const Clock later = [this] { return now + static_cast<double>(services_.requests.size()) * 7; };
    const OAuthToken token = await(GoogleAuth::exchange(http(), {}, std::nullopt, later, {}));
    EXPECT_EQ(token.expiry, now + 17);
}

TEST_F(GoogleAuthTest, authorisesAGet) {
    store("1", 3600);
    answer(200, "body");
    EXPECT_EQ(await(auth().request("https://www.googleapis.com/drive/v3/drives", "1", {})), "body");
    const HTTPRequest& request = services_.requests.at(0);
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.url, "https://www.googleapis.com/drive/v3/drives");
    EXPECT_THAT(request.headers, ElementsAre(Pair("Authorization", "Bearer old-access")));
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
}

TEST_F(GoogleAuthTest, doesNotRenewAfterARefusal) {
    store("1", 3600);
    answer(401, "");
    EXPECT_THROW(await(auth().request("https://www.googleapis.com/", "1", {})), BackupError);
    EXPECT_EQ(services_.requests.size(), 1U);
}

TEST_F(GoogleAuthTest, repeatsARefusedGetWithTheSameToken) {
    store("1", 3600);
    answer(503, "");
    answer(200, "second");
    EXPECT_EQ(await(auth().request("https://www.googleapis.com/", "1", {})), "second");
    EXPECT_THAT(waits_.seconds(), ElementsAre(2));
}

TEST_F(GoogleAuthTest, readsTheCredentialFileForEachRequest) {
    store("1", 3600);
    answer(200, "");
    await(auth().request("https://www.googleapis.com/", "1", {}));
    credentials_.remove("google.1");
    EXPECT_EQ(thrown<BackupError>([&] { await(auth().request("https://www.googleapis.com/", "1", {})); }),
              "Reconnect this Google account in Settings.");
}

TEST_F(GoogleAuthTest, endsWhenCancelled) {
    store("1", 3600);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(await(auth().request("https://www.googleapis.com/", "1", stop.get_token())),
                 CancellationError);
    EXPECT_THAT(services_.requests, IsEmpty());
}

TEST_F(GoogleAuthTest, savesATokenUnderItsUser) {
    answer(200, R"({"sub": "42", "email": "ann@example.org", "name": "Ann", "email_verified": true})");
    const GoogleAccount expected{"42", "ann@example.org", "Ann", false};
    EXPECT_EQ(save("openid " + driveScope), expected);
    EXPECT_EQ(stored("42").accessToken, "new-access");
    EXPECT_EQ(stored("42").scope, "openid " + driveScope);
    const HTTPRequest& request = services_.requests.at(0);
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.url, "https://openidconnect.googleapis.com/v1/userinfo");
    EXPECT_THAT(request.headers, ElementsAre(Pair("Authorization", "Bearer new-access")));
}

TEST_F(GoogleAuthTest, showsTheAddressOfAUserWithoutAName) {
    answer(200, R"({"sub": "42", "email": "ann@example.org"})");
    EXPECT_EQ(save(driveScope).name, "ann@example.org");
}

TEST_F(GoogleAuthTest, knowsWhetherSendingWasGranted) {
    answer(200, R"({"sub": "42", "email": "ann@example.org"})");
    EXPECT_TRUE(save(driveScope + "  " + std::string(GoogleScopes::send)).canSendEmail);
}

TEST_F(GoogleAuthTest, storesNothingWithoutTheDriveScope) {
    for (const std::string& scope : {std::string(), std::string("openid"), driveScope + ".file",
                                     "x" + driveScope, driveScope + "\tprofile"}) {
        answer(200, R"({"sub": "42", "email": "ann@example.org"})");
        EXPECT_EQ(thrown<BackupError>([&] { save(scope); }),
                  "Read-only Drive access is required to back up this account.")
            << scope;
    }
    EXPECT_FALSE(credentials_.contains("google.42"));
}

TEST_F(GoogleAuthTest, findsTheDriveScopeBetweenDoubleBlanks) {
    answer(200, R"({"sub": "42", "email": "ann@example.org"})");
    EXPECT_EQ(save("openid  " + driveScope + "  profile").id, "42");
}

TEST_F(GoogleAuthTest, replacesTheTokenOfAUserWhoConnectsAgain) {
    store("42", 3600);
    answer(200, R"({"sub": "42", "email": "ann@example.org"})");
    save(driveScope);
    EXPECT_EQ(stored("42").accessToken, "new-access");
}

TEST_F(GoogleAuthTest, storesNothingForAUserWhoIsAPath) {
    for (const std::string& user :
         {std::string("../../escaped"), std::string("a/b"), std::string("a b"), std::string(200, 'a')}) {
        answer(200, R"({"sub": ")" + user + R"(", "email": "ann@example.org"})");
        EXPECT_EQ(thrown<BackupError>([&] { save(driveScope); }), "Invalid credential identifier.") << user;
    }
}

TEST_F(GoogleAuthTest, storesNothingForAnAnswerWithoutAUser) {
    answer(200, R"({"email": "ann@example.org"})");
    EXPECT_THROW(save(driveScope), JSONDecodingError);
}

} // namespace marrowbox::test
