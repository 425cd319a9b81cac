#pragma once

#include "Models/SourceEntry.h"

#include <boost/asio/awaitable.hpp>
#include <filesystem>
#include <stop_token>
#include <vector>

namespace marrowbox {

namespace asio = boost::asio;
namespace fs = std::filesystem;

/// Where a backup's files come from, as the engine sees it. Both operations are awaited on the engine's own
/// executor and come back to it by themselves, however much they do elsewhere. They throw whatever stopped
/// them, which then stops the run unchanged, and CancellationError when a stop is requested.
class BackupSource {
  public:
    virtual ~BackupSource() = default;

    /// Every file and folder under the source's root, in any order. A run asks twice; as long as the source
    /// does not change, both lists hold the same entries.
    virtual asio::awaitable<std::vector<SourceEntry>> inventory(std::stop_token stop) = 0;

    /// Fetches files, never folders, into an existing work folder. When it returns, the bytes of each entry
    /// lie at folder / entry.path, parent folders included. Gives up promptly when a stop is requested;
    /// whatever it leaves in the folder then is removed by the caller.
    virtual asio::awaitable<void> download(std::vector<SourceEntry> entries, fs::path folder,
                                           std::stop_token stop) = 0;
};

} // namespace marrowbox
