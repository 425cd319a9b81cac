#pragma once

#include "Sandbox/RecordedRequest.h"
#include "Sandbox/RequestMatch.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

namespace marrowbox::sandbox {

/// Every request that a sandbox has seen, in the order of arrival. Any thread.
class RequestLog {
  public:
    std::vector<RecordedRequest> all() const;
    std::vector<RecordedRequest> matching(const RequestMatch& match) const;
    std::size_t count(const RequestMatch& match) const;
    /// "GET /drive/v3/files/root" and so on, one line a request: what a test compares first.
    std::vector<std::string> lines() const;
    void clear();

    /// Blocks until that many such requests have arrived; false when the time is over first. Never to be
    /// called from a fault's hook, which holds up the sandbox itself.
    bool waitFor(const RequestMatch& match, std::size_t count,
                 std::chrono::seconds limit = std::chrono::seconds(30)) const;
    /// Blocks until that many connections have been closed in all.
    bool waitForClosedConnections(std::size_t count,
                                  std::chrono::seconds limit = std::chrono::seconds(30)) const;

    /// Connections through the proxy so far, and hosts that were refused there.
    std::size_t connectionCount() const;
    std::vector<std::string> refusedHosts() const;

    // For the sandbox's own connections.
    std::size_t begin(RecordedRequest request);
    void finish(std::size_t token, unsigned status);
    std::size_t connectionOpened();
    void connectionClosed();
    void hostRefused(std::string host);

  private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::vector<RecordedRequest> requests_;
    std::vector<std::string> refusedHosts_;
    std::size_t cleared_ = 0; // requests dropped by clear(), so that a token stays valid
    std::size_t connections_ = 0;
    std::size_t closedConnections_ = 0;
};

} // namespace marrowbox::sandbox
