#pragma once

#include "DriveAPI/DriveAPI.h"
#include "Models/DriveLocation.h"
#include "Processes/ProcessSurroundings.h"
#include "Repository/BackupSource.h"

#include <filesystem>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

namespace marrowbox {

/// A Drive folder as a source of backups: DriveAPI lists it, and rclone fetches the bytes of chosen items.
/// The tool gets no configuration file and no view of the tree, so what a run holds never depends on what it
/// thinks a folder holds. A value without mutable state; any thread.
class RcloneDriveSource : public BackupSource {
  public:
    RcloneDriveSource(DriveAPI api, DriveLocation location, std::filesystem::path executable,
                      ProcessSurroundings surroundings = ProcessSurroundings::ofThisProcess());

    /// The rclone to run; absent when there is none in any known place. The search path is not consulted.
    static std::optional<std::filesystem::path> locate();
    /// The first of these paths that is a file which may be executed.
    static std::optional<std::filesystem::path> locate(std::span<const std::filesystem::path> candidates);
    /// Where rclone may stand, best place first, for a program at this path: the program's own helper folder,
    /// then where package managers put it.
    static std::vector<std::filesystem::path> candidates(const std::filesystem::path& program);

    asio::awaitable<std::vector<SourceEntry>> inventory(std::stop_token stop) override;

    /// Fetches in batches, one call of the tool after another, each with a token of its own. The first
    /// failure ends it and leaves the files of earlier batches. Throws BackupError for an unsafe path, before
    /// that batch's call, and for a call that fails; failures of the token, of making folders and of starting
    /// the tool pass through unchanged. Whether the files are as they should be is not looked at.
    asio::awaitable<void> download(std::vector<SourceEntry> entries, fs::path folder,
                                   std::stop_token stop) override;

  private:
    asio::awaitable<void> downloadBatch(std::vector<SourceEntry> batch, fs::path folder,
                                        std::stop_token stop);

    DriveAPI api_;
    DriveLocation location_;
    std::filesystem::path executable_;
    ProcessSurroundings surroundings_;
};

} // namespace marrowbox
