#pragma once

#include "GoogleOAuth/HTTP.h"
#include "GoogleOAuth/OAuthClient.h"
#include "GoogleOAuth/OAuthToken.h"
#include "GoogleOAuth/WebEncoding.h"
#include "Platform/Clock.h"
#include "Platform/Executors.h"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

namespace marrowbox {

/// Opens an address in the user's browser; false when the desktop reports a failure.
using OpenBrowser = std::function<bool(const std::string& address)>;

/// Who signs in, and for what.
struct SignInRequest {
    OAuthClient client;
    bool sendEmail = false;          ///< Also asks for sending mail.
    std::optional<std::string> hint; ///< The address that the consent page offers first.
};

/// Signs a user in at Google with a desktop's means: the consent in the user's own browser, the answer at a
/// port of the loopback interface, and a proof (PKCE) that nobody else can use the code that travels there.
/// One sign-in at a time is the caller's business. The object must outlive its operations.
class GoogleSignIn {
  public:
    /// What a sign-in needs of the program around it.
    struct Surroundings {
        asio::any_io_executor executor; ///< Serial; the browser is opened on it.
        HTTP http;
        Clock clock = systemClock();
        Wait wait = timerWait();
        OpenBrowser openBrowser;
        WebEncoding::RandomSource random = randomBytes;
    };

    explicit GoogleSignIn(Surroundings surroundings) : surroundings_(std::move(surroundings)) {}

    /// A token of the user, not yet stored. Waits for the browser up to 300 seconds; throws BackupError when
    /// the user refuses, the time is over or the browser does not open, CancellationError, and the failures
    /// of the exchange and the network unchanged.
    asio::awaitable<OAuthToken> authorize(SignInRequest request, std::stop_token stop) const;

  private:
    Surroundings surroundings_;
};

} // namespace marrowbox
