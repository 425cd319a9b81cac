#pragma once

#include "Sandbox/SandboxServer.h"

#include <memory>
#include <string>
#include <vector>

namespace marrowbox::test {

/// What a request came to; status 0 when the transfer failed, with the library's code in failure.
struct Reply {
    long status = 0;
    int failure = 0;
    std::string head;
    std::string body;
};

/// A client of its own making that trusts a sandbox and keeps its connection alive.
class Client {
  public:
    explicit Client(sandbox::SandboxServer& sandbox);
    /// Reaches one sandbox and trusts another.
    Client(sandbox::SandboxServer& reached, sandbox::SandboxServer& trusted);

    /// Sent with every request from now on; empty for none.
    void setToken(std::string accessToken) { token_ = std::move(accessToken); }
    Reply get(const std::string& address, const std::vector<std::string>& headers = {});
    Reply post(const std::string& address, const std::string& body,
               const std::vector<std::string>& headers = {});
    /// Ends a transfer that takes longer.
    void setLimit(long milliseconds) { limit_ = milliseconds; }

  private:
    Reply perform(const std::string& address, const std::string* body,
                  const std::vector<std::string>& headers);

    std::string proxy_;
    std::string authority_;
    std::string token_;
    long limit_ = 60'000;
    std::shared_ptr<void> handle_;
};

} // namespace marrowbox::test
