#pragma once

#include "AppSupport/RecordingDesktop.h"
#include "Marrowbox/AppStore/AppStore.h"
#include "Repository/BackupRepository.h"
#include "ScriptedMachine.h"
#include "ScriptedSource.h"
#include "Support/ScratchFolder.h"
#include "Support/VirtualTime.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace marrowbox::test {

/// 2026-03-02 10:00:00 in Berlin, a Monday.
inline constexpr Date mondayMorning{794'134'800};

/// A program without a screen: a store with a data folder of its own, one source for all units, disk images
/// on a scripted machine, a web that answers as the test says, and a clock that the test moves. Everything
/// runs on the test's thread and in an order that does not vary.
class StoreWorld {
  public:
    StoreWorld();
    StoreWorld(const StoreWorld&) = delete;
    StoreWorld& operator=(const StoreWorld&) = delete;
    ~StoreWorld();

    const ScratchFolder scratch;
    const fs::path home = fs::canonical(scratch.path());
    const fs::path data = home / "Data";
    const fs::path disk = home / "Disk"; ///< Where units keep their repositories; exists.
    Environment environment{{"MARROW_DATA_DIR", data.string()}};
    VirtualTime time{mondayMorning};
    RecordingDesktop desktop;
    std::shared_ptr<ScriptedSource> source = std::make_shared<ScriptedSource>();
    std::shared_ptr<ScriptedMachine> machine = std::make_shared<ScriptedMachine>();
    std::string zone = "Europe/Berlin";
    std::optional<fs::path> rclone = "/usr/bin/rclone";
    std::optional<fs::path> bundledClient; ///< A client file, unless the test takes it away.
    /// Answers every request to the web; may wait. Without one, every mail is taken.
    HTTPSend web;
    std::vector<HTTPRequest> requests; ///< As they came.
    std::shared_ptr<AppStore> store;

    /// Writes what the store finds at its start.
    void write(const AppConfiguration& configuration);
    /// What the store left on disk.
    AppConfiguration written() const;
    /// Stores a token for the account, as a sign-in would have left it.
    void addCredential(const GoogleAccount& account);
    void removeCredential(const GoogleAccount& account);

    /// Starts the program and lets its start come to its end.
    AppStore& start();
    /// Starts it on this configuration.
    AppStore& startWith(const AppConfiguration& configuration);
    /// Starts it without letting any work run.
    AppStore& begin();
    /// Ends the program as a kill would: nothing of it goes on.
    void end();
    /// Runs a piece of work of the store to its end.
    void finish(asio::awaitable<void> work);

    /// From now on sources wait before they list, until they are let go or their run is cancelled.
    void holdSources() { sourcesAreHeld_ = true; }
    void letSourcesGo();
    /// Starts a run of the first unit that waits before it lists, with a source that is held.
    void startHeldRun();

    const AppState& state() const { return store->state(); }
    const AppConfiguration& configuration() const { return *state().configuration; }
    const SyncUnit& unit(std::size_t index = 0) const { return configuration().units.at(index); }
    const RunRecord& lastRun() const { return configuration().runs.at(0); }
    std::string error() const { return state().errorMessage->value_or(""); }

    /// The subjects of the mails that were to go out, in their order, whatever became of them.
    std::vector<std::string> mailSubjects() const;
    /// The recipients of the same.
    std::vector<std::string> mailRecipients() const;

  private:
    class HeldSource;
    AppSurroundings surroundings();

    bool sourcesAreHeld_ = false;
    std::shared_ptr<asio::steady_timer> sourceGate_;
};

/// An account with leave to send mail.
GoogleAccount anna();
/// A unit of Anna's on the world's disk that runs daily at 09:00, next tomorrow.
SyncUnit dailyUnit(const StoreWorld& world, const std::string& name = "Papers");
/// Anna and her daily unit, with its repository made and her credential stored.
AppConfiguration oneUnit(StoreWorld& world);
/// Mail goes from Anna to Anna.
EmailSettings mailToAnna();
/// A unit's run that ended well at an instant and is to be mailed from Anna to Anna by the unit's policy.
RunRecord mailedRun(const SyncUnit& unit, Date endedAt);

} // namespace marrowbox::test
