#include "Processes/RcloneDriveSource.h"

#include "Models/BackupError.h"
#include "Models/BackupPaths.h"
#include "Models/Uuid.h"
#include "Platform/Files.h"
#include "Processes/ProcessRunner.h"
#include "Processes/RcloneCommand.h"

#include <algorithm>
#include <system_error>
#include <unistd.h>

namespace marrowbox {

namespace {

bool isExecutableFile(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored) && ::access(path.c_str(), X_OK) == 0;
}

/// Makes the folders that the files of a batch go into. The paths are judged once more, since this writes to
/// the disk.
void makeParentFolders(std::span<const SourceEntry> batch, const fs::path& folder) {
    for (const auto& entry : batch) {
        BackupPaths::validate(entry.path);
        if (!entry.isDirectory)
            makeDirectories((folder / entry.path.view()).parent_path());
    }
}

/// A folder by a path that rclone takes as it stands: its own or, where rclone would write elsewhere, that of
/// a link to it, which goes away with the object.
class ReachableFolder {
  public:
    ReachableFolder(const fs::path& folder, const fs::path& temporaryFolder)
        : isLink_(RcloneCommand::isRewritten(folder.string())), path_(folder) {
        if (!isLink_)
            return;
        path_ = temporaryFolder / ("marrowbox-folder-" + Uuid::random().text());
        fs::create_directory_symlink(fs::absolute(folder), path_);
    }
    ReachableFolder(const ReachableFolder&) = delete;
    ReachableFolder& operator=(const ReachableFolder&) = delete;
    ~ReachableFolder() {
        std::error_code ignored;
        if (isLink_)
            fs::remove(path_, ignored);
    }

    const fs::path& path() const { return path_; }

  private:
    bool isLink_;
    fs::path path_;
};

void moveIntoPlace(std::span<const RcloneCommand::Item> items) {
    for (const auto& item : items)
        if (item.fetchedTo != item.target)
            fs::rename(item.fetchedTo, item.target);
}

} // namespace

RcloneDriveSource::RcloneDriveSource(DriveAPI api, DriveLocation location, fs::path executable,
                                     ProcessSurroundings surroundings)
    : api_(std::move(api)), location_(std::move(location)), executable_(std::move(executable)),
      surroundings_(std::move(surroundings)) {
}

std::optional<fs::path> RcloneDriveSource::locate() {
    std::error_code ignored;
    return locate(candidates(fs::read_symlink("/proc/self/exe", ignored)));
}

std::optional<fs::path> RcloneDriveSource::locate(std::span<const fs::path> candidates) {
    const auto found = std::ranges::find_if(candidates, isExecutableFile);
    if (found == candidates.end())
        return std::nullopt;
    return *found;
}

std::vector<fs::path> RcloneDriveSource::candidates(const fs::path& program) {
    return {
        (program.parent_path() / "../libexec/marrowbox/rclone").lexically_normal(),
        "/opt/homebrew/bin/rclone",
        "/usr/local/bin/rclone",
        "/usr/bin/rclone",
    };
}

asio::awaitable<std::vector<SourceEntry>> RcloneDriveSource::inventory(std::stop_token stop) {
    return api_.inventory(location_, std::move(stop));
}

asio::awaitable<void> RcloneDriveSource::download(std::vector<SourceEntry> entries, fs::path folder,
                                                  std::stop_token stop) {
    for (std::size_t first = 0; first < entries.size(); first += RcloneCommand::batchSize) {
        const auto count = std::min(RcloneCommand::batchSize, entries.size() - first);
        const auto begin = entries.begin() + static_cast<std::ptrdiff_t>(first);
        std::vector<SourceEntry> batch(begin, begin + static_cast<std::ptrdiff_t>(count));
        co_await downloadBatch(std::move(batch), folder, stop);
    }
}

asio::awaitable<void> RcloneDriveSource::downloadBatch(std::vector<SourceEntry> batch, fs::path folder,
                                                       std::stop_token stop) {
    const auto token = co_await api_.auth->token(api_.accountID, stop);
    auto environment = RcloneCommand::environment(api_.auth->client(), token, location_);
    makeParentFolders(batch, folder);
    const ReachableFolder reachable(folder, surroundings_.temporaryFolder);
    const auto items = RcloneCommand::items(batch, reachable.path());
    auto arguments = RcloneCommand::arguments(items);
    const auto result = co_await ProcessRunner::run(executable_, std::move(arguments), std::move(environment),
                                                    surroundings_, stop);
    if (result.status != 0)
        throw BackupError("rclone could not download this batch (exit " + std::to_string(result.status) +
                          "). Check connectivity, download permissions, and Google export limits. Earlier "
                          "backups are safe.");
    moveIntoPlace(items);
}

} // namespace marrowbox
