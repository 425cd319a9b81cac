#pragma once

#include "Marrowbox/Platform/Bookmarks.h"
#include "Marrowbox/Platform/Desktop.h"
#include "Marrowbox/Platform/FileManager.h"
#include "Marrowbox/Platform/LoginItem.h"
#include "Marrowbox/Platform/ProgramLauncher.h"
#include "Marrowbox/Platform/VolumeWatch.h"
#include "Marrowbox/Platform/WakeWatch.h"

#include <QDBusConnection>
#include <chrono>
#include <functional>

namespace marrowbox {

/// Asks the user for a path with this message; absent when the user cancels.
using Chooser = std::function<asio::awaitable<std::optional<fs::path>>(std::string message)>;

/// All that a desktop on Linux is reached through.
struct LinuxSurroundings {
    QDBusConnection sessionBus;
    QDBusConnection systemBus;
    Environment environment;
    fs::path executable; ///< What starts with the user's session.
    Chooser chooseJSONFile;
    Chooser chooseFolder;
    BookmarkPlaces places;
    /// How long opening a page may hold the main thread to learn that it fails.
    std::chrono::milliseconds openingPatience{400};
};

/// The services of a Linux desktop. Each part that a machine lacks is done without, as far as that is honest.
/// The main thread.
class LinuxDesktop final : public Desktop {
  public:
    explicit LinuxDesktop(LinuxSurroundings surroundings);

    LoginItemStatus loginItemStatus() override;
    void registerLoginItem() override;
    void unregisterLoginItem() override;
    /// The desktop's own page where it has one, else the folder of the entries.
    void openLoginItemSettings() override;
    std::unique_ptr<Activity> beginActivity(std::string reason) override;
    void observe(DesktopEvents events) override;
    asio::awaitable<std::optional<fs::path>> chooseJSONFile(std::string message) override;
    asio::awaitable<std::optional<fs::path>> chooseFolder(std::string message) override;
    bool openPage(const std::string& address) override;
    void openFolder(const fs::path& folder) override;
    ByteString makeBookmark(const fs::path& folder) override;
    ResolvedBookmark resolveBookmark(const ByteString& bookmark) override;

  private:
    LinuxSurroundings surroundings_;
    LoginItem loginItem_;
    ProgramLauncher launcher_;
    FileManager fileManager_;
    std::unique_ptr<WakeWatch> wakeWatch_;
    std::unique_ptr<VolumeWatch> volumeWatch_;
};

} // namespace marrowbox
