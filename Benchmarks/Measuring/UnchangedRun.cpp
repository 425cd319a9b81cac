#include "Measuring/UnchangedRun.h"

#include "Measuring/Manifests.h"
#include "Measuring/Measure.h"
#include "Repository/BackupEngine.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <stdexcept>

namespace marrowbox::bench {

namespace {

SnapshotEntry runFile(std::size_t number) {
    SnapshotEntry entry = manifestFile(number);
    // A few sizes, so that the objects can be links of a few files.
    entry.storedSize = static_cast<std::int64_t>(number % 20) * 4096;
    entry.source.size = entry.storedSize;
    return entry;
}

asio::awaitable<void> ignoreProgress(std::string) {
    co_return;
}

} // namespace

Snapshot publishManyFiles(const ScratchRepository& scratch, std::size_t fileCount) {
    Snapshot snapshot;
    snapshot.id = Uuid::random();
    snapshot.unitID = scratch.repository().unitID();
    snapshot.completedAt = {796953661.75};
    for (std::size_t number = 0; number < fileCount; ++number)
        snapshot.entries.emplace_back(runFile(number));
    scratch.publish(snapshot);
    scratch.placeObjects(snapshot);
    return snapshot;
}

asio::awaitable<std::vector<SourceEntry>> ManyFilesSource::inventory(std::stop_token) {
    std::vector<SourceEntry> listing;
    ownSeconds_ += seconds([&] {
        TextPool types; // as the listing of a drive holds its few media types once
        for (std::size_t number = 0; number < fileCount_; ++number) {
            listing.push_back(runFile(number).source);
            listing.back().mimeType = types.shared(listing.back().mimeType);
        }
    });
    co_return listing;
}

asio::awaitable<void> ManyFilesSource::download(std::vector<SourceEntry>, fs::path, std::stop_token) {
    throw std::logic_error("Nothing changed, and yet something is downloaded.");
    co_return;
}

double unchangedRunSeconds(const BackupRepository& repository, const fs::path& destination,
                           std::size_t fileCount) {
    asio::thread_pool threads(2);
    BackupEngine engine(threads.get_executor(), systemClock());
    const auto source = std::make_shared<ManyFilesSource>(fileCount);
    SyncUnit unit;
    unit.id = repository.unitID();
    Uuid published;
    const double all = seconds([&] {
        auto run = engine.run(unit, destination, source, ignoreProgress, {});
        const Snapshot snapshot = asio::co_spawn(threads, std::move(run), asio::use_future).get();
        published = snapshot.id;
        if (snapshot.summary.unchanged != static_cast<std::int64_t>(fileCount))
            throw std::logic_error("A file counts as changed.");
    });
    fs::remove(repository.manifest(published));
    return all - source->ownSeconds();
}

} // namespace marrowbox::bench
