#include "EngineRun.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace test;

const std::string reading = "Reading Google Drive…";
const std::string verifying = "Verifying the backup…";

std::vector<std::string> pathsOf(const Snapshot& snapshot) {
    std::vector<std::string> paths;
    for (const auto& entry : snapshot.entries)
        paths.push_back(entry->source.path.string());
    return paths;
}

SourceEntry document(std::string_view path) {
    SourceEntry source = file(path, "").source;
    source.mimeType = "application/vnd.google-apps.document";
    source.size = 4096;
    source.md5.reset();
    return source;
}

} // namespace

TEST(BackupRun, publishesEveryItemOfAFirstListing) {
    EngineRun run;
    run.source->putFolder("photos");
    run.source->put("photos/one.jpg", "first picture");
    run.source->put("notes.txt", "text");
    run.source->put("empty", "");
    const Snapshot snapshot = run();
    EXPECT_EQ(pathsOf(snapshot),
              (std::vector<std::string>{"empty", "notes.txt", "photos", "photos/one.jpg"}));
    EXPECT_EQ(snapshot.summary, (RunSummary{.added = 3, .downloadedBytes = 17}));
    EXPECT_EQ(readFile(run.repository.object("first picture")), "first picture");
    EXPECT_FALSE(snapshot.entries[2]->objectHash);
    EXPECT_EQ(snapshot.schemaVersion, 1);
    EXPECT_EQ(snapshot.unitID, run.repository->unitID());
    EXPECT_EQ(run.repository->snapshots(), std::vector{snapshot});
}

TEST(BackupRun, takesTheTimeBeforeItReadsAndBeforeItPublishes) {
    EngineRun run;
    const Snapshot snapshot = run();
    EXPECT_EQ(snapshot.startedAt, Date{100});
    EXPECT_EQ(snapshot.completedAt, Date{101});
}

TEST(BackupRun, sortsPathsByTheirBytes) {
    EngineRun run;
    for (const char* path : {"é", "z", "B", "a b", "a/b", "a!"})
        run.source->put(path, path);
    run.source->putFolder("a");
    EXPECT_EQ(pathsOf(run()), (std::vector<std::string>{"B", "a", "a b", "a!", "a/b", "z", "é"}));
}

TEST(BackupRun, leavesNoWorkFolderAndAFreeLock) {
    EngineRun run;
    run.source->put("one", "same");
    run.source->put("two", "same");
    run.source->afterDownload = [&](int, const fs::path& folder) {
        EXPECT_EQ(folder.parent_path(), run.repository / "Staging");
        EXPECT_EQ(modeOf(folder), 0700u);
        EXPECT_THROW(RepositoryLock(run.repository / ".lock", "busy"), std::runtime_error);
    };
    const Snapshot snapshot = run();
    EXPECT_EQ(run.source->batches.size(), 1u);
    EXPECT_TRUE(fs::is_empty(run.repository / "Staging"));
    EXPECT_NO_THROW(RepositoryLock(run.repository / ".lock", "busy"));
}

TEST(BackupRun, namesTheWorkFolderAsTheSnapshot) {
    EngineRun run;
    run.source->put("one", "content");
    std::string name;
    run.source->afterDownload = [&](int, const fs::path& folder) { name = folder.filename(); };
    EXPECT_EQ(run().id.text(), name);
}

TEST(BackupRun, publishesASnapshotOfAnEmptyListing) {
    EngineRun run;
    EXPECT_TRUE(run().entries.empty());
    run.source->put("a", "content");
    run();
    run.source->remove("a");
    const Snapshot snapshot = run();
    EXPECT_TRUE(snapshot.entries.empty());
    EXPECT_EQ(snapshot.summary, RunSummary{.removed = 1});
    EXPECT_EQ(run.repository->snapshots().size(), 3u);
}

TEST(BackupRun, downloadsNothingWhenNothingChanged) {
    EngineRun run;
    run.source->put("a", "content");
    run.source->put(document("b.docx"), "exported");
    const Snapshot first = run();
    EXPECT_EQ(first.summary, (RunSummary{.added = 2, .exported = 1, .downloadedBytes = 15}));
    EXPECT_EQ(run.progress,
              (std::vector{reading, std::string("Downloading 1–2 of 2 changed files…"), verifying}));
    run.source->inventories = 0;
    const Snapshot second = run();
    EXPECT_EQ(second.summary, RunSummary{.unchanged = 2});
    EXPECT_EQ(second.entries, first.entries);
    EXPECT_NE(second.id, first.id);
    EXPECT_EQ(run.progress, (std::vector{reading, verifying}));
    EXPECT_EQ(run.source->inventories, 2);
    EXPECT_EQ(run.source->batches.size(), 1u);
}

TEST(BackupRun, downloadsThirtyThreeFilesInTwoBatches) {
    EngineRun run;
    for (int number = 10; number < 43; ++number)
        run.source->put(std::to_string(number), "content " + std::to_string(number));
    const Snapshot snapshot = run();
    EXPECT_EQ(snapshot.entries.size(), 33u);
    ASSERT_EQ(run.source->batches.size(), 2u);
    EXPECT_EQ(run.source->batches[0].size(), 32u);
    EXPECT_EQ(run.source->batches[1], std::vector<std::string>{"42"});
    EXPECT_EQ(run.progress, (std::vector<std::string>{reading, "Downloading 1–32 of 33 changed files…",
                                                      "Downloading 33–33 of 33 changed files…", verifying}));
}

TEST(BackupRun, keepsTheWorkFolderToOneBatch) {
    EngineRun run;
    for (int number = 0; number < 70; ++number)
        run.source->put(std::to_string(number), "content " + std::to_string(number));
    run.source->afterDownload = [](int, const fs::path& folder) {
        EXPECT_LE(contentsOf(folder).size(), 32u);
    };
    run();
}

TEST(BackupRun, countsWhatChangedBetweenTwoRuns) {
    EngineRun run;
    run.source->put("same", "1");
    run.source->put("changes", "2");
    run.source->put("goes", "3");
    run.source->put("moves", "4");
    run();
    run.source->put("changes", "22", "2");
    run.source->remove("goes");
    SourceEntry moved = run.source->item("moves");
    run.source->remove("moves");
    moved.path = "moved";
    run.source->put(moved, "4");
    run.source->put("new", "55555");
    const Snapshot snapshot = run();
    EXPECT_EQ(
        snapshot.summary,
        (RunSummary{
            .added = 2, .updated = 1, .removed = 2, .unchanged = 1, .exported = 0, .downloadedBytes = 7}));
    EXPECT_EQ(run.source->batches.back(), (std::vector<std::string>{"changes", "new"}));
    EXPECT_EQ(pathsOf(snapshot), (std::vector<std::string>{"changes", "moved", "new", "same"}));
}

TEST(BackupRun, comparesWithTheLatestSnapshotOnly) {
    EngineRun run;
    run.source->put("a", "old");
    run();
    run.source->put("a", "new", "2");
    run();
    run.source->put("a", "old", "1");
    EXPECT_EQ(run().summary, (RunSummary{.updated = 1, .downloadedBytes = 3}));
}

TEST(BackupRun, importsTwoNewPathsOfOneFingerprintToOneObject) {
    EngineRun run;
    SourceEntry source = file("one", "content").source;
    run.source->put(source, "content");
    source.path = "two";
    run.source->put(source, "content");
    const Snapshot snapshot = run();
    EXPECT_EQ(snapshot.summary, (RunSummary{.added = 2, .downloadedBytes = 14}));
    EXPECT_EQ(run.source->batches[0].size(), 2u);
    EXPECT_EQ(snapshot.entries[0]->objectHash, snapshot.entries[1]->objectHash);
}

TEST(BackupRun, fetchesAMissingObjectAnew) {
    EngineRun run;
    run.source->put("a", "content");
    run();
    fs::remove(run.repository.object("content"));
    EXPECT_EQ(run().summary, (RunSummary{.updated = 1, .downloadedBytes = 7}));
    EXPECT_EQ(readFile(run.repository.object("content")), "content");
}

TEST(BackupRun, takesListingsInAnyOrderForTheSame) {
    EngineRun run;
    run.source->put("a", "1");
    run.source->put("b", "2");
    run.source->putFolder("c");
    run.source->listsBackwards = true;
    EXPECT_EQ(run().entries.size(), 3u);
}

TEST(BackupRun, usesWhatAStoppedRunLeftInTheStore) {
    EngineRun run;
    run.source->put("a", "content");
    run.repository.store("content");
    EXPECT_EQ(run().summary, (RunSummary{.added = 1, .downloadedBytes = 7}));
}

} // namespace marrowbox
