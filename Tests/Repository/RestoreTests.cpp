#include "EngineRun.h"
#include "FailingCall.h"
#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Repository/LockBusyError.h"
#include "SmallDisk.h"
#include "Support/Coroutine.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Thrown.h"

#include <boost/asio/thread_pool.hpp>
#include <gtest/gtest.h>
#include <sys/syscall.h>

namespace marrowbox {

namespace {

using namespace test;

struct Target {
    ScratchFolder scratch;
    fs::path path = scratch / "restored";
};

std::string refusal(const TestRepository& repository, const Snapshot& snapshot, const fs::path& target) {
    return thrown<BackupError>([&] { repository->restore(snapshot, target, {}); });
}

void restoreByEngine(const TestRepository& repository, const Snapshot& snapshot, const fs::path& target) {
    asio::thread_pool threads(1);
    BackupEngine engine(threads.get_executor(), [] { return Date{0}; });
    SyncUnit unit;
    unit.id = repository->unitID();
    await(engine.restore(snapshot, unit, repository.destination(), target, {}));
}

} // namespace

TEST(Restore, writesOutEveryFileAndFolder) {
    const TestRepository repository;
    const Target target;
    const std::string large(3'000'001, 'x');
    const Snapshot snapshot = repository.snapshotOf(
        {folder("a"), stored(repository, "a/b.txt", "content"), stored(repository, "deep/er/c", "content"),
         stored(repository, "empty", ""), folder("folder"), stored(repository, "large", large)});
    restoreByEngine(repository, snapshot, target.path);
    EXPECT_EQ(contentsOf(target.path), (std::map<std::string, std::string>{{"a", ""},
                                                                           {"a/b.txt", "content"},
                                                                           {"deep", ""},
                                                                           {"deep/er", ""},
                                                                           {"deep/er/c", "content"},
                                                                           {"empty", ""},
                                                                           {"folder", ""},
                                                                           {"large", large}}));
}

TEST(Restore, writesOutFoldersDeeperThanAPathIsLong) {
    const TestRepository repository;
    const Target target;
    std::vector<SnapshotEntry> entries{stored(repository, "a", "content")};
    std::string path(200, 'd');
    for (int level = 1; level <= 100; ++level, path += "/" + std::string(200, 'd'))
        entries.push_back(folder(path));
    entries.push_back(stored(repository, "z", "content"));
    repository->restore(repository.snapshotOf(entries), target.path, {});
    std::size_t depth = 0;
    for (auto found = fs::recursive_directory_iterator(target.path); found != fs::end(found); ++found)
        depth = std::max(depth, std::size_t(found.depth()) + 1);
    EXPECT_EQ(depth, 100U);
    EXPECT_EQ(readFile(target.path / "z"), "content");
}

TEST(Restore, keepsThePermissionsOfTheObject) {
    const TestRepository repository;
    const Target target;
    const Snapshot snapshot = repository.snapshotOf({stored(repository, "a", "content")});
    ASSERT_EQ(::chmod(repository.object("content").c_str(), 0600), 0);
    repository->restore(snapshot, target.path, {});
    EXPECT_EQ(modeOf(target.path / "a"), 0600u);
}

TEST(Restore, writesWholeFilesWhereNoPermissionsCanBeGiven) {
    const TestRepository repository;
    const Snapshot snapshot = repository.snapshotOf({stored(repository, "a", "content")});
    const auto isRestored = [&](const fs::path& target, int failure) {
        return succeedsWithoutCall(SYS_fchmod, failure, [&] { repository->restore(snapshot, target, {}); });
    };
    for (const int failure : {EPERM, ENOTSUP, ENOSYS}) {
        const Target target;
        EXPECT_TRUE(isRestored(target.path, failure)) << failure;
        EXPECT_EQ(readFile(target.path / "a"), "content");
    }
    const Target target;
    EXPECT_FALSE(isRestored(target.path, EIO)) << "any other failure counts";
    EXPECT_FALSE(fs::exists(target.path / "a"));
}

TEST(Restore, makesNoProgramThatRunsWithItsOwnersRights) {
    const TestRepository repository;
    const Target target;
    const Snapshot snapshot = repository.snapshotOf({stored(repository, "a", "content")});
    ASSERT_EQ(::chmod(repository.object("content").c_str(), 06755), 0);
    repository->restore(snapshot, target.path, {});
    EXPECT_EQ(modeOf(target.path / "a"), 0755u);
}

TEST(Restore, leavesTheStoreAsItIsWhenARestoredFileIsAltered) {
    const TestRepository repository;
    const Target target;
    repository->restore(repository.snapshotOf({stored(repository, "a", "content")}), target.path, {});
    writeFile(target.path / "a", "altered");
    EXPECT_EQ(readFile(repository.object("content")), "content");
}

TEST(Restore, makesAnEmptyFolderOfAnEmptySnapshot) {
    const TestRepository repository;
    const Target target;
    repository->restore(repository.snapshotOf({}), target.path, {});
    EXPECT_TRUE(fs::is_empty(target.path));
}

TEST(Restore, takesAFolderThatADeeperPathMade) {
    const TestRepository repository;
    const Target target;
    repository->restore(repository.snapshotOf({stored(repository, "a/b", "content"), folder("a")}),
                        target.path, {});
    EXPECT_EQ(readFile(target.path / "a/b"), "content");
}

TEST(Restore, refusesATargetThatExistsInAnyForm) {
    const TestRepository repository;
    const Target target;
    const std::string chooseNew = "Choose a new folder for this restored snapshot.";
    fs::create_directory(target.path);
    EXPECT_EQ(refusal(repository, repository.snapshotOf({}), target.path), chooseNew) << "an empty folder";
    fs::remove(target.path);
    writeFile(target.path, "");
    EXPECT_EQ(refusal(repository, repository.snapshotOf({}), target.path), chooseNew) << "a file";
    fs::remove(target.path);
    fs::create_symlink("nowhere", target.path);
    EXPECT_EQ(refusal(repository, repository.snapshotOf({}), target.path), chooseNew) << "a link to nothing";
}

TEST(Restore, passesOnTheSystemsWordsForATargetWithoutAParent) {
    const TestRepository repository;
    const Target target;
    EXPECT_THROW(repository->restore(repository.snapshotOf({}), target.path / "inside", {}),
                 std::system_error);
    EXPECT_FALSE(fs::exists(target.path));
}

TEST(Restore, passesOnTheSystemsWordsForATargetThatCannotBeMade) {
    const TestRepository repository;
    const SmallDisk disk(1);
    if (!disk.isMounted())
        GTEST_SKIP() << disk.whyNot();
    disk.makeReadOnly();
    try {
        repository->restore(repository.snapshotOf({}), disk.path() / "restored", {});
        FAIL() << "it was restored";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::read_only_file_system);
    }
}

TEST(Restore, leavesWholeFilesAloneOnADiskThatIsFull) {
    const TestRepository repository;
    const SmallDisk disk(4);
    if (!disk.isMounted())
        GTEST_SKIP() << disk.whyNot();
    std::vector<SnapshotEntry> entries;
    for (char name = 'a'; name < 'm'; ++name)
        entries.push_back(stored(repository, std::string(1, name), std::string(1 << 20, name)));
    try {
        repository->restore(repository.snapshotOf(entries), disk.path() / "restored", {});
        FAIL() << "it was restored";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_space_on_device);
    }
    for (const auto& [name, content] : contentsOf(disk.path() / "restored"))
        EXPECT_TRUE(content == std::string(1 << 20, name[0])) << name << ": " << content.size();
}

TEST(Restore, makesNoTargetForARepositoryThatIsNotInOrder) {
    const TestRepository repository;
    const Target target;
    const Snapshot snapshot = repository.snapshotOf({stored(repository, "a", "content")});
    fs::remove(repository / "Repository.json");
    EXPECT_EQ(thrown<BackupError>([&] { restoreByEngine(repository, snapshot, target.path); }),
              identityRefusal);
    EXPECT_FALSE(fs::exists(target.path));
}

TEST(Restore, refusesASnapshotOfAnotherUnit) {
    const TestRepository repository;
    const Target target;
    Snapshot snapshot = repository.snapshotOf({});
    snapshot.unitID = Uuid::random();
    EXPECT_EQ(refusal(repository, snapshot, target.path), "Snapshot belongs to another backup unit.");
    EXPECT_FALSE(fs::exists(target.path));
}

TEST(Restore, refusesAPathThatWouldLeaveTheTarget) {
    const TestRepository repository;
    const Target target;
    const Snapshot snapshot = repository.snapshotOf({stored(repository, "../outside", "content")});
    EXPECT_EQ(refusal(repository, snapshot, target.path), "Unsafe path in backup: ../outside");
    EXPECT_TRUE(fs::is_empty(target.scratch.path()));
}

TEST(Restore, refusesAFileWithoutAHashAndAHashOfAnotherForm) {
    const TestRepository repository;
    const Target target;
    SnapshotEntry entry = file("a", "content");
    entry.objectHash.reset();
    EXPECT_EQ(refusal(repository, repository.snapshotOf({entry}), target.scratch / "one"),
              "A snapshot file reference is missing.");
    entry.objectHash = ObjectHash("ab");
    EXPECT_EQ(refusal(repository, repository.snapshotOf({entry}), target.scratch / "two"),
              "Invalid content reference in the backup.");
}

TEST(Restore, stopsAtAnObjectWithOneAlteredByteAndKeepsTheFilesBeforeIt) {
    const TestRepository repository;
    const Target target;
    const Snapshot snapshot =
        repository.snapshotOf({stored(repository, "a", "first"), folder("b"),
                               stored(repository, "b/c", "content"), stored(repository, "d", "last")});
    writeFile(repository.object("content"), "contend");
    EXPECT_EQ(refusal(repository, snapshot, target.path), "Integrity verification failed for “b/c”.");
    EXPECT_EQ(readFile(target.path / "a"), "first");
    EXPECT_FALSE(fs::exists(target.path / "b/c"));
}

TEST(Restore, goesByTheHashAlone) {
    const TestRepository repository;
    const Target target;
    SnapshotEntry entry = stored(repository, "a", "content");
    entry.storedSize = 1;
    entry.source.size = 2;
    entry.source.md5 = "none";
    repository->restore(repository.snapshotOf({entry}), target.path, {});
    EXPECT_EQ(readFile(target.path / "a"), "content");
}

TEST(Restore, passesOnTheSystemsWordsForAMissingObject) {
    const TestRepository repository;
    const Target target;
    EXPECT_THROW(repository->restore(repository.snapshotOf({file("a", "gone")}), target.path, {}),
                 std::system_error);
}

TEST(Restore, refusesALinkInTheStore) {
    const TestRepository repository;
    const Target target;
    const Snapshot snapshot = repository.snapshotOf({stored(repository, "a", "content")});
    const fs::path object = repository.object("content");
    fs::rename(object, repository / "moved");
    fs::create_symlink(repository / "moved", object);
    EXPECT_EQ(refusal(repository, snapshot, target.scratch / "one"), linkRefusal) << "an object";
    fs::remove(object);
    fs::rename(repository / "moved", object);
    fs::rename(object.parent_path(), repository / "fan-out");
    fs::create_directory_symlink(repository / "fan-out", object.parent_path());
    EXPECT_EQ(refusal(repository, snapshot, target.scratch / "two"), linkRefusal) << "a fan-out folder";
}

TEST(Restore, isCancelledInsideADigestAndLeavesTheTarget) {
    const TestRepository repository;
    const Target target;
    std::stop_source stop;
    stop.request_stop();
    const Snapshot snapshot = repository.snapshotOf({folder("a"), stored(repository, "b", "content")});
    EXPECT_THROW(repository->restore(snapshot, target.path, stop.get_token()), CancellationError);
    EXPECT_EQ(contentsOf(target.path), (std::map<std::string, std::string>{{"a", ""}}));
}

TEST(Restore, isBusyWhileAnotherJobHoldsTheLockAndFreesItAfterwards) {
    const TestRepository repository;
    const Target target;
    {
        const RepositoryLock lock = repository->lock();
        const auto restore = [&] { restoreByEngine(repository, repository.snapshotOf({}), target.path); };
        EXPECT_EQ(thrown<LockBusyError>(restore), busyRefusal);
        EXPECT_FALSE(fs::exists(target.path));
    }
    restoreByEngine(repository, repository.snapshotOf({}), target.path);
    EXPECT_NO_THROW(repository->lock());
}

} // namespace marrowbox
