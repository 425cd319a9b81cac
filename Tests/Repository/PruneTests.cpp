#include "EngineRun.h"
#include "Models/BackupError.h"
#include "Platform/Digest.h"
#include "Repository/LockBusyError.h"
#include "SmallDisk.h"
#include "Support/Coroutine.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Thrown.h"

#include <boost/asio/thread_pool.hpp>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace test;

const std::string paused = "History cleanup paused because a retained file is missing.";

std::vector<Uuid> historyOf(const TestRepository& repository) {
    std::vector<Uuid> ids;
    for (const auto& snapshot : repository->snapshots())
        ids.push_back(snapshot.id);
    return ids;
}

bool isStored(const TestRepository& repository, std::string_view content) {
    return fs::exists(repository.object(content));
}

std::string refusalThatDeletesNothing(const TestRepository& repository) {
    const auto before = contentsOf(repository->root());
    const auto message = thrown<BackupError>([&] { repository->prune({100}); });
    EXPECT_EQ(contentsOf(repository->root()), before);
    return message;
}

void pruneByEngine(const TestRepository& repository, std::optional<std::int64_t> retentionDays, double now) {
    asio::thread_pool threads(1);
    BackupEngine engine(threads.get_executor(), [now] { return Date{now}; });
    SyncUnit unit;
    unit.id = repository->unitID();
    unit.retentionDays = retentionDays;
    await(engine.prune(unit, repository.destination()));
}

} // namespace

TEST(Prune, sweepsNothingWithoutAnySnapshot) {
    const TestRepository repository;
    repository.store("left by a stopped run");
    repository->prune({100});
    EXPECT_TRUE(isStored(repository, "left by a stopped run"));
}

TEST(Prune, keepsASingleSnapshotHoweverOldAndSweepsAllTheSame) {
    const TestRepository repository;
    const Snapshot only = repository.publish({stored(repository, "a", "kept")}, 1);
    repository.store("left by a stopped run");
    repository->prune({100});
    EXPECT_EQ(historyOf(repository), std::vector{only.id});
    EXPECT_TRUE(isStored(repository, "kept"));
    EXPECT_FALSE(isStored(repository, "left by a stopped run"));
}

TEST(Prune, keepsOnlyTheObjectsOfTheLatestWhenAllOthersExpired) {
    const TestRepository repository;
    repository.publish({stored(repository, "a", "one"), stored(repository, "b", "shared")}, 1);
    repository.publish({stored(repository, "a", "two")}, 2);
    const Snapshot latest =
        repository.publish({stored(repository, "a", "three"), stored(repository, "c", "shared")}, 3);
    repository->prune({100});
    EXPECT_EQ(historyOf(repository), std::vector{latest.id});
    EXPECT_FALSE(isStored(repository, "one"));
    EXPECT_FALSE(isStored(repository, "two"));
    EXPECT_TRUE(isStored(repository, "three"));
    EXPECT_TRUE(isStored(repository, "shared"));
}

TEST(Prune, keepsASnapshotThatCompletedExactlyAtTheCutoff) {
    const TestRepository repository;
    repository.publish({}, 99.999);
    const Snapshot exact = repository.publish({}, 100);
    const Snapshot latest = repository.publish({}, 101);
    repository->prune({100});
    EXPECT_EQ(historyOf(repository), (std::vector{exact.id, latest.id}));
}

TEST(Prune, leavesEmptyFanOutFoldersAndTheWorkFolderAlone) {
    const TestRepository repository;
    repository.publish({}, 1);
    repository.store("left by a stopped run");
    writeFile(repository / "Staging/leftover", "bytes");
    repository->prune({100});
    EXPECT_TRUE(fs::is_empty(repository.object("left by a stopped run").parent_path()));
    EXPECT_EQ(readFile(repository / "Staging/leftover"), "bytes");
}

TEST(Prune, isStoppedByAnyBadManifest) {
    const TestRepository repository;
    repository.publish({stored(repository, "a", "one")}, 1);
    Snapshot other = repository.snapshotOf({}, 2);
    other.unitID = Uuid::random();
    repository.publish({}, 3);
    writeFile(repository->manifest(other.id), readFile(repository->manifest(repository->snapshots()[0].id)));
    EXPECT_EQ(refusalThatDeletesNothing(repository),
              "An unsupported or mismatched snapshot was found. No history will be removed.");
}

TEST(Prune, deletesNothingWhenARetainedObjectIsMissingOrOfAnotherSize) {
    const TestRepository repository;
    repository.publish({stored(repository, "a", "old")}, 1);
    repository.publish({stored(repository, "b", "content")}, 200);
    repository.publish({}, 300);
    fs::resize_file(repository.object("content"), 3);
    EXPECT_EQ(refusalThatDeletesNothing(repository), paused);
    fs::remove(repository.object("content"));
    EXPECT_EQ(refusalThatDeletesNothing(repository), paused);
}

TEST(Prune, deletesNothingForAReferenceOfARetainedFolderThatIsNone) {
    const TestRepository repository;
    repository.publish({stored(repository, "a", "old")}, 1);
    SnapshotEntry entry = folder("a");
    entry.objectHash = ObjectHash("ab");
    const Snapshot invalid = repository.publish({entry}, 200);
    EXPECT_EQ(refusalThatDeletesNothing(repository), test::invalidHash);
    fs::remove(repository->manifest(invalid.id));
    entry.objectHash = ObjectHash::ofDigest(sha256("never stored"));
    repository.publish({entry}, 300);
    EXPECT_EQ(refusalThatDeletesNothing(repository), paused);
}

TEST(Prune, sweepsNothingAfterAManifestThatCannotBeRemoved) {
    const SmallDisk disk(4);
    if (!disk.isMounted())
        GTEST_SKIP() << disk.whyNot();
    const TestRepository repository(disk.path());
    repository.publish({stored(repository, "a", "one")}, 1);
    const Snapshot stuck = repository.publish({stored(repository, "a", "two")}, 2);
    const Snapshot expired = repository.publish({stored(repository, "a", "three")}, 3);
    const Snapshot latest = repository.publish({stored(repository, "a", "four")}, 4);
    disk.makeReadOnly(repository->manifest(stuck.id)); // something is mounted upon it
    EXPECT_THROW(repository->prune({100}), std::system_error);
    EXPECT_EQ(historyOf(repository), (std::vector{stuck.id, expired.id, latest.id}));
    for (const char* content : {"one", "two", "three", "four"})
        EXPECT_TRUE(isStored(repository, content)) << content;
    disk.makeWritable(repository->manifest(stuck.id));
    repository->prune({100});
    EXPECT_EQ(historyOf(repository), std::vector{latest.id});
    for (const char* content : {"one", "two", "three"})
        EXPECT_FALSE(isStored(repository, content)) << content;
}

TEST(Prune, doesNotNeedTheObjectsOfAnExpiredSnapshot) {
    const TestRepository repository;
    repository.publish({file("a", "never stored")}, 1);
    repository.publish({}, 2);
    repository->prune({100});
    EXPECT_EQ(historyOf(repository).size(), 1u);
}

TEST(Prune, ignoresAStrayFileAmongTheFanOutFolders) {
    const TestRepository repository;
    repository.publish({}, 1);
    writeFile(repository / "Objects/.hidden", "");
    fs::create_directory(repository / "Objects/abc");
    writeFile(repository / "Objects/abc/file", "");
    repository->prune({100});
    EXPECT_TRUE(fs::exists(repository / "Objects/.hidden"));
    EXPECT_TRUE(fs::exists(repository / "Objects/abc/file"));
}

TEST(Prune, isStoppedByAStrayFileInAFanOutFolder) {
    const TestRepository repository;
    repository.publish({}, 1);
    fs::create_directory(repository / "Objects/ab");
    writeFile(repository / "Objects/ab/.hidden", "");
    EXPECT_EQ(refusalThatDeletesNothing(repository), test::invalidHash);
}

TEST(Prune, isStoppedByAFileInPlaceOfAFanOutFolder) {
    const TestRepository repository;
    repository.publish({}, 1);
    writeFile(repository / "Objects/ab", "");
    EXPECT_THROW(repository->prune({100}), std::system_error);
    EXPECT_TRUE(fs::exists(repository / "Objects/ab"));
}

TEST(Prune, isStoppedByAnObjectInTheWrongFolder) {
    const TestRepository repository;
    repository.publish({}, 1);
    const std::string name = "cd" + std::string(62, '0');
    fs::create_directory(repository / "Objects/ab");
    writeFile(repository / "Objects/ab" / name, "");
    EXPECT_EQ(refusalThatDeletesNothing(repository), "Unexpected object layout; cleanup paused.");
}

TEST(Prune, isStoppedByALinkAmongTheObjects) {
    const TestRepository repository;
    repository.publish({}, 1);
    const ScratchFolder elsewhere;
    const std::string name = "ab" + std::string(62, '0');
    writeFile(elsewhere / name, "precious");
    fs::create_directory_symlink(elsewhere.path(), repository / "Objects/ab");
    EXPECT_EQ(refusalThatDeletesNothing(repository), linkRefusal) << "a fan-out folder";
    fs::remove(repository / "Objects/ab");
    fs::create_directory(repository / "Objects/ab");
    fs::create_symlink(elsewhere / name, repository / "Objects/ab" / name);
    EXPECT_EQ(refusalThatDeletesNothing(repository), linkRefusal) << "an object";
    fs::remove_all(repository / "Objects/ab");
    fs::create_symlink("nowhere", repository / "Objects/stray link");
    EXPECT_EQ(refusalThatDeletesNothing(repository), linkRefusal) << "beside the folders";
    EXPECT_EQ(readFile(elsewhere / name), "precious");
}

TEST(Prune, removesExpiredManifestsBeforeAStopOfTheSweep) {
    const TestRepository repository;
    repository.publish({stored(repository, "a", "old")}, 1);
    const Snapshot latest = repository.publish({stored(repository, "a", "new")}, 2);
    writeFile(repository / "Objects/zz", "");
    EXPECT_THROW(repository->prune({100}), std::system_error);
    EXPECT_EQ(historyOf(repository), std::vector{latest.id});
    EXPECT_TRUE(isStored(repository, "new"));
}

TEST(Prune, keepsEverythingForEverWithoutARetention) {
    const TestRepository repository;
    repository.publish({}, 1);
    repository.publish({}, 2);
    fs::remove(repository / "Repository.json");
    const auto before = contentsOf(repository->root());
    for (const std::optional<std::int64_t> days : {std::optional<std::int64_t>(), {0}, {-5}})
        EXPECT_NO_THROW(pruneByEngine(repository, days, 1e9)) << "not even validated";
    EXPECT_EQ(contentsOf(repository->root()), before);
}

TEST(Prune, deletesNothingOfARepositoryThatIsNotInOrder) {
    const TestRepository repository;
    repository.publish({stored(repository, "a", "old")}, 1);
    repository.publish({}, 2);
    fs::remove(repository / "Repository.json");
    const auto before = contentsOf(repository->root());
    EXPECT_EQ(thrown<BackupError>([&] { pruneByEngine(repository, 1, 1e9); }), identityRefusal);
    EXPECT_EQ(contentsOf(repository->root()), before) << "not even a lock file";
}

TEST(Prune, countsPlainDaysBackFromNow) {
    const TestRepository repository;
    repository.publish({}, 1000);
    const Snapshot inside = repository.publish({}, 1001);
    const Snapshot latest = repository.publish({}, 1002);
    pruneByEngine(repository, 2, 1001 + 2 * 86400);
    EXPECT_EQ(historyOf(repository), (std::vector{inside.id, latest.id}));
}

TEST(Prune, isBusyWhileAnotherJobHoldsTheLockAndFreesItAfterwards) {
    const TestRepository repository;
    {
        const RepositoryLock lock = repository->lock();
        EXPECT_EQ(thrown<LockBusyError>([&] { pruneByEngine(repository, 1, 0); }), busyRefusal);
    }
    pruneByEngine(repository, 1, 0);
    EXPECT_NO_THROW(repository->lock());
}

} // namespace marrowbox
