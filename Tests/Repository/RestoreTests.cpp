<<<<<<< HEAD
#include "EngineRun.h"
#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Repository/LockBusyError.h"
#include "Support/Coroutine.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Thrown.h"

#include <boost/asio/thread_pool.hpp>
=======
#include "Repository/BackupRepository.h"

#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Platform/RandomBytes.h"
#include "Support/ScratchFolder.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Thrown.h"

#include <fcntl.h>
>>>>>>> main
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

<<<<<<< HEAD
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

TEST(Restore, keepsThePermissionsOfTheObject) {
    const TestRepository repository;
    const Target target;
    const Snapshot snapshot = repository.snapshotOf({stored(repository, "a", "content")});
    ASSERT_EQ(::chmod(repository.object("content").c_str(), 0600), 0);
    repository->restore(snapshot, target.path, {});
    EXPECT_EQ(modeOf(target.path / "a"), 0600u);
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
=======
struct Restoring {
    Restoring() {
        repository.initialize();
        snapshot.unitID = repository.unitID();
    }

    void add(const std::string& path, const std::string& content) {
        writeAll(openFile(scratch / "incoming", O_WRONLY | O_CREAT | O_TRUNC, 0600), content);
        snapshot.entries.emplace_back(
            repository.importFile(scratch / "incoming", test::file(path, content).source, {}));
    }
    fs::path objectOf(std::size_t entry) const {
        return repository.objectURL(*snapshot.entries[entry]->objectHash);
    }
    void run(std::stop_token stop = {}) { repository.restore(snapshot, target, stop); }
    std::string refused() {
        return test::thrown<BackupError>([&] { run(); });
    }

    test::ScratchFolder scratch;
    BackupRepository repository{scratch.path(), Uuid::random()};
    Snapshot snapshot;
    fs::path target = scratch / "restored";
};

} // namespace

TEST(Restore, writesEveryFileAndFolderWithItsBytes) {
    Restoring restoring;
    const std::string large = *randomBytes(3'000'001);
    restoring.snapshot.entries.emplace_back(test::folder("a"));
    restoring.add("a/one.txt", "one");
    restoring.add("a/two/twin.txt", "one");
    restoring.add("empty", "");
    restoring.snapshot.entries.emplace_back(test::folder("folder"));
    restoring.add("large.bin", large);
    for (int number = 0; number < 200; ++number)
        restoring.add("many/" + std::to_string(number), std::to_string(number));
    restoring.run();
    EXPECT_EQ(readFile(restoring.target / "a/one.txt"), "one");
    EXPECT_EQ(readFile(restoring.target / "a/two/twin.txt"), "one");
    EXPECT_EQ(readFile(restoring.target / "empty"), "");
    EXPECT_TRUE(fs::is_directory(restoring.target / "folder"));
    EXPECT_EQ(readFile(restoring.target / "large.bin"), large);
    for (int number = 0; number < 200; ++number)
        EXPECT_EQ(readFile(restoring.target / "many" / std::to_string(number)), std::to_string(number));
    EXPECT_EQ(linkStatus(restoring.target / "large.bin")->st_mode & 07777, 0600u);
    EXPECT_EQ(linkStatus(restoring.target / "empty")->st_mode & 07777, 0600u);
}

TEST(Restore, ofNoEntriesIsAnEmptyFolder) {
    Restoring restoring;
    restoring.run();
    EXPECT_TRUE(fs::is_empty(restoring.target));
}

TEST(Restore, acceptsAFolderThatADeeperPathHasMade) {
    Restoring restoring;
    restoring.add("a/b", "content");
    restoring.snapshot.entries.emplace_back(test::folder("a"));
    EXPECT_NO_THROW(restoring.run());
}

TEST(Restore, refusesAnExistingTargetInAnyForm) {
    Restoring restoring;
    const std::string words = "Choose a new folder for this restored snapshot.";
    fs::create_directory(restoring.target);
    EXPECT_EQ(restoring.refused(), words);
    fs::remove(restoring.target);
    fs::create_symlink("nowhere", restoring.target);
    EXPECT_EQ(restoring.refused(), words);
}

TEST(Restore, needsTheParentOfItsTarget) {
    Restoring restoring;
    restoring.target = restoring.scratch / "missing" / "restored";
    EXPECT_THROW(restoring.run(), std::system_error);
    EXPECT_FALSE(fs::exists(restoring.scratch / "missing"));
}

TEST(Restore, stopsAtAFlippedByteAndKeepsWhatSortsBefore) {
    for (const std::size_t size : {10U, 3'000'000U}) {
        Restoring restoring;
        restoring.add("a.txt", "before");
        restoring.add("b “b”.bin", std::string(size, 'b'));
        const Descriptor object = openFile(restoring.objectOf(1), O_RDWR);
        ASSERT_EQ(::pwrite(object.number(), "B", 1, static_cast<off_t>(size) - 1), 1);
        EXPECT_EQ(restoring.refused(), "Integrity verification failed for “b “b”.bin”.");
        EXPECT_EQ(readFile(restoring.target / "a.txt"), "before");
        EXPECT_FALSE(fs::exists(restoring.target / "b “b”.bin"));
    }
}

TEST(Restore, passesOnThatAnObjectIsMissing) {
    Restoring restoring;
    restoring.add("a.txt", "a");
    fs::remove(restoring.objectOf(0));
    EXPECT_THROW(restoring.run(), std::system_error);
}

TEST(Restore, refusesEntriesAndLinksThatItCannotTrust) {
    Restoring restoring;
    restoring.add("a.txt", "a");
    const Snapshot good = restoring.snapshot;
    const auto refusedEntry = [&](auto change) {
        fs::remove_all(restoring.target);
        SnapshotEntry entry = *good.entries[0];
        change(entry);
        restoring.snapshot = good;
        restoring.snapshot.entries = {Shared<SnapshotEntry>(entry)};
        return restoring.refused();
    };
    EXPECT_EQ(refusedEntry([](auto& entry) { entry.objectHash.reset(); }),
              "A snapshot file reference is missing.");
    EXPECT_EQ(refusedEntry([](auto& entry) { entry.objectHash = ObjectHash("XY"); }),
              "Invalid content reference in the backup.");
    EXPECT_EQ(refusedEntry([](auto& entry) { entry.source.path = "../a"; }), "Unsafe path in backup: ../a");
    EXPECT_FALSE(fs::exists(restoring.target));
    const fs::path object = restoring.repository.objectURL(*good.entries[0]->objectHash);
    fs::rename(object, restoring.scratch / "elsewhere");
    fs::create_symlink(restoring.scratch / "elsewhere", object);
    EXPECT_EQ(refusedEntry([](auto&) {}), "A symbolic link cannot be used inside the backup repository.");
    restoring.snapshot = good;
    restoring.snapshot.unitID = Uuid::random();
    EXPECT_EQ(restoring.refused(), "Snapshot belongs to another backup unit.");
}

TEST(Restore, looksAtTheContentAloneAndNotAtSizes) {
    Restoring restoring;
    restoring.add("a.txt", "a");
    SnapshotEntry entry = *restoring.snapshot.entries[0];
    entry.storedSize = 99;
    entry.source.size = 98;
    entry.source.md5 = "00";
    restoring.snapshot.entries = {Shared<SnapshotEntry>(entry)};
    EXPECT_NO_THROW(restoring.run());
}

TEST(Restore, endsWhenItIsCancelled) {
    Restoring restoring;
    restoring.add("a.txt", "a");
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(restoring.run(stop.get_token()), CancellationError);
    EXPECT_TRUE(fs::is_empty(restoring.target));
>>>>>>> main
}

} // namespace marrowbox
