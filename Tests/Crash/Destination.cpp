#include "Destination.h"

#include "Program/GeneratedSource.h"
#include "Repository/BackupEngine.h"
#include "Support/Coroutine.h"

#include <boost/asio/thread_pool.hpp>
#include <fstream>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

constexpr auto otherUnit = "0E984725-C51C-4BF4-9960-E1C80E27ABA0";
constexpr auto deadRun = "16FD2706-8BAF-433B-82EB-8C7FADA847DA";

void plantFile(const fs::path& path, std::string_view text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

/// Memory where there is such a folder: what is tested does not depend on a disk, and hundreds of runs need
/// not wait for one.
fs::path placeForRuns() {
    const fs::path memory = "/dev/shm";
    return fs::is_directory(memory) ? memory : fs::temp_directory_path();
}

/// Where files lie that a run must leave alone.
std::vector<fs::path> foreignPlaces(const fs::path& destination, const fs::path& root) {
    return {destination / "Holiday.txt", root.parent_path() / "Notes.txt", root.parent_path() / otherUnit,
            root / "Keep.txt",           root / "Snapshots" / "Notes.txt", root / "Staging" / deadRun};
}

void plantForeignFiles(const fs::path& destination, const fs::path& root) {
    for (const fs::path& place : foreignPlaces(destination, root))
        if (place.extension() == ".txt")
            plantFile(place, "The user's own.");
    for (const char* name : {"Repository.json", ".lock", "Objects/00/object", "Snapshots/x.json"})
        plantFile(root.parent_path() / otherUnit / name, "Another unit's.");
    plantFile(root / "Staging" / deadRun / "Folder" / "part", "half a fi");
}

std::string described(const fs::path& path) {
    const auto status = linkStatus(path);
    if (!status)
        return "missing";
    std::string text = std::to_string(status->st_mode) + " " + std::to_string(status->st_mtim.tv_sec) + "." +
                       std::to_string(status->st_mtim.tv_nsec);
    return S_ISREG(status->st_mode) ? text + " " + readFile(path) : text;
}

void expectWholeObjects(const Snapshot& snapshot, const BackupRepository& repository) {
    for (const auto& entry : snapshot.entries) {
        if (entry->source.isDirectory)
            continue;
        const GeneratedFile& file = generatedFile(entry->source);
        ASSERT_TRUE(entry->objectHash) << entry->source.path;
        EXPECT_EQ(entry->objectHash->text(), file.sha256) << entry->source.path;
        EXPECT_TRUE(readFile(repository.objectURL(*entry->objectHash)) == file.content) << entry->source.path;
    }
}

void expectGeneration(const Snapshot& snapshot, int generation) {
    std::vector<SourceEntry> listed = generatedEntries(generation);
    std::ranges::sort(listed, {}, [](const SourceEntry& entry) { return entry.path.string(); });
    std::vector<SourceEntry> held;
    for (const auto& entry : snapshot.entries)
        held.push_back(entry->source);
    EXPECT_EQ(held, listed) << "generation " << generation;
}

} // namespace

Destination::Destination(int generations) : scratch_(placeForRuns()) {
    fs::create_directory(path());
    repository().initialize();
    plantForeignFiles(path(), repository().root());
    for (int generation = 1; generation <= generations; ++generation)
        backUp(generation);
    foreignFilesBefore_ = foreignFiles();
}

Destination::Destination(const Destination& other) : scratch_(placeForRuns()) {
    fs::copy(other.path(), path(), fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    foreignFilesBefore_ = foreignFiles();
}

BackupRepository Destination::repository() const {
    return BackupRepository(path(), generatedUnit().id);
}

Snapshot Destination::backUp(int generation) const {
    asio::thread_pool threads(2);
    BackupEngine engine(threads.get_executor(), systemClock());
    return await(engine.run(
        generatedUnit(), path(), std::make_shared<GeneratedSource>(generation),
        [](std::string) -> asio::awaitable<void> { co_return; }, std::stop_token()));
}

void Destination::expectHistory(const std::vector<int>& generations) const {
    const std::vector<Snapshot> snapshots = repository().snapshots();
    ASSERT_EQ(snapshots.size(), generations.size());
    for (std::size_t index = 0; index < snapshots.size(); ++index) {
        expectGeneration(snapshots[index], generations[index]);
        expectWholeObjects(snapshots[index], repository());
    }
}

void Destination::expectForeignFilesUntouched() const {
    EXPECT_EQ(foreignFiles(), foreignFilesBefore_);
}

std::vector<std::string> Destination::workFolders() const {
    std::vector<std::string> names = directoryNames(repository().root() / "Staging");
    std::erase(names, deadRun);
    return names;
}

std::map<std::string, std::string> Destination::foreignFiles() const {
    std::map<std::string, std::string> files;
    for (const fs::path& place : foreignPlaces(path(), repository().root())) {
        files[place] = described(place);
        if (!fs::is_directory(place))
            continue;
        for (const auto& entry : fs::recursive_directory_iterator(place))
            files[entry.path()] = described(entry.path());
    }
    return files;
}

} // namespace marrowbox::test
