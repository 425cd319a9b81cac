#include "GeneratedBackup.h"

#include "Program/GeneratedSource.h"
#include "Repository/BackupEngine.h"
#include "Support/Coroutine.h"

#include <boost/asio/thread_pool.hpp>
#include <gtest/gtest.h>

namespace marrowbox::test {

BackupRepository repositoryOf(const fs::path& destination) {
    return BackupRepository(destination, generatedUnit().id);
}

Snapshot backUp(const fs::path& destination, int generation) {
    asio::thread_pool threads(2);
    BackupEngine engine(threads.get_executor(), systemClock());
    return await(engine.run(
        generatedUnit(), destination, std::make_shared<GeneratedSource>(generation),
        [](std::string) -> asio::awaitable<void> { co_return; }, std::stop_token()));
}

int generationOf(const Snapshot& snapshot) {
    std::vector<SourceEntry> held;
    for (const auto& entry : snapshot.entries)
        held.push_back(entry->source);
    for (const int generation : {1, 2}) {
        std::vector<SourceEntry> listed = generatedEntries(generation);
        std::ranges::sort(listed, {}, [](const SourceEntry& entry) { return entry.path.string(); });
        if (held == listed)
            return generation;
    }
    return 0;
}

void expectRestored(const Snapshot& snapshot, const fs::path& folder) {
    for (const auto& entry : snapshot.entries) {
        const fs::path path = folder / entry->source.path.view();
        if (entry->source.isDirectory)
            EXPECT_TRUE(fs::is_directory(path)) << path;
        else
            EXPECT_TRUE(readFile(path) == generatedFile(entry->source).content) << path;
    }
}

std::vector<int> historyOf(const fs::path& destination) {
    std::vector<int> generations;
    for (const auto& snapshot : repositoryOf(destination).snapshots())
        generations.push_back(generationOf(snapshot));
    return generations;
}

std::vector<int> restoredHistory(const fs::path& destination) {
    const std::vector<Snapshot> snapshots = repositoryOf(destination).snapshots();
    for (const auto& snapshot : snapshots) {
        const fs::path folder = destination.string() + " " + snapshot.id.text();
        repositoryOf(destination).restore(snapshot, folder, {});
        expectRestored(snapshot, folder);
        fs::remove_all(folder);
    }
    return historyOf(destination);
}

} // namespace marrowbox::test
