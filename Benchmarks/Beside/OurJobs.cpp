#include "Beside/OurJobs.h"

#include "Measuring/ScratchRepository.h"
#include "Repository/BackupEngine.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <stdexcept>

namespace marrowbox::bench {

namespace {

constexpr double day = 86'400;

SyncUnit unitIn(const fs::path& folder) {
    SyncUnit unit;
    unit.id = repositoryIn(folder).unitID();
    unit.retentionDays = 1;
    return unit;
}

asio::awaitable<void> ignoreProgress(std::string) {
    co_return;
}

} // namespace

void makeOurs(const fs::path& folder) {
    fs::create_directories(folder);
    repositoryIn(folder).initialize();
}

void backUpOurs(const std::shared_ptr<BackupSource>& source, const fs::path& folder) {
    asio::thread_pool threads(2);
    BackupEngine engine(threads.get_executor(), systemClock());
    auto run = engine.run(unitIn(folder), folder, source, ignoreProgress, {});
    asio::co_spawn(threads, std::move(run), asio::use_future).get();
}

void restoreOurs(const fs::path& folder, const fs::path& target) {
    asio::thread_pool threads(2);
    BackupEngine engine(threads.get_executor(), systemClock());
    const Snapshot latest = repositoryIn(folder).latestSnapshot({}).value();
    auto restoring = engine.restore(latest, unitIn(folder), folder, target, {});
    asio::co_spawn(threads, std::move(restoring), asio::use_future).get();
}

void pruneOurs(const fs::path& folder) {
    asio::thread_pool threads(2);
    // Some days later all snapshots are older than the unit keeps them, and only the latest stays.
    BackupEngine engine(threads.get_executor(), [] { return systemClock()() + 3 * day; });
    asio::co_spawn(threads, engine.prune(unitIn(folder), folder), asio::use_future).get();
}

} // namespace marrowbox::bench
