#pragma once

#include <stdexcept>
#include <string>

namespace marrowbox {

/// A deliberate failure with a finished sentence for the user. The sentence is shown as it stands; no layer
/// rewords it or adds to it.
class BackupError : public std::runtime_error {
  public:
    explicit BackupError(const std::string& message) : std::runtime_error(message), message_(message) {}
    /// The whole sentence; what() ends at the first NUL, which a path from outside may hold.
    const std::string& message() const { return message_; }

  private:
    std::string message_;
};

} // namespace marrowbox
