#include "GoogleOAuth/GoogleAuth.h"

#include "GoogleOAuth/GoogleScopes.h"
#include "GoogleOAuth/WebEncoding.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <ranges>
#include <utility>

namespace marrowbox {

namespace {

constexpr double renewalMargin = 120;

/// The token endpoint's answer.
struct TokenAnswer {
    std::string access_token;
    std::optional<std::string> refresh_token;
    double expires_in = 0;
    std::optional<std::string> scope;
};

BOOST_DESCRIBE_STRUCT(TokenAnswer, (), (access_token, refresh_token, expires_in, scope))

/// The userinfo endpoint's answer.
struct Profile {
    std::string sub;
    std::string email;
    std::optional<std::string> name;
    std::optional<bool> email_verified;
};

BOOST_DESCRIBE_STRUCT(Profile, (), (sub, email, name, email_verified))

std::string credentialKey(const std::string& accountID) {
    return "google." + accountID;
}

HTTPRequest authorisedRequest(std::string url, const OAuthToken& token, HTTPOrder order = {}) {
    return {.method = "GET",
            .url = std::move(url),
            .headers = {{"Authorization", "Bearer " + token.accessToken}},
            .body = {},
            .order = std::move(order)};
}

std::map<std::string, std::string> renewalFields(const OAuthClient& client, const OAuthToken& token) {
    std::map<std::string, std::string> fields{
        {"client_id", client.client_id},
        {"refresh_token", token.refreshToken},
        {"grant_type", "refresh_token"},
    };
    if (client.client_secret)
        fields.emplace("client_secret", *client.client_secret);
    return fields;
}

OAuthToken merged(TokenAnswer answer, std::optional<OAuthToken> previous, Date now) {
    if (!answer.refresh_token && !previous)
        throw BackupError("Google did not grant background access. Please reconnect and accept the requested "
                          "permissions.");
    OAuthToken token;
    token.accessToken = std::move(answer.access_token);
    token.refreshToken = answer.refresh_token ? std::move(*answer.refresh_token) : previous->refreshToken;
    token.expiry = now + answer.expires_in;
    token.scope = answer.scope ? std::move(*answer.scope) : previous ? previous->scope : std::string();
    return token;
}

GoogleAccount accountOf(Profile profile, bool canSendEmail) {
    return {.id = std::move(profile.sub),
            .email = profile.email,
            .name = profile.name.value_or(profile.email),
            .canSendEmail = canSendEmail};
}

bool contains(const std::vector<std::string>& scopes, std::string_view scope) {
    return std::ranges::find(scopes, scope) != scopes.end();
}

} // namespace

GoogleAuth::GoogleAuth(OAuthClient client, HTTP http, AppCredentials credentials, Clock clock,
                       asio::any_io_executor executor)
    : client_(std::move(client)), http_(std::move(http)), credentials_(std::move(credentials)),
      clock_(std::move(clock)), strand_(asio::make_strand(std::move(executor))) {
}

asio::awaitable<OAuthToken> GoogleAuth::token(std::string accountID, std::stop_token stop) const {
    return asio::co_spawn(strand_, validToken(std::move(accountID), std::move(stop)), asio::use_awaitable);
}

asio::awaitable<std::string> GoogleAuth::request(std::string url, std::string accountID,
                                                 std::stop_token stop) const {
    return request(std::move(url), std::move(accountID), {}, std::move(stop));
}

asio::awaitable<std::string> GoogleAuth::request(std::string url, std::string accountID, HTTPOrder order,
                                                 std::stop_token stop) const {
    return asio::co_spawn(
        strand_, authorisedGet(std::move(url), std::move(accountID), std::move(order), std::move(stop)),
        asio::use_awaitable);
}

asio::awaitable<GoogleAccount> GoogleAuth::save(OAuthToken token, std::stop_token stop) const {
    return asio::co_spawn(strand_, store(std::move(token), std::move(stop)), asio::use_awaitable);
}

asio::awaitable<OAuthToken> GoogleAuth::exchange(HTTP http, std::map<std::string, std::string> fields,
                                                 std::optional<OAuthToken> previous, Clock clock,
                                                 std::stop_token stop) {
    HTTPRequest request{.method = "POST",
                        .url = "https://oauth2.googleapis.com/token",
                        .headers = {{"Content-Type", "application/x-www-form-urlencoded"}},
                        .body = WebEncoding::form(fields)};
    const std::string body = co_await http.data(std::move(request), std::move(stop));
    co_return merged(decodeJSON<TokenAnswer>(body), std::move(previous), clock());
}

asio::awaitable<OAuthToken> GoogleAuth::validToken(std::string accountID, std::stop_token stop) const {
    const std::string key = credentialKey(accountID);
    const std::optional<std::string> stored = credentials_.read(key);
    if (!stored)
        throw BackupError("Reconnect this Google account in Settings.");
    OAuthToken token = decodeJSON<OAuthToken>(*stored);
    if (token.expiry - clock_() >= renewalMargin)
        co_return token;
    auto fields = renewalFields(client_, token);
    OAuthToken renewed =
        co_await exchange(http_, std::move(fields), std::move(token), clock_, std::move(stop));
    credentials_.save(encodeJSON(renewed, JSONStyle::compact), key);
    co_return renewed;
}

asio::awaitable<std::string> GoogleAuth::authorisedGet(std::string url, std::string accountID,
                                                       HTTPOrder order, std::stop_token stop) const {
    const OAuthToken token = co_await validToken(std::move(accountID), stop);
    std::string body =
        co_await http_.data(authorisedRequest(std::move(url), token, std::move(order)), std::move(stop));
    co_return body;
}

asio::awaitable<GoogleAccount> GoogleAuth::store(OAuthToken token, std::stop_token stop) const {
    HTTPRequest request = authorisedRequest("https://openidconnect.googleapis.com/v1/userinfo", token);
    const std::string body = co_await http_.data(std::move(request), std::move(stop));
    Profile profile = decodeJSON<Profile>(body);
    const std::vector<std::string> scopes = GoogleScopes::granted(token.scope);
    if (!contains(scopes, GoogleScopes::drive))
        throw BackupError("Read-only Drive access is required to back up this account.");
    credentials_.save(encodeJSON(token, JSONStyle::compact), credentialKey(profile.sub));
    co_return accountOf(std::move(profile), contains(scopes, GoogleScopes::send));
}

} // namespace marrowbox
