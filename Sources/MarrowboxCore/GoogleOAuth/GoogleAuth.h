#pragma once

#include "Credentials/AppCredentials.h"
#include "GoogleOAuth/HTTP.h"
#include "GoogleOAuth/OAuthClient.h"
#include "GoogleOAuth/OAuthToken.h"
#include "Models/GoogleAccount.h"
#include "Platform/Clock.h"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/strand.hpp>
#include <map>
#include <optional>
#include <stop_token>
#include <string>

namespace marrowbox {

/// Through it passes every authorised Google request. Tokens live in the credential file alone: each
/// operation reads the account's anew, and renews it shortly before its end. Operations run on a strand of
/// the given executor and come back to the caller's; any thread. The object must outlive its operations.
/// Failures of HTTP, decoding and the credential file pass through unchanged, and leave a stored token as it
/// was.
class GoogleAuth {
  public:
    GoogleAuth(OAuthClient client, HTTP http, AppCredentials credentials, Clock clock,
               asio::any_io_executor executor);

    const OAuthClient& client() const { return client_; }

    /// A token that lasts another 120 seconds at least, renewed and stored when the stored one does not.
    /// Throws BackupError when the account has none.
    asio::awaitable<OAuthToken> token(std::string accountID, std::stop_token stop) const;

    /// The body of an authorised GET.
    asio::awaitable<std::string> request(std::string url, std::string accountID, std::stop_token stop) const;
    /// The same for one of several that belong together. Its token is read when it is made ready.
    asio::awaitable<std::string> request(std::string url, std::string accountID, HTTPOrder order,
                                         std::stop_token stop) const;
    bool keepsOrder() const { return http_.keepsOrder(); }

    /// Asks whose token it is and stores it under that account. Throws BackupError, with nothing stored, when
    /// it does not grant reading Drive.
    asio::awaitable<GoogleAccount> save(OAuthToken token, std::stop_token stop) const;

    /// One call of the token endpoint, never repeated; runs on the caller's executor. What the answer leaves
    /// out comes from the previous token. Throws BackupError when neither has a refresh token.
    static asio::awaitable<OAuthToken> exchange(HTTP http, std::map<std::string, std::string> fields,
                                                std::optional<OAuthToken> previous, Clock clock,
                                                std::stop_token stop);

  private:
    asio::awaitable<OAuthToken> validToken(std::string accountID, std::stop_token stop) const;
    asio::awaitable<std::string> authorisedGet(std::string url, std::string accountID, HTTPOrder order,
                                               std::stop_token stop) const;
    asio::awaitable<GoogleAccount> store(OAuthToken token, std::stop_token stop) const;

    OAuthClient client_;
    HTTP http_;
    AppCredentials credentials_;
    Clock clock_;
    asio::strand<asio::any_io_executor> strand_;
};

} // namespace marrowbox
