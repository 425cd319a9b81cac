#include "StorageUsage/BackupStorageUsage.h"

#include "Platform/Digest.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <random>

namespace marrowbox {

namespace {

constexpr auto most = std::numeric_limits<std::int64_t>::max();

ObjectHash objectOf(std::string_view content) {
    return ObjectHash::ofDigest(sha256(content));
}

Shared<SnapshotEntry> file(std::string_view path, std::string_view content, std::int64_t size) {
    SnapshotEntry entry;
    entry.source.path = path;
    entry.objectHash = objectOf(content);
    entry.storedSize = size;
    return entry;
}

Shared<SnapshotEntry> folder(std::string_view path) {
    SnapshotEntry entry;
    entry.source.path = path;
    entry.source.isDirectory = true;
    return entry;
}

Uuid id(std::uint8_t first) {
    Uuid made;
    made.bytes[0] = first;
    return made;
}

Snapshot snapshot(std::uint8_t number, double completedAt, std::vector<Shared<SnapshotEntry>> entries) {
    Snapshot made;
    made.id = id(number);
    made.completedAt = Date{completedAt};
    made.entries = std::move(entries);
    return made;
}

BackupStorageUsage measure(const std::vector<Snapshot>& snapshots) {
    return BackupStorageUsage::measure(snapshots);
}

/// The figures as they are told: every entry looked at, all objects in a map.
BackupStorageUsage measureByTheBook(std::vector<Snapshot> snapshots) {
    std::ranges::sort(snapshots, {}, [](const Snapshot& one) {
        return std::tuple(one.completedAt, one.startedAt, one.id.text());
    });
    std::map<std::string, std::int64_t> objects;
    BackupStorageUsage usage{.totalRetainedBytes = 0};
    for (const Snapshot& one : snapshots) {
        SnapshotStorageUsage figures{.isBaseline = usage.bySnapshot.empty()};
        for (const auto& entry : one.entries) {
            if (entry->source.isDirectory)
                continue;
            if (entry->storedSize < 0 || !entry->objectHash)
                return {};
            figures.logicalBytes += entry->storedSize;
            const auto [object, isNew] = objects.emplace(entry->objectHash->text(), entry->storedSize);
            if (object->second != entry->storedSize)
                return {};
            if (isNew) {
                figures.incrementalBytes += entry->storedSize;
                *usage.totalRetainedBytes += entry->storedSize;
            }
        }
        usage.bySnapshot[one.id] = figures;
        usage.latestSnapshotBytes = figures.logicalBytes;
    }
    return usage;
}

} // namespace

TEST(BackupStorageUsage, ofNoSnapshotsIsZeroInTotalAlone) {
    EXPECT_EQ(measure({}), BackupStorageUsage{.totalRetainedBytes = 0});
    EXPECT_NE(measure({}), BackupStorageUsage{});
}

TEST(BackupStorageUsage, ofAnEmptySnapshotIsZero) {
    const auto usage = measure({snapshot(1, 10, {})});
    EXPECT_EQ(usage.latestSnapshotBytes, 0);
    EXPECT_EQ(usage.bySnapshot.at(id(1)), (SnapshotStorageUsage{.isBaseline = true}));
}

TEST(BackupStorageUsage, countsAnIdenticalSnapshotOnce) {
    const std::vector entries = {folder("a"), file("a/b", "one", 10), file("c", "two", 5)};
    const auto usage = measure({snapshot(1, 10, entries), snapshot(2, 20, entries)});
    EXPECT_EQ(usage.totalRetainedBytes, 15);
    EXPECT_EQ(usage.latestSnapshotBytes, 15);
    EXPECT_EQ(usage.bySnapshot.at(id(1)), (SnapshotStorageUsage{15, 15, true}));
    EXPECT_EQ(usage.bySnapshot.at(id(2)), (SnapshotStorageUsage{15, 0, false}));
}

TEST(BackupStorageUsage, countsTheObjectOfTwoPathsOnce) {
    const auto usage = measure({snapshot(1, 10, {file("a", "same", 7), file("b", "same", 7)})});
    EXPECT_EQ(usage.totalRetainedBytes, 7);
    EXPECT_EQ(usage.bySnapshot.at(id(1)), (SnapshotStorageUsage{14, 7, true}));
}

TEST(BackupStorageUsage, countsWhatEachSnapshotAdds) {
    const auto kept = file("kept", "kept", 100);
    const auto usage = measure({snapshot(1, 10, {file("gone", "gone", 1), kept}),
                                snapshot(2, 20, {kept, file("new", "new", 10)}),
                                snapshot(3, 30, {file("back", "gone", 1), kept})});
    EXPECT_EQ(usage.totalRetainedBytes, 111);
    EXPECT_EQ(usage.latestSnapshotBytes, 101);
    EXPECT_EQ(usage.bySnapshot.at(id(1)), (SnapshotStorageUsage{101, 101, true}));
    EXPECT_EQ(usage.bySnapshot.at(id(2)), (SnapshotStorageUsage{110, 10, false}));
    EXPECT_EQ(usage.bySnapshot.at(id(3)), (SnapshotStorageUsage{101, 0, false}));
}

TEST(BackupStorageUsage, givesTheOldestSurvivorAllThatItHolds) {
    const std::vector entries = {file("a", "one", 10)};
    const std::vector all = {snapshot(1, 10, entries), snapshot(2, 20, entries)};
    EXPECT_EQ(measure({all[1]}).bySnapshot.at(id(2)), (SnapshotStorageUsage{10, 10, true}));
}

TEST(BackupStorageUsage, countsNothingOfFoldersWhateverTheyHold) {
    SnapshotEntry strange = *folder("a");
    strange.storedSize = -7;
    SnapshotEntry hashed = *file("b", "one", 99);
    hashed.source.isDirectory = true;
    const auto usage = measure({snapshot(1, 10, {strange, hashed, file("c", "one", 4)})});
    EXPECT_EQ(usage.totalRetainedBytes, 4);
    EXPECT_EQ(usage.latestSnapshotBytes, 4);
}

TEST(BackupStorageUsage, isUnknownWhenAFileLacksItsHash) {
    SnapshotEntry entry = *file("b", "two", 5);
    entry.objectHash.reset();
    const auto good = snapshot(1, 10, {file("a", "one", 1)});
    EXPECT_EQ(measure({good, snapshot(2, 20, {entry})}), BackupStorageUsage{});
    EXPECT_EQ(measure({good, snapshot(2, 5, {entry})}), BackupStorageUsage{});
}

TEST(BackupStorageUsage, isUnknownWhenASizeIsNegative) {
    EXPECT_EQ(measure({snapshot(1, 10, {file("a", "one", -1)})}), BackupStorageUsage{});
}

TEST(BackupStorageUsage, isUnknownWhenAnObjectHasTwoSizes) {
    EXPECT_EQ(measure({snapshot(1, 10, {file("a", "one", 1), file("b", "one", 2)})}), BackupStorageUsage{});
    EXPECT_EQ(measure({snapshot(1, 10, {file("a", "one", 1)}), snapshot(2, 20, {file("a", "one", 2)})}),
              BackupStorageUsage{});
}

TEST(BackupStorageUsage, isUnknownWhenASumOverflows) {
    const auto all = file("a", "one", most);
    EXPECT_EQ(measure({snapshot(1, 10, {all})}).totalRetainedBytes, most);
    EXPECT_EQ(measure({snapshot(1, 10, {all, file("b", "two", 1)})}), BackupStorageUsage{});
    EXPECT_EQ(measure({snapshot(1, 10, {all, file("b", "one", most)})}), BackupStorageUsage{})
        << "the logical sum";
    EXPECT_EQ(measure({snapshot(1, 10, {all}), snapshot(2, 20, {file("b", "two", 1)})}), BackupStorageUsage{})
        << "the total over two snapshots";
}

TEST(BackupStorageUsage, replacesTheLargestObjectWithoutOverflow) {
    const auto small = file("a", "one", 1);
    const auto usage = measure({snapshot(1, 10, {small, file("b", "two", most - 1)}),
                                snapshot(2, 20, {file("a", "two", most - 1), file("c", "one", 1)})});
    EXPECT_EQ(usage.latestSnapshotBytes, most);
    EXPECT_EQ(usage.totalRetainedBytes, most);
}

TEST(BackupStorageUsage, ordersByEndThenStartThenIdText) {
    const auto entries = [](std::string_view content) { return std::vector{file("a", content, 1)}; };
    auto first = snapshot(0x0A, 10, entries("one"));
    auto second = snapshot(0x9F, 10, entries("two"));
    auto third = snapshot(0xA0, 10, entries("three"));
    EXPECT_TRUE(measure({third, second, first}).bySnapshot.at(first.id).isBaseline);
    EXPECT_EQ(measure({third, second, first}), measure({first, third, second}));
    third.startedAt = Date{-1};
    EXPECT_TRUE(measure({first, second, third}).bySnapshot.at(third.id).isBaseline);
    second.completedAt = Date{9};
    EXPECT_TRUE(measure({first, third, second}).bySnapshot.at(second.id).isBaseline);
}

TEST(BackupStorageUsage, agreesWithTheRulesWordByWordOnRandomHistories) {
    std::mt19937 random(5);
    std::vector<Shared<SnapshotEntry>> pool;
    for (int index = 0; index < 60; ++index) {
        const auto path = std::to_string(random() % 20);
        const auto content = static_cast<std::int64_t>(random() % 15);
        pool.push_back(random() % 6 == 0 ? folder(path) : file(path, std::to_string(content), content * 10));
    }
    for (int round = 0; round < 2000; ++round) {
        std::vector<Snapshot> history;
        for (std::uint8_t number = 0; number < random() % 6; ++number) {
            std::vector<Shared<SnapshotEntry>> entries;
            for (const auto& entry :
                 pool) // now and then the same record in a body of its own, now and then none
                if (random() % 3 != 0)
                    entries.push_back(random() % 4 == 0 ? Shared(SnapshotEntry(*entry)) : entry);
            if (random() % 3 != 0)
                std::ranges::sort(entries, {}, [](const auto& entry) { return entry->source.path; });
            history.push_back(snapshot(number, static_cast<double>(random() % 4), std::move(entries)));
        }
        ASSERT_EQ(measure(history), measureByTheBook(history));
    }
}

} // namespace marrowbox
