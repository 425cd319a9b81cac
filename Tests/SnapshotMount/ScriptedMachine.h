#pragma once

#include "SnapshotMount/DiskImageTool.h"
#include "SnapshotMount/SnapshotMountSystem.h"

#include <boost/asio/steady_timer.hpp>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace marrowbox::test {

/// Holds a tool's run until it is let go.
struct Gate {
    explicit Gate(const asio::any_io_executor& executor)
        : timer(executor, asio::steady_timer::time_point::max()) {}
    asio::steady_timer timer;
    bool isReached = false;
    void letGo() { timer.cancel(); }
};

/// A machine of macOS as a script tells it. Left alone, its tools do what the real ones do, on images that
/// exist only here; each call can be answered differently, and every call is kept.
class ScriptedMachine final : public SnapshotMountSystem {
  public:
    using Result = ProcessRunner::Result;
    /// May throw, as a tool that cannot be started does.
    using Answer = std::function<Result(const ToolCommand&)>;

    asio::awaitable<Result> run(fs::path executable, std::vector<std::string> arguments,
                                std::map<std::string, std::string> environment,
                                std::stop_token stop) override;
    std::optional<std::vector<fs::path>> mountPoints() const override { return mounted; }
    uid_t owner(const fs::path& path) const override;

    /// Answers every call that begins with these words, such as "hdiutil info", from now on.
    void answer(const std::string& call, Answer with) { answers_[call] = std::move(with); }
    void answer(const std::string& call, Result with) {
        answer(call, [with](const ToolCommand&) { return with; });
    }
    /// Answers the next such call; several of them in turn.
    void answerOnce(const std::string& call, Answer with) { once_[call].push_back(std::move(with)); }
    void answerOnce(const std::string& call, Result with) {
        answerOnce(call, [with](const ToolCommand&) { return with; });
    }
    /// From now on every tool fails to start, as if the machine had gone.
    void loseTools() { isLost_ = true; }
    /// Holds the calls that begin with these words.
    std::shared_ptr<Gate> hold(const std::string& call, const asio::any_io_executor& executor);
    void release(const std::string& call) { gates_.erase(call); }
    void releaseAll() { gates_.clear(); }
    /// What the machine does when nothing else is told.
    Result usual(const ToolCommand& command);

    /// How many calls begin with these words.
    std::size_t count(const std::string& call) const;

    std::vector<ToolCommand> calls;
    std::vector<Attachment> attached;                              ///< What hdiutil reports.
    std::optional<std::vector<fs::path>> mounted{{fs::path("/")}}; ///< The list of mounts.
    std::map<fs::path, uid_t> owners;                              ///< Where they differ from the disk's.

  private:
    bool isLost_ = false;
    std::map<std::string, Answer> answers_;
    std::map<std::string, std::vector<Answer>> once_;
    std::map<std::string, std::shared_ptr<Gate>> gates_;
};

/// The property list that hdiutil prints for these images.
std::string inventoryText(const std::vector<Attachment>& images);

} // namespace marrowbox::test
