#pragma once

#include "Demo/Browser.h"
#include "Marrowbox/Platform/Desktop.h"

#include <memory>
#include <vector>

namespace marrowbox::demo {

/// The desktop of the demonstration: a person who signs in, who always chooses the same folder, and whose
/// computer can be put to sleep. On the store's main executor.
class StageDesktop final : public Desktop {
  public:
    /// The person imports this client file, and restores into this folder.
    StageDesktop(asio::any_io_executor main, ProcessSurroundings surroundings, fs::path clientFile,
                 fs::path chosenFolder);

    /// The browser that was opened last; null before.
    const std::shared_ptr<Browser>& browser() const { return browser_; }
    void closeBrowserOn(std::stop_token stop) { browserStop_ = std::move(stop); }
    /// The folders that were shown to the person, in their order.
    const std::vector<fs::path>& shownFolders() const { return shownFolders_; }
    /// The computer wakes.
    void wake() const;

    LoginItemStatus loginItemStatus() override { return LoginItemStatus::disabled; }
    void registerLoginItem() override {}
    void unregisterLoginItem() override {}
    void openLoginItemSettings() override {}
    std::unique_ptr<Activity> beginActivity(std::string reason) override;
    void observe(DesktopEvents events) override { events_ = std::move(events); }
    asio::awaitable<std::optional<fs::path>> chooseJSONFile(std::string message) override;
    asio::awaitable<std::optional<fs::path>> chooseFolder(std::string message) override;
    bool openPage(const std::string& address) override;
    void openFolder(const fs::path& folder) override { shownFolders_.push_back(folder); }
    /// Units of the demonstration go by their path.
    ByteString makeBookmark(const fs::path&) override { return {}; }
    ResolvedBookmark resolveBookmark(const ByteString&) override { return {}; }

  private:
    asio::any_io_executor main_;
    ProcessSurroundings surroundings_;
    fs::path clientFile_;
    fs::path chosenFolder_;
    std::stop_token browserStop_;
    std::shared_ptr<Browser> browser_;
    std::vector<fs::path> shownFolders_;
    DesktopEvents events_;
};

} // namespace marrowbox::demo
