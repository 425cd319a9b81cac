#include "Repository/BackupEngine.h"

#include "Repository/BackupRun.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace marrowbox {

BackupEngine::BackupEngine(asio::any_io_executor executor, Clock clock)
    : strand_(asio::make_strand(std::move(executor))), clock_(std::move(clock)) {
}

asio::awaitable<Snapshot> BackupEngine::run(SyncUnit unit, fs::path destination,
                                            std::shared_ptr<BackupSource> source, Progress progress,
                                            std::stop_token stop) {
    RunOrder order{.repository = BackupRepository(destination, unit.id),
                   .source = std::move(source),
                   .progress = std::move(progress),
                   .clock = clock_,
                   .stop = std::move(stop)};
    Snapshot snapshot = co_await asio::co_spawn(strand_, runBackup(std::move(order)), asio::use_awaitable);
    co_return snapshot;
}

} // namespace marrowbox
