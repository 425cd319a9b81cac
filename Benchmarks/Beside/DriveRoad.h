#pragma once

#include "Models/DriveLocation.h"
#include "Sandbox/SandboxServer.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace marrowbox::bench {

/// The road from a drive service to the disk: simulated services with a tree, a first backup of it by our
/// program, and `rclone copy` of it with the connection's flags that ours gives rclone.
class DriveRoad {
  public:
    struct Shape {
        std::size_t files = 150;
        std::size_t fileSize = 64 << 10;
        std::size_t largeFiles = 2;
        std::size_t largeSize = 32 << 20;
        std::string words() const;
    };

    /// Keeps what both need to connect in this folder.
    DriveRoad(std::filesystem::path folder, Shape shape);

    /// As text for a shell: a backup into an empty folder, which gets a repository.
    std::string backup(const std::filesystem::path& destination) const;
    /// As text for a shell; further flags may follow the common ones.
    std::string copy(const std::filesystem::path& target, const std::string& flags) const;

    /// Our part, in a process of its own; the arguments are those of its command.
    static void backUp(const std::vector<std::string>& arguments);

  private:
    sandbox::SandboxServer server_;
    std::filesystem::path folder_;
    DriveLocation source_;
    std::string environment_; // that of rclone copy
};

} // namespace marrowbox::bench
