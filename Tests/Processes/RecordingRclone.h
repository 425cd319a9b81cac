#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace marrowbox::test {

/// A stand-in for rclone: a program that notes what it is called with, writes "bytes of ID" to each target,
/// and then does what the test says.
class RecordingRclone {
  public:
    struct Call {
        std::vector<std::string> arguments;
        std::map<std::string, std::string> environment;
    };

    /// Makes the program in an existing folder. The script runs at the end of each call, with the number of
    /// the call, counted from 1, in $call.
    explicit RecordingRclone(const std::filesystem::path& folder, const std::string& script = "exit 0");

    const std::filesystem::path& executable() const { return executable_; }
    std::vector<Call> calls() const;

  private:
    std::filesystem::path records_;
    std::filesystem::path executable_;
};

} // namespace marrowbox::test
