#pragma once

#include "GoogleOAuth/HTTPSession.h"
#include "Platform/Executors.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace marrowbox {

/// Sends a request once.
using HTTPSend =
    std::function<asio::awaitable<HTTPResponse>(std::shared_ptr<const HTTPRequest>, std::stop_token)>;

/// The only way to a web service: one operation that owns the policy of repeating a request, and turns a
/// refusal into the sentence that the user reads. A value; any thread.
class HTTP {
  public:
    /// The session must outlive the value and its copies.
    HTTP(HTTPSession& session, Wait wait);
    HTTP(HTTPSend send, Wait wait);

    /// The body of a response from 200 to 299. Throws BackupError for any other, the TransportError of the
    /// last attempt, and CancellationError.
    asio::awaitable<std::string> data(HTTPRequest request, std::stop_token stop) const;
    /// Whether a request's place among others is kept; where it is not, each is sent as soon as it is given.
    bool keepsOrder() const { return keepsOrder_; }

  private:
    HTTPSend send_;
    Wait wait_;
    bool keepsOrder_ = false;
};

/// What to do about a response or a failure, apart from doing it.
namespace HTTPRetry {

/// Sends of one request at most.
inline constexpr int attempts = 4;

/// How long to wait before a refused request is sent again; absent when it is not. The attempt counts from 0.
std::optional<std::chrono::duration<double>> wait(std::string_view method, int attempt, int status,
                                                  std::string_view retryAfter);
/// The same after a failure of the network.
std::optional<std::chrono::duration<double>> wait(std::string_view method, int attempt,
                                                  TransportErrorCode code);
/// The number of seconds that a Retry-After gives; absent when it is not a number throughout.
std::optional<double> seconds(std::string_view retryAfter);
/// What the user reads about a status that is not from 200 to 299.
std::string refusal(int status);

} // namespace HTTPRetry

} // namespace marrowbox
