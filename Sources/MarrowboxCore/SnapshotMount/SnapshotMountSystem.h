#pragma once

#include "Platform/Descriptor.h"
#include "Processes/ProcessRunner.h"

#include <filesystem>
#include <map>
#include <optional>
#include <stop_token>
#include <string>
#include <sys/types.h>
#include <vector>

namespace marrowbox {

/// The one seam between mounts and the machine: its tools, its list of mounts, its owners. Running a tool has
/// to be given; the other calls ask the machine unless they are overridden.
class SnapshotMountSystem {
  public:
    virtual ~SnapshotMountSystem() = default;

    /// Runs a tool as ProcessRunner does, and throws as it does. The environment is always empty.
    virtual asio::awaitable<ProcessRunner::Result> run(fs::path executable,
                                                       std::vector<std::string> arguments,
                                                       std::map<std::string, std::string> environment,
                                                       std::stop_token stop) = 0;

    /// Where file systems are mounted, without asking any of them; absent when the list cannot be read.
    virtual std::optional<std::vector<fs::path>> mountPoints() const;

    /// The owner of what stands at the path, without following a final link. Throws std::system_error.
    virtual uid_t owner(const fs::path& path) const;

    /// The user that this process runs as.
    virtual uid_t currentUser() const;

    /// The user's running processes that have all these texts among their arguments, each as a descriptor
    /// that becomes readable when the process ends.
    virtual std::vector<Descriptor> processesWithArguments(const std::vector<std::string>& arguments) const;
};

/// The machine that the program runs on. The settings with which a user's shell changes what the tools answer
/// are kept from them: whether work is deleted rests on the lists of processes and mounts.
class LiveMountSystem final : public SnapshotMountSystem {
  public:
    explicit LiveMountSystem(ProcessSurroundings surroundings);

    asio::awaitable<ProcessRunner::Result> run(fs::path executable, std::vector<std::string> arguments,
                                               std::map<std::string, std::string> environment,
                                               std::stop_token stop) override;

  private:
    ProcessSurroundings surroundings_;
};

} // namespace marrowbox
