#pragma once

#include <exception>
#include <stop_token>

namespace marrowbox {

/// The end of an operation that somebody cancelled. A sibling of errors, not one of them: it derives from
/// std::exception alone, so that code which handles failures has to name it to catch it.
class CancellationError : public std::exception {
  public:
    const char* what() const noexcept override { return "The operation was cancelled."; }
};

/// Throws CancellationError when a stop has been requested. Any thread.
inline void throwIfCancelled(const std::stop_token& stop) {
    if (stop.stop_requested())
        throw CancellationError();
}

} // namespace marrowbox
