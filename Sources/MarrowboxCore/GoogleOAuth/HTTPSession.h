#pragma once

#include "GoogleOAuth/HTTPRequest.h"
#include "GoogleOAuth/TransportError.h"

#include <boost/asio/awaitable.hpp>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace marrowbox {

namespace asio = boost::asio;

class HTTPTransfer;

/// What a session takes from its surroundings.
struct HTTPSettings {
    /// Certificate authorities to trust in place of the system's own file.
    std::optional<std::filesystem::path> certificateFile;
    /// The proxy; absent means what HTTPS_PROXY and NO_PROXY say.
    std::optional<std::string> proxy;
    bool allowsPlainHTTP = false;
    std::size_t largestBody = std::size_t(64) << 20; ///< Bytes; a longer one fails the request.

    /// The settings of the program: the certificates that SSL_CERT_FILE names.
    static HTTPSettings fromEnvironment();
};

/// The process's one pool of connections: kept alive, shared by all requests, HTTP/2 where the server offers
/// it. One thread of its own moves the bytes of all transfers; a result is posted to the awaiting coroutine's
/// executor, which therefore must not end before its requests. No redirects, no cookies, no repetition.
class HTTPSession {
  public:
    /// Throws std::runtime_error when the HTTP library cannot start.
    explicit HTTPSession(HTTPSettings settings);
    HTTPSession(const HTTPSession&) = delete;
    HTTPSession& operator=(const HTTPSession&) = delete;
    /// Ends what is under way with TransportErrorCode::cancelled.
    ~HTTPSession();

    /// Sends once. Throws TransportError when no complete response came, BackupError for a body or headers
    /// that are too large, and CancellationError as soon as a stop is requested. Any executor, any number at
    /// a time.
    asio::awaitable<HTTPResponse> send(std::shared_ptr<const HTTPRequest> request, std::stop_token stop);

  private:
    class Network;
    static asio::awaitable<HTTPResponse> perform(std::shared_ptr<Network> network,
                                                 std::shared_ptr<HTTPTransfer> transfer);
    std::shared_ptr<Network> network_;
};

} // namespace marrowbox
