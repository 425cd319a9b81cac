#pragma once

#include "Marrowbox/Platform/Desktop.h"

#include <boost/asio/steady_timer.hpp>
#include <deque>
#include <exception>
#include <map>
#include <vector>

namespace marrowbox::test {

/// A desktop that does nothing and remembers what it was asked for. A test sets how it answers, before or
/// between the calls, and plays the machine and the user. Used on one thread.
///
///     RecordingDesktop desktop;
///     desktop.registrationFailure = std::make_exception_ptr(BackupError("No."));
///     …
///     EXPECT_THAT(desktop.calls(), ElementsAre("registerLoginItem"));
class RecordingDesktop : public Desktop {
  public:
    RecordingDesktop();
    ~RecordingDesktop() override;

    /// All calls since the start or the last forget(), in order: the name, and after a blank what was given,
    /// such as "openPage https://a.example/". The end of an activity counts as "endActivity REASON".
    const std::vector<std::string>& calls() const;
    /// How many of them begin with this name.
    std::size_t count(std::string_view name) const;
    void forget();
    /// The reasons of the activities that live.
    const std::vector<std::string>& activities() const;

    // How it answers.
    LoginItemStatus loginItem = LoginItemStatus::disabled;
    /// What the login item becomes when it is registered.
    LoginItemStatus registered = LoginItemStatus::enabled;
    std::exception_ptr statusFailure;       ///< Of asking for it.
    std::exception_ptr registrationFailure; ///< Of registering and of unregistering.
    bool opensPages = true;
    std::exception_ptr makingFailure; ///< Of a bookmark.
    /// Where bookmarks lead. One that was made here and is not named leads to its own folder, not stale; any
    /// other is refused.
    std::map<std::string, ResolvedBookmark> resolutions;
    std::map<std::string, std::exception_ptr> resolutionFailures;
    /// The bytes that makeBookmark gives for a folder.
    static ByteString bookmark(const fs::path& folder);

    /// Answers a chooser that is open, else the next one; nothing means that the user cancels. A chooser
    /// without an answer stays open.
    void choose(std::optional<fs::path> answer);
    /// Whether the user looks at a chooser.
    bool isChoosing() const;

    // What the machine does.
    void wake() const;
    void makeVolumeAppear() const;
    void takeVolumeAway() const;

    LoginItemStatus loginItemStatus() override;
    void registerLoginItem() override;
    void unregisterLoginItem() override;
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
    struct Memory;
    class RecordedActivity;

    asio::awaitable<std::optional<fs::path>> nextAnswer();

    std::shared_ptr<Memory> memory_; // an activity may outlive the desktop
    DesktopEvents events_;
    std::deque<std::optional<fs::path>> answers_;
    std::weak_ptr<asio::steady_timer> open_; ///< Of the work that waits, and gone with it.
};

} // namespace marrowbox::test
