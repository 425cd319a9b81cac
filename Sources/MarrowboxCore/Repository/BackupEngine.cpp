#include "Repository/BackupEngine.h"

#include "Repository/BackupRepository.h"
#include "Repository/BackupRun.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace marrowbox {

namespace {

constexpr double secondsPerDay = 86400;

asio::awaitable<void> pruneHere(BackupRepository repository, std::int64_t retentionDays, Clock clock) {
    const RepositoryLock lock = repository.lock();
    repository.prune(clock() - static_cast<double>(retentionDays) * secondsPerDay);
    co_return;
}

asio::awaitable<void> restoreHere(BackupRepository repository, Snapshot snapshot, fs::path target,
                                  std::stop_token stop) {
    const RepositoryLock lock = repository.lock();
    repository.restore(snapshot, target, std::move(stop));
    co_return;
}

} // namespace

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

asio::awaitable<void> BackupEngine::prune(SyncUnit unit, fs::path destination) {
    const std::int64_t retentionDays = unit.retentionDays.value_or(0);
    if (retentionDays < 1)
        co_return;
    BackupRepository repository(destination, unit.id);
    co_await asio::co_spawn(strand_, pruneHere(std::move(repository), retentionDays, clock_),
                            asio::use_awaitable);
}

asio::awaitable<void> BackupEngine::restore(Snapshot snapshot, SyncUnit unit, fs::path destination,
                                            fs::path target, std::stop_token stop) {
    BackupRepository repository(destination, unit.id);
    co_await asio::co_spawn(
        strand_, restoreHere(std::move(repository), std::move(snapshot), std::move(target), std::move(stop)),
        asio::use_awaitable);
}

} // namespace marrowbox
