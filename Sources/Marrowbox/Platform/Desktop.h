#pragma once

#include "Models/ByteString.h"

#include <boost/asio/awaitable.hpp>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace marrowbox {

namespace asio = boost::asio;
namespace fs = std::filesystem;

/// Whether the program starts with the user's session.
enum class LoginItemStatus { disabled, enabled, requiresApproval };

/// Keeps the machine from idle sleep while it lives.
class Activity {
  public:
    virtual ~Activity() = default;
};

/// What a bookmark leads to. Stale means that the place was found under another path than the stored one, and
/// a fresh bookmark should be made.
struct ResolvedBookmark {
    fs::path path;
    bool isStale = false;

    friend bool operator==(const ResolvedBookmark&, const ResolvedBookmark&) = default;
};

/// What a desktop tells. Each is called on the main executor.
struct DesktopEvents {
    std::function<void()> machineWoke;
    std::function<void()> volumeAppeared;
    std::function<void()> volumeWentAway;
};

/// All that the program needs of the desktop that it runs on; a test brings one that records. Used on the
/// main executor. What cannot be done throws std::system_error or BackupError, unless it says otherwise.
class Desktop {
  public:
    virtual ~Desktop() = default;

    virtual LoginItemStatus loginItemStatus() = 0;
    virtual void registerLoginItem() = 0;
    virtual void unregisterLoginItem() = 0;
    /// Leads the user to where a login item is approved. A failure is ignored.
    virtual void openLoginItemSettings() = 0;

    /// Never fails: a machine that cannot be kept awake is used all the same.
    virtual std::unique_ptr<Activity> beginActivity(std::string reason) = 0;
    /// From now on, in place of earlier ones.
    virtual void observe(DesktopEvents events) = 0;

    /// Absent when the user cancels.
    virtual asio::awaitable<std::optional<fs::path>> chooseJSONFile(std::string message) = 0;
    virtual asio::awaitable<std::optional<fs::path>> chooseFolder(std::string message) = 0;

    /// Opens an address in the default browser; false when that fails.
    virtual bool openPage(const std::string& address) = 0;
    /// Shows a folder in the file browser. A failure is ignored, since nothing depends on it.
    virtual void openFolder(const fs::path& folder) = 0;

    /// Bytes that find the folder again, also when its volume is mounted elsewhere. Both may wait for a disk
    /// or a network share, and may be called on any thread.
    virtual ByteString makeBookmark(const fs::path& folder) = 0;
    virtual ResolvedBookmark resolveBookmark(const ByteString& bookmark) = 0;
};

} // namespace marrowbox
