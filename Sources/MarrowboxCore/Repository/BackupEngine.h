#pragma once

#include "Models/Snapshot.h"
#include "Models/SyncUnit.h"
#include "Platform/Clock.h"
#include "Repository/BackupSource.h"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/strand.hpp>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>

namespace marrowbox {

/// Told what a run is doing, in words for the user. Called and awaited on the engine's executor.
using Progress = std::function<asio::awaitable<void>(std::string)>;

/// The jobs on repositories. One engine serves all units: its work runs one piece at a time on an executor of
/// its own, and jobs interleave only where one waits for its source or its progress. Two jobs on one
/// repository are kept apart by the repository's lock. Operations may be awaited on any executor and come
/// back to it. They throw BackupError with a finished sentence, LockBusyError, CancellationError, or whatever
/// the source or the system raised. The engine must outlive its operations.
class BackupEngine {
  public:
    BackupEngine(asio::any_io_executor executor, Clock clock);

    /// Makes a snapshot of the source as it is now, which holds one consistent state of it, and publishes it;
    /// whatever fails leaves the history as it was. The unit's repository exists at the destination already.
    asio::awaitable<Snapshot> run(SyncUnit unit, fs::path destination, std::shared_ptr<BackupSource> source,
                                  Progress progress, std::stop_token stop);

    /// Applies the unit's retention to its repository. Does nothing at all where history is kept for ever.
    asio::awaitable<void> prune(SyncUnit unit, fs::path destination);
    /// Writes a snapshot out into a folder that does not exist yet. Cancellation leaves the folder as far as
    /// it got, like any failure.
    asio::awaitable<void> restore(Snapshot snapshot, SyncUnit unit, fs::path destination, fs::path target,
                                  std::stop_token stop);

  private:
    asio::strand<asio::any_io_executor> strand_;
    Clock clock_;
};

} // namespace marrowbox
