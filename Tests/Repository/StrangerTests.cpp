// Another user of the machine, who may write to the destination.
#include "EngineRun.h"
#include "Models/BackupError.h"
#include "Repository/LockBusyError.h"
#include "Repository/RestoreTarget.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Stranger.h"
#include "Support/Thrown.h"
#include "Support/TreeState.h"
#include "TestRepository.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace marrowbox::test {

namespace {

const std::string foreignRefusal =
    "The backup repository belongs to another user. Nothing in it was changed.";
const Uuid unitID = *Uuid::parse("FEDCBA98-7654-3210-FEDC-BA9876543210");

/// A destination that everybody may write to, and a folder of the stranger's beside it.
class SharedDisk : public testing::Test {
  protected:
    void SetUp() override {
        if (const auto reason = reasonForNoStranger())
            GTEST_SKIP() << *reason;
        fs::permissions(scratch.path(), fs::perms(0777));
        makeDirectory(disk, 0777);
        makeDirectory(theirs, 0777);
        writeFile(theirs / "kept", "theirs");
        giveTreeToStranger(theirs);
    }

    /// What the work does with the stranger's things there ends in a refusal or not, but never in a change of
    /// them.
    template <typename Work>
    void expectUntouched(const std::string& what, const fs::path& planted, Work work) {
        const std::string before = treeState(theirs);
        const auto status = linkStatus(planted);
        work();
        EXPECT_EQ(treeState(theirs), before) << what;
        const auto after = linkStatus(planted);
        ASSERT_TRUE(status && after) << what;
        EXPECT_EQ(after->st_ino, status->st_ino) << what;
        EXPECT_EQ(after->st_uid, status->st_uid) << what;
        EXPECT_EQ(after->st_mode, status->st_mode) << what;
        EXPECT_EQ(after->st_size, status->st_size) << what;
    }

    ScratchFolder scratch;
    const fs::path disk = scratch / "disk";
    const fs::path theirs = scratch / "theirs";
};

/// What a stranger can put at a path.
const std::map<std::string, std::function<void(const fs::path& path, const fs::path& theirs)>> plants{
    {"a link to a folder", [](const auto& path, const auto& theirs) { fs::create_symlink(theirs, path); }},
    {"a link to a file",
     [](const auto& path, const auto& theirs) { fs::create_symlink(theirs / "kept", path); }},
    {"a link to nothing",
     [](const auto& path, const auto& theirs) { fs::create_symlink(theirs / "missing", path); }},
    {"a file", [](const auto& path, const auto&) { writeFile(path, "planted"); }},
    {"a hard link",
     [](const auto& path, const auto& theirs) { fs::create_hard_link(theirs / "kept", path); }},
    {"a pipe", [](const auto& path, const auto&) { ASSERT_EQ(::mkfifo(path.c_str(), 0666), 0); }},
    {"a socket",
     [](const auto& path, const auto&) { ASSERT_EQ(::mknod(path.c_str(), S_IFSOCK | 0666, 0), 0); }},
};

/// Every kind of job on a repository, whatever becomes of each.
std::vector<std::string> doEverything(const BackupRepository& repository, const Snapshot& snapshot,
                                      const fs::path& scratch) {
    const fs::path download = scratch / "download";
    writeFile(download, "fresh");
    const std::function<void()> jobs[] = {
        [&] { repository.initialize(); },
        [&] { repository.validate(); },
        [&] { repository.lock(); },
        [&] { repository.snapshots(); },
        [&] { repository.latestSnapshot({}); },
        [&] { repository.importFile(download, file("fresh", "fresh").source, {}); },
        [&] { repository.staging(Uuid::random()); },
        [&] { repository.restore(snapshot, scratch / "restored", {}); },
        [&] { repository.prune(Date{5000}); },
        [&] { repository.commit(snapshot); },
    };
    std::vector<std::string> refusals;
    for (const auto& job : jobs)
        try {
            job();
        } catch (const std::exception& refusal) {
            refusals.emplace_back(refusal.what());
        }
    fs::remove_all(scratch / "restored");
    fs::remove(download);
    return refusals;
}

} // namespace

TEST_F(SharedDisk, isRefusedWhereSomethingStandsInPlaceOfARepository) {
    for (const char* place : {"Marrowbox", "Marrowbox/FEDCBA98-7654-3210-FEDC-BA9876543210"})
        for (const auto& [kind, plant] : plants) {
            const fs::path planted = disk / place;
            fs::create_directories(planted.parent_path());
            plant(planted, theirs);
            giveToStranger(planted);
            const std::string what = kind + " at " + place;
            expectUntouched(what, planted, [&] {
                EXPECT_THROW(BackupRepository(disk, unitID).initialize(), std::exception) << what;
            });
            fs::remove_all(disk / "Marrowbox");
        }
}

TEST_F(SharedDisk, takesAPrivateRepositoryInAFolderThatAnotherUserMade) {
    for (const mode_t mode : {0777U, 01777U}) {
        makeDirectory(disk / "Marrowbox", mode);
        giveToStranger(disk / "Marrowbox");
        const TestRepository repository(disk);
        EXPECT_EQ(linkStatus(repository->root())->st_uid, ::geteuid());
        EXPECT_EQ(linkStatus(repository->root())->st_mode, mode_t(S_IFDIR | 0700));
        repository->lock();
        EXPECT_FALSE(doneByStranger([&] {
            return ::open((repository / "Repository.json").c_str(), O_RDONLY | O_CLOEXEC) >= 0 ||
                   ::mkdir((repository / "Staging/planted").c_str(), 0700) == 0;
        }));
        fs::remove_all(disk / "Marrowbox");
    }
}

TEST_F(SharedDisk, givesNothingToARepositoryThatAnotherUserPutInThePlaceOfOnes) {
    const TestRepository repository(disk);
    const Snapshot snapshot = repository.publish({stored(repository, "a", "content")}, 1000);
    fs::permissions(disk / "Marrowbox", fs::perms(0777));
    ASSERT_TRUE(doneByStranger([&] {
        return ::rename(repository->root().c_str(), (disk / "Marrowbox/away").c_str()) == 0 &&
               ::mkdir(repository->root().c_str(), 0777) == 0;
    }));
    fs::copy(disk / "Marrowbox/away", repository->root(), fs::copy_options::recursive);
    giveTreeToStranger(repository->root());
    const std::string before = treeState(disk);
    EXPECT_EQ(thrown<BackupError>([&] { repository->lock(); }), foreignRefusal);
    EngineRun run(disk);
    EXPECT_EQ(thrown<BackupError>([&] { run(); }), foreignRefusal);
    EXPECT_EQ(treeState(disk), before);
}

TEST_F(SharedDisk, isNeverFollowedFilledOrWaitedForAtAnyLevelOfARepository) {
    const fs::path manifest = "Snapshots/11111111-2222-3333-4444-555555555555.json";
    for (const fs::path& place :
         {fs::path("Objects"), fs::path("Snapshots"), fs::path("Staging"), fs::path("Repository.json"),
          fs::path(".lock"), manifest, fs::path("fan-out"), fs::path("object")})
        for (const auto& [kind, plant] : plants) {
            const TestRepository repository(disk);
            const Snapshot snapshot = repository.publish({stored(repository, "a", "content")}, 1000);
            fs::path planted = repository->root() / place;
            if (place == "fan-out")
                planted = repository.object("fresh").parent_path();
            if (place == "object")
                planted = repository.object("content");
            fs::remove_all(planted);
            plant(planted, theirs);
            giveToStranger(planted);
            const std::string what = kind + " at " + place.string();
            expectUntouched(what, planted, [&] { doEverything(*repository, snapshot, scratch.path()); });
            fs::remove_all(disk / "Marrowbox");
        }
}

TEST_F(SharedDisk, isNotReadForEverWhereSomebodyFillsAPipe) {
    for (const char* place : {"Repository.json", ".lock", "Snapshots/planted.json", "object", "import"}) {
        const TestRepository repository(disk);
        const Snapshot snapshot = repository.publish({stored(repository, "a", "content")}, 1000);
        fs::path planted = repository / place;
        if (place == std::string("object"))
            planted = repository.object("content");
        if (place == std::string("import")) {
            planted = repository.object("fresh");
            fs::create_directories(planted.parent_path());
        }
        fs::remove(planted);
        const EndlessPipe pipe(planted);
        doEverything(*repository, snapshot, scratch.path());
        // What is named like an object that no snapshot needs goes by a pruning, whatever it is.
        EXPECT_EQ(fs::is_fifo(planted), place != std::string("import")) << place;
        fs::remove_all(disk / "Marrowbox");
    }
}

TEST_F(SharedDisk, isBusyWhileAnotherUserHoldsALockFileThatHePlanted) {
    const TestRepository repository(disk);
    writeFile(repository / ".lock", "planted");
    giveToStranger(repository / ".lock");
    fs::permissions(repository.destination() / "Marrowbox", fs::perms(0711));
    fs::permissions(repository->root(), fs::perms(0711));
    const StrangerAtWork holder([&] {
        const int file = ::open((repository / ".lock").c_str(), O_RDWR | O_CLOEXEC);
        return file >= 0 && ::flock(file, LOCK_EX | LOCK_NB) == 0;
    });
    ASSERT_TRUE(holder.isReady());
    EXPECT_EQ(thrown<LockBusyError>([&] { repository->lock(); }), busyRefusal);
    EXPECT_EQ(readFile(repository / ".lock"), "planted");
}

TEST_F(SharedDisk, getsNothingOfARestoreThroughALinkThatIsPutThereMeanwhile) {
    const RestoreTarget target(scratch / "restored");
    fs::permissions(target.path(), fs::perms(0777)); // as a umask makes it that lets a group in
    ASSERT_TRUE(
        doneByStranger([&] { return ::symlink(theirs.c_str(), (target.path() / "folder").c_str()) == 0; }));
    const std::string before = treeState(theirs);
    EXPECT_THROW(target.folder("folder"), std::system_error);
    EXPECT_THROW(target.folder("folder/below"), std::system_error);
    EXPECT_EQ(treeState(theirs), before);
}

TEST_F(SharedDisk, getsNothingOfARestoreWhoseTargetIsSwappedMeanwhile) {
    const RestoreTarget target(scratch / "restored");
    ASSERT_TRUE(doneByStranger([&] {
        return ::rename(target.path().c_str(), (scratch / "away").c_str()) == 0 &&
               ::symlink(theirs.c_str(), target.path().c_str()) == 0;
    }));
    const std::string before = treeState(theirs);
    target.folder("a/b");
    EXPECT_EQ(treeState(theirs), before);
    EXPECT_TRUE(fs::is_directory(scratch / "away/a/b"));
}

TEST_F(SharedDisk, isNoTargetWhereSomethingStandsAlready) {
    const TestRepository repository(disk);
    const Snapshot snapshot = repository.publish({stored(repository, "a", "content")}, 1000);
    for (const auto& [kind, plant] : plants) {
        const fs::path planted = scratch / "restored";
        plant(planted, theirs);
        giveToStranger(planted);
        expectUntouched(kind, planted, [&] {
            EXPECT_EQ(thrown<BackupError>([&] { repository->restore(snapshot, planted, {}); }),
                      "Choose a new folder for this restored snapshot.")
                << kind;
        });
        fs::remove(planted);
    }
}

TEST_F(SharedDisk, getsNothingOfARunWhoseRepositoryIsSwappedMeanwhile) {
    EngineRun run(disk);
    for (int number = 0; number < 33; ++number) // two batches
        run.source->put("file " + std::to_string(number), std::to_string(number));
    fs::permissions(disk / "Marrowbox", fs::perms(0777));
    const std::string before = treeState(theirs);
    run.source->afterDownload = [&](int batch, const fs::path&) {
        if (batch == 1)
            ASSERT_TRUE(doneByStranger([&] {
                return ::rename(run.repository->root().c_str(), (disk / "Marrowbox/away").c_str()) == 0 &&
                       ::symlink(theirs.c_str(), run.repository->root().c_str()) == 0;
            }));
    };
    EXPECT_THROW(run(), std::exception);
    EXPECT_EQ(run.source->batches.size(), 1U);
    EXPECT_EQ(treeState(theirs), before);
}

} // namespace marrowbox::test
