#pragma once

#include <stdexcept>
#include <string>

namespace marrowbox {

enum class TransportErrorCode {
    cancelled, ///< The session ended while the request was under way.
    timedOut,
    cannotFindHost,
    cannotConnect,
    connectionLost,
    secureConnectionFailed,
    other,
};

/// A request that brought no complete response: the network's failure, in the words of the HTTP library. The
/// words never hold a header or a body.
class TransportError : public std::runtime_error {
  public:
    TransportError(TransportErrorCode code, const std::string& message)
        : std::runtime_error(message), code_(code) {}
    TransportErrorCode code() const { return code_; }

  private:
    TransportErrorCode code_;
};

} // namespace marrowbox
