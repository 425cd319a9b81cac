#include "EngineRun.h"

#include "Models/BackupError.h"
#include "Support/Coroutine.h"
#include "Support/Thrown.h"

#include <boost/asio/thread_pool.hpp>

namespace marrowbox::test {

namespace {

asio::awaitable<void> note(EngineRun* run, std::string text) {
    run->progress.push_back(text);
    if (run->onProgress)
        run->onProgress(text);
    co_return;
}

} // namespace

Snapshot EngineRun::operator()() {
    progress.clear();
    asio::thread_pool threads(2);
    BackupEngine engine(threads.get_executor(), [this] { return Date{now_++}; });
    SyncUnit unit;
    unit.id = repository->unitID();
    return await(engine.run(
        unit, repository.destination(), source,
        [this](std::string text) { return note(this, std::move(text)); }, stop.get_token()));
}

std::string EngineRun::refusal() {
    const auto manifests = contentsOf(repository / "Snapshots");
    const std::string message = thrown<BackupError>([&] { (*this)(); });
    EXPECT_EQ(contentsOf(repository / "Snapshots"), manifests);
    EXPECT_TRUE(fs::is_empty(repository / "Staging"));
    EXPECT_NO_THROW(RepositoryLock(repository / ".lock", "busy"));
    return message;
}

} // namespace marrowbox::test
