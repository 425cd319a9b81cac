#include "Models/BackupError.h"
#include "Repository/BackupRepository.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Thrown.h"
#include "TestRepository.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace test;

const std::string missing = "A backup file is missing. The snapshot was not published.";

std::string refusalToCommit(const TestRepository& repository, const Snapshot& snapshot) {
    const auto before = contentsOf(repository->root());
    const auto message = thrown<BackupError>([&] { repository->commit(snapshot); });
    EXPECT_EQ(contentsOf(repository->root()), before);
    return message;
}

} // namespace

TEST(Commit, publishesOnePrivateManifestThatReadsBack) {
    const TestRepository repository;
    const Snapshot snapshot = repository.snapshotOf({folder("a"), stored(repository, "a/b", "content")});
    repository->commit(snapshot);
    EXPECT_EQ(directoryNames(repository / "Snapshots"), std::vector{snapshot.id.text() + ".json"});
    EXPECT_EQ(modeOf(repository->manifest(snapshot.id)), 0600u);
    EXPECT_EQ(repository->snapshots(), std::vector{snapshot});
}

TEST(Commit, refusesASnapshotOfAnotherUnit) {
    const TestRepository repository;
    Snapshot snapshot = repository.snapshotOf({});
    snapshot.unitID = Uuid::random();
    EXPECT_EQ(refusalToCommit(repository, snapshot), "Snapshot belongs to another backup unit.");
}

TEST(Commit, refusesPathsThatCannotBeLaidOut) {
    const TestRepository repository;
    EXPECT_EQ(refusalToCommit(repository, repository.snapshotOf({folder("../a")})),
              "Unsafe path in backup: ../a");
}

TEST(Commit, refusesAFileWhoseObjectIsNotInPlace) {
    const TestRepository repository;
    EXPECT_EQ(refusalToCommit(repository, repository.snapshotOf({file("a", "never stored")})), missing);
    SnapshotEntry entry = stored(repository, "a", "content");
    entry.storedSize = 6;
    EXPECT_EQ(refusalToCommit(repository, repository.snapshotOf({entry})), missing) << "of another size";
    entry.objectHash.reset();
    EXPECT_EQ(refusalToCommit(repository, repository.snapshotOf({entry})), missing) << "without a hash";
    fs::remove(repository.object("content"));
    fs::create_directory(repository.object("content"));
    EXPECT_EQ(refusalToCommit(repository, repository.snapshotOf({file("a", "content")})), missing)
        << "a folder";
}

TEST(Commit, refusesAHashOfAnotherForm) {
    const TestRepository repository;
    SnapshotEntry entry = file("a", "content");
    entry.objectHash = ObjectHash("f");
    EXPECT_EQ(refusalToCommit(repository, repository.snapshotOf({entry})),
              "Invalid content reference in the backup.");
}

TEST(Commit, refusesALinkOnTheWayToAnObject) {
    const TestRepository repository;
    const SnapshotEntry entry = stored(repository, "a", "content");
    const fs::path object = repository.object("content");
    fs::rename(object, repository / "moved");
    fs::create_symlink(repository / "moved", object);
    EXPECT_EQ(refusalToCommit(repository, repository.snapshotOf({entry})), linkRefusal);
}

TEST(Commit, neverReplacesASnapshot) {
    const TestRepository repository;
    Snapshot snapshot = repository.snapshotOf({});
    repository->commit(snapshot);
    snapshot.completedAt = {5000};
    EXPECT_EQ(refusalToCommit(repository, snapshot), "Snapshot already exists.");
}

TEST(Commit, doesNotWriteThroughALinkThatWaitsUnderTheManifestsName) {
    const TestRepository repository;
    const Snapshot snapshot = repository.snapshotOf({});
    fs::create_symlink(repository.destination() / "elsewhere", repository->manifest(snapshot.id));
    EXPECT_EQ(refusalToCommit(repository, snapshot), "Snapshot already exists.");
}

TEST(Commit, validatesTheRepositoryFirst) {
    const TestRepository repository;
    const Snapshot snapshot = repository.snapshotOf({});
    fs::remove(repository / "Staging");
    EXPECT_EQ(refusalToCommit(repository, snapshot),
              "The backup repository is incomplete. Restore its missing folders before continuing.");
}

} // namespace marrowbox
