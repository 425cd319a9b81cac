#pragma once

#include "SnapshotMount/DiskImageTool.h"
#include "SnapshotMount/SnapshotMountSystem.h"

#include <memory>
#include <string_view>

namespace marrowbox {

/// The disk images of macOS: `hdiutil` and its property lists. No state of its own; used on one executor at a
/// time.
class HdiutilTool final : public DiskImageTool {
  public:
    explicit HdiutilTool(std::shared_ptr<SnapshotMountSystem> machine) : machine_(std::move(machine)) {}

    OperatingSystem system() const override { return OperatingSystem::macOS; }
    asio::awaitable<bool> create(fs::path folder, std::string volumeName, fs::path image,
                                 std::stop_token stop) override;
    asio::awaitable<std::optional<fs::path>> attach(fs::path image, std::string volumeName,
                                                    std::stop_token stop) override;
    asio::awaitable<std::vector<Attachment>> attached(std::stop_token stop) override;
    asio::awaitable<bool> detach(Attachment attachment, std::stop_token stop) override;
    ToolCommand openFilesQuery(const fs::path& folder) const override;

    /// The first mount point of what was attached; none when nothing was mounted. Throws PropertyListError
    /// for a broken list and BackupError for one of another shape.
    static std::optional<fs::path> attachPoint(std::string_view output);
    /// The inventory, whole or not at all. Throws like attachPoint.
    static std::vector<Attachment> inventory(std::string_view output);

  private:
    asio::awaitable<ProcessRunner::Result> run(std::vector<std::string> arguments, std::stop_token stop);

    std::shared_ptr<SnapshotMountSystem> machine_;
};

} // namespace marrowbox
