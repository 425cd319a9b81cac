#include "Repository/WholeHistory.h"

#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Thrown.h"
#include "TestRepository.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <span>

namespace marrowbox {

namespace {

using namespace test;

constexpr int snapshotCount = 70; // enough for several threads

/// A history in which files come, change, become folders and go, and in which not every manifest is in the
/// form that the program writes.
std::vector<Snapshot> publishChangingHistory(const TestRepository& repository) {
    std::vector<Snapshot> history;
    for (int generation = 0; generation < snapshotCount; ++generation) {
        std::vector<SnapshotEntry> entries;
        for (int number = 0; number < 30; ++number) {
            const std::string path = "File " + std::to_string(10 + number);
            const int content = number % 7 == generation % 7 ? generation : generation / 10;
            if ((number + generation) % 13 == 0)
                entries.push_back(folder(path));
            else if ((number + generation) % 11 != 0)
                entries.push_back(stored(repository, path, std::to_string(content)));
        }
        history.push_back(repository.publish(std::move(entries), generation));
        if (generation % 9 == 4)
            writeAll(openFile(repository->manifest(history.back().id), O_WRONLY | O_TRUNC),
                     encodeJSON(history.back(), JSONStyle::compact));
    }
    return history;
}

using EntrySet = std::set<std::string>;

EntrySet entriesOf(const WholeHistory& history) {
    EntrySet entries;
    for (const SnapshotEntry* entry : history.retainedEntries())
        entries.insert(encodeJSON(*entry, JSONStyle::compact));
    return entries;
}

EntrySet entriesOf(std::span<const Snapshot> snapshots) {
    EntrySet entries;
    for (const Snapshot& snapshot : snapshots)
        for (const auto& entry : snapshot.entries)
            entries.insert(encodeJSON(*entry, JSONStyle::compact));
    return entries;
}

} // namespace

TEST(WholeHistory, saysTheSameAsTheOrdinaryReading) {
    const TestRepository repository;
    std::vector<Snapshot> published = publishChangingHistory(repository);
    const WholeHistory history(*repository, {0});
    ASSERT_EQ(history.items().size(), published.size());
    ASSERT_EQ(repository->snapshots(), published);
    for (std::size_t index = 0; index < published.size(); ++index) {
        EXPECT_EQ(history.items()[index].id, published[index].id);
        EXPECT_EQ(history.items()[index].completedAt, published[index].completedAt);
    }
    EXPECT_EQ(entriesOf(history), entriesOf(published));
    // The latest as well, whatever form it is written in: no date is seen at a glance in those of every
    // ninth.
    for (; !published.empty(); published.pop_back()) {
        EXPECT_EQ(repository->latestSnapshot({}), published.back()) << published.size();
        fs::remove(repository->manifest(published.back().id));
    }
}

TEST(WholeHistory, retainsWhatCompletedFromTheCutoffOnAndTheLatest) {
    const TestRepository repository;
    const std::vector<Snapshot> published = publishChangingHistory(repository);
    for (const std::size_t expired : {0U, 1U, 35U, 60U, 69U, 70U, 1000U}) {
        const WholeHistory history(*repository, {static_cast<double>(expired)});
        const std::size_t oldest = std::min(expired, published.size() - 1);
        EXPECT_EQ(entriesOf(history), entriesOf(std::span(published).subspan(oldest))) << expired;
        ASSERT_EQ(history.items().size(), published.size());
        for (std::size_t index = 0; index < published.size(); ++index)
            EXPECT_EQ(history.isRetained(history.items()[index]), index >= oldest) << expired;
    }
}

TEST(WholeHistory, holdsOnceWhatManySnapshotsSay) {
    const TestRepository repository;
    for (int generation = 0; generation < snapshotCount; ++generation)
        repository.publish({stored(repository, "a", "1"), stored(repository, "b", "2")}, generation);
    // Each of a few threads holds them once.
    EXPECT_LE(WholeHistory(*repository, {0}).retainedEntries().size(), 2U * 4);
}

TEST(WholeHistory, isEmptyInANewRepository) {
    EXPECT_TRUE(WholeHistory(*TestRepository(), {0}).items().empty());
}

TEST(WholeHistory, isRefusedForWhateverIsWrongInOneManifest) {
    const TestRepository repository;
    const Snapshot whole = publishChangingHistory(repository)[33];
    const auto damage = [&](const std::function<void(Snapshot&)>& change) {
        Snapshot snapshot = whole;
        change(snapshot);
        JSONFile::write(snapshot, repository->manifest(snapshot.id));
        const auto ordinary = thrown<BackupError>([&] { repository->snapshots(); });
        EXPECT_EQ(thrown<BackupError>([&] { WholeHistory(*repository, {0}); }), ordinary);
        EXPECT_EQ(thrown<BackupError>([&] { repository->latestSnapshot({}); }), ordinary);
        return ordinary;
    };
    EXPECT_EQ(damage([](Snapshot& snapshot) { snapshot.schemaVersion = 2; }),
              "An unsupported or mismatched snapshot was found. No history will be removed.");
    EXPECT_EQ(damage([](Snapshot& snapshot) { snapshot.entries.emplace_back(file("../x", "1")); }),
              "Unsafe path in backup: ../x");
    EXPECT_EQ(
        damage([](Snapshot& snapshot) { snapshot.entries.push_back(snapshot.entries.back()); }).substr(0, 29),
        "Two Google Drive items map to");
    EXPECT_EQ(damage([](Snapshot& snapshot) {
                  SnapshotEntry entry = file("z", "1");
                  entry.objectHash.reset();
                  snapshot.entries.emplace_back(entry);
              }),
              "A snapshot is missing a file reference.");
    EXPECT_EQ(damage([](Snapshot& snapshot) {
                  SnapshotEntry entry = file("z", "1");
                  entry.objectHash = ObjectHash("X");
                  snapshot.entries.emplace_back(entry);
              }),
              "Invalid content reference in the backup.");
}

TEST(WholeHistory, seesAConflictThatChangedKindsMake) {
    // The same paths in the same order, and yet one of them is no folder any more.
    const TestRepository repository;
    repository.publish({folder("a"), stored(repository, "a/b", "1")}, 1);
    Snapshot second = repository.publish({folder("a"), stored(repository, "a/b", "1")}, 2);
    second.entries[0] = stored(repository, "a", "1");
    JSONFile::write(second, repository->manifest(second.id));
    EXPECT_EQ(thrown<BackupError>([&] { WholeHistory(*repository, {0}); }),
              "A file and folder conflict at “a/b”.");
}

} // namespace marrowbox
