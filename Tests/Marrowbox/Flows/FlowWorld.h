#pragma once

#include "Browser.h"
#include "Computer.h"
#include "Marrowbox/MarrowboxApp/MarrowboxApp.h"
#include "Models/AppConfiguration.h"
#include "ScreenSupport/WindowUser.h"

#include <deque>
#include <gmock/gmock.h>
#include <memory>
#include <optional>

namespace marrowbox::test {

/// The whole program, in a real window, on a computer that knows nothing but the simulated Google; and a
/// person who uses it with mouse and keyboard. What they choose in the dialogs of the desktop is told
/// beforehand; all else are clicks and keys. What the program did is read where it lies: on the disk, at
/// Google and on the desktop. A test fails when QML warns.
class Flow : public testing::Test {
  protected:
    Flow();
    ~Flow() override;

    /// Starts the program and waits for its window.
    void startProgram();
    void endProgram();
    MarrowboxApp& program() { return *program_; }
    QQuickWindow& window() { return *program_->window(); }
    bool hasEnded() const { return hasEnded_; }

    /// Answers the next dialog; nothing means that the person cancels it.
    void choose(std::optional<fs::path> answer) { answers_.push_back(std::move(answer)); }
    /// The messages of the dialogs so far.
    const std::vector<std::string>& asked() const { return asked_; }
    /// Waits for the page on which Google asks, answers it, and gives the last page that the browser shows.
    QString answerGoogle(const QString& answer);
    /// The same for an account that is connected in one go.
    void allow();

    /// What the program has written.
    AppConfiguration configuration() const;
    bool comesToBeWritten(const std::function<bool(const AppConfiguration&)>& holds);
    /// Waits until the newest run has come to this end, and nothing is under way.
    bool comesToEnd(RunOutcome outcome);

    /// Picks a choice from the list of a picker.
    void pick(const QString& picker, const QString& choice);
    /// Replaces what stands in a field.
    void fill(const QString& field, const QString& text);
    /// Connects the account, and makes a backup of the folder of this name in My Drive.
    void connectAccount();
    void makeBackup(const QString& folder);

    Computer computer;
    sandbox::SandboxServer& google = computer.google;
    fs::path disk = computer.folder("Disk");
    bool bringsClient = true; ///< The installation brings an OAuth client along.
    double hoursAhead = 0;    ///< Of the machine's clock.
    WindowUser user{{}, std::chrono::seconds(30)};

  private:
    asio::awaitable<std::optional<fs::path>> answer(std::string message);

    std::deque<std::optional<fs::path>> answers_;
    std::vector<std::string> asked_;
    std::size_t answeredPages_ = 0;
    Browser browser_{computer};
    bool hasEnded_ = false;
    std::unique_ptr<MarrowboxApp> program_;
};

} // namespace marrowbox::test
