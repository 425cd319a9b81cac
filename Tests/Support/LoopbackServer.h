#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace marrowbox::test {

/// What a LoopbackServer was asked.
struct WebRequest {
    int connection = 0; ///< Counted from 1 in the order of their opening.
    std::string head;   ///< Request line and header lines as they came, without the empty line.
    std::string body;
};

/// What it does about a request.
struct WebAnswer {
    std::string bytes;   ///< Sent as they stand.
    bool closes = false; ///< Ends the connection afterwards; otherwise it is kept alive.
};

/// A complete answer with a status such as "200 OK", further header lines that end in CR LF, and a body.
WebAnswer webAnswer(const std::string& status, const std::string& headers, const std::string& body);

/// A web server on the loopback interface that answers as a function tells and records what it was asked. The
/// function runs on the server's thread. An answer without bytes leaves the client waiting.
class LoopbackServer {
  public:
    using Script = std::function<WebAnswer(const WebRequest&)>;

    explicit LoopbackServer(Script script);
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;
    /// Closes everything.
    ~LoopbackServer();

    std::uint16_t port() const;
    std::string url(const std::string& path) const;
    std::vector<WebRequest> requests() const;
    int connections() const;

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace marrowbox::test
