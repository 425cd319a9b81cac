#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Models/JSONType.h"
#include "Repository/BackupRepository.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Thrown.h"
#include "TestRepository.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace test;

const std::string mismatched = "An unsupported or mismatched snapshot was found. No history will be removed.";

/// What both ways to read the history say against it.
template <typename Error>
std::string refusalToRead(const TestRepository& repository) {
    const auto all = thrown<Error>([&] { repository->snapshots(); });
    const auto latest = thrown<Error>([&] { repository->latestSnapshot({}); });
    EXPECT_EQ(all, latest);
    return all;
}

void rewrite(const TestRepository& repository, const Snapshot& snapshot) {
    JSONFile::write(snapshot, repository->manifest(snapshot.id));
}

} // namespace

TEST(History, isEmptyInANewRepository) {
    const TestRepository repository;
    EXPECT_TRUE(repository->snapshots().empty());
    EXPECT_FALSE(repository->latestSnapshot({}));
}

TEST(History, isOrderedByCompletion) {
    const TestRepository repository;
    const Snapshot second = repository.publish({}, 20);
    const Snapshot third = repository.publish({stored(repository, "a", "x")}, 30.5);
    const Snapshot first = repository.publish({folder("a")}, -10);
    EXPECT_EQ(repository->snapshots(), (std::vector{first, second, third}));
    EXPECT_EQ(repository->latestSnapshot({}), third);
}

TEST(History, hasTheSameLastSnapshotBothWaysWhenDatesAreEqual) {
    const TestRepository repository;
    for (int count = 0; count < 9; ++count)
        repository.publish({}, count / 3);
    EXPECT_EQ(repository->latestSnapshot({}), repository->snapshots().back());
}

TEST(History, holdsARepeatedEntryOnce) {
    const TestRepository repository;
    repository.publish({stored(repository, "a", "content")}, 1);
    repository.publish({stored(repository, "a", "content")}, 2);
    const auto history = repository->snapshots();
    EXPECT_EQ(&*history[0].entries[0], &*history[1].entries[0]);
}

TEST(History, sharesTextsWithWhatTheCallerHolds) {
    const TestRepository repository;
    const std::vector<SourceEntry> known{file("a/path/of/some/length", "content").source};
    repository.publish({stored(repository, "a/path/of/some/length", "content")}, 1);
    const auto latest = repository->latestSnapshot(known);
    EXPECT_EQ(latest->entries[0]->source.path.view().data(), known[0].path.view().data());
}

TEST(History, ignoresWhatIsNoManifest) {
    const TestRepository repository;
    writeFile(repository / "Snapshots/notes.txt", "not JSON");
    writeFile(repository / "Snapshots/.json", "not JSON");
    writeFile(repository / "Snapshots/one.JSON", "not JSON");
    fs::create_directory(repository / "Snapshots/folder");
    const Snapshot snapshot = repository.publish({}, 1);
    EXPECT_EQ(repository->snapshots(), std::vector{snapshot});
}

TEST(History, isStoppedByAStrayManifest) {
    const TestRepository repository;
    repository.publish({}, 1);
    writeFile(repository / "Snapshots/stray.json", "{");
    EXPECT_NE(refusalToRead<JSONDecodingError>(repository), "");
}

TEST(History, isStoppedByAManifestThatIsAFolder) {
    const TestRepository repository;
    fs::create_directory(repository / "Snapshots/one.json");
    EXPECT_NE(refusalToRead<std::system_error>(repository), "");
}

TEST(History, isNotHeldUpByAPipe) {
    const TestRepository repository;
    ASSERT_EQ(::mkfifo((repository / "Snapshots/pipe.json").c_str(), 0600), 0);
    EXPECT_NE(refusalToRead<std::system_error>(repository), "");
}

TEST(History, refusesALinkInPlaceOfAManifest) {
    const TestRepository repository;
    const Snapshot snapshot = repository.publish({}, 1);
    fs::rename(repository->manifest(snapshot.id), repository / "moved");
    fs::create_symlink(repository / "moved", repository->manifest(snapshot.id));
    EXPECT_EQ(refusalToRead<BackupError>(repository), linkRefusal);
}

TEST(History, refusesAManifestOfAnotherVersionUnitOrName) {
    const TestRepository repository;
    const Snapshot good = repository.publish({}, 1);
    Snapshot snapshot = good;
    snapshot.schemaVersion = 2;
    rewrite(repository, snapshot);
    EXPECT_EQ(refusalToRead<BackupError>(repository), mismatched) << "version";
    snapshot = good;
    snapshot.unitID = Uuid::random();
    rewrite(repository, snapshot);
    EXPECT_EQ(refusalToRead<BackupError>(repository), mismatched) << "unit";
    rewrite(repository, good);
    fs::rename(repository->manifest(good.id), repository->manifest(Uuid::random()));
    EXPECT_EQ(refusalToRead<BackupError>(repository), mismatched) << "name";
}

TEST(History, refusesAManifestNamedInLowerCase) {
    const TestRepository repository;
    Snapshot snapshot = repository.snapshotOf({});
    snapshot.id = *Uuid::parse("ABCDEFAB-0000-0000-0000-000000000000");
    JSONFile::write(snapshot, repository / "Snapshots/abcdefab-0000-0000-0000-000000000000.json");
    EXPECT_EQ(refusalToRead<BackupError>(repository), mismatched);
}

TEST(History, refusesPathsThatCannotBeLaidOut) {
    const TestRepository repository;
    repository.publish({folder("A"), folder("a")}, 1);
    EXPECT_EQ(refusalToRead<BackupError>(repository),
              "Two Google Drive items map to “a”. Rename one in Drive before backing up.");
}

TEST(History, refusesAFileWithoutAHash) {
    const TestRepository repository;
    SnapshotEntry entry = file("a", "content");
    entry.objectHash.reset();
    repository.publish({entry}, 1);
    EXPECT_EQ(refusalToRead<BackupError>(repository), "A snapshot is missing a file reference.");
}

TEST(History, refusesAHashOfAnotherForm) {
    const TestRepository repository;
    SnapshotEntry entry = file("a", "content");
    entry.objectHash = ObjectHash(std::string(64, 'A'));
    repository.publish({entry}, 1);
    EXPECT_EQ(refusalToRead<BackupError>(repository), "Invalid content reference in the backup.");
}

TEST(History, refusesALinkOnTheWayToAnObjectOfAnySnapshot) {
    const TestRepository repository;
    repository.publish({stored(repository, "a", "old")}, 1);
    repository.publish({stored(repository, "a", "new")}, 2);
    const fs::path object = repository.object("old");
    fs::rename(object, repository / "moved");
    fs::create_symlink(repository / "moved", object);
    EXPECT_EQ(refusalToRead<BackupError>(repository), linkRefusal) << "object";
    fs::remove(object);
    fs::rename(object.parent_path(), repository / "fan-out");
    fs::create_directory_symlink(repository / "fan-out", object.parent_path());
    EXPECT_EQ(refusalToRead<BackupError>(repository), linkRefusal) << "fan-out folder";
}

TEST(History, doesNotLookAtLinksThatNoSnapshotNames) {
    const TestRepository repository;
    repository.publish({stored(repository, "a", "content")}, 1);
    fs::create_symlink("nowhere", repository.object("content").parent_path() / "planted");
    EXPECT_EQ(repository->snapshots().size(), 1u);
}

TEST(History, doesNotNeedTheObjects) {
    const TestRepository repository;
    repository.publish({file("a", "never stored"), stored(repository, "b", "cut off")}, 1);
    fs::resize_file(repository.object("cut off"), 3);
    EXPECT_EQ(repository->snapshots().size(), 1u);
    EXPECT_FALSE(repository->hasObject(file("b", "cut off")));
}

} // namespace marrowbox
