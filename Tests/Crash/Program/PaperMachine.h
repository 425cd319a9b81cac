#pragma once

#include "SnapshotMount/DiskImageTool.h"
#include "SnapshotMount/SnapshotMountSystem.h"

#include <filesystem>
#include <map>
#include <stop_token>
#include <string>
#include <vector>

namespace marrowbox::test {

/// A Linux machine whose mounts stand in a file and nowhere else, so that hundreds of programs can be stopped
/// in the middle of a mount in seconds, each beginning with the mounts that the one before left.
class PaperMachine final : public SnapshotMountSystem {
  public:
    /// A file that does not exist is a machine without mounts.
    explicit PaperMachine(fs::path mountList) : mountList_(std::move(mountList)) {}

    asio::awaitable<ProcessRunner::Result> run(fs::path executable, std::vector<std::string> arguments,
                                               std::map<std::string, std::string> environment,
                                               std::stop_token stop) override;
    std::optional<std::vector<fs::path>> mountPoints() const override { return {{"/"}}; }
    std::vector<Descriptor> processesWithArguments(const std::vector<std::string>&) const override {
        return {};
    }

    std::vector<Attachment> mounts() const;
    void setMounts(const std::vector<Attachment>& mounts) const;

  private:
    int mount(const fs::path& image, const fs::path& mountPoint) const;
    int unmount(const fs::path& mountPoint) const;

    fs::path mountList_;
};

} // namespace marrowbox::test
