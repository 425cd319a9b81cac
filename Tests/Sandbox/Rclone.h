#pragma once

#include "Sandbox/SandboxServer.h"
#include "Support/ScratchFolder.h"

#include <map>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace marrowbox::test {

/// The real rclone, started against a sandbox with the arguments and the environment of a download batch.
class Rclone {
  public:
    explicit Rclone(sandbox::SandboxServer& sandbox);
    Rclone(const Rclone&) = delete;
    Rclone& operator=(const Rclone&) = delete;
    ~Rclone();

    void setToken(const sandbox::SandboxToken& token, const std::string& expiry = "2099-01-01T00:00:00Z");
    void setTeamDrive(const std::string& id);
    /// Items as pairs of id and name below folder(); gives the exit status.
    int copy(const std::vector<std::pair<std::string, std::string>>& items);

    /// The same in two steps; a signal's end is told as the signal's negative number.
    void start(const std::vector<std::pair<std::string, std::string>>& items);
    void terminate() const;
    int wait();

    const ScratchFolder& folder() const { return folder_; }
    /// What it wrote to standard error.
    std::string complaint() const;

  private:
    ScratchFolder folder_;
    ScratchFolder state_;
    std::map<std::string, std::string> environment_;
    pid_t child_ = 0;
};

} // namespace marrowbox::test
