#pragma once

#include <stdexcept>
#include <string>

namespace marrowbox {

/// Somebody else holds the lock. It has the shape of BackupError and is a type of its own, so that a caller
/// can tell a job that has to wait from one that failed.
class LockBusyError : public std::runtime_error {
  public:
    explicit LockBusyError(const std::string& message) : std::runtime_error(message), message_(message) {}
    /// The whole sentence.
    const std::string& message() const { return message_; }

  private:
    std::string message_;
};

} // namespace marrowbox
