#include "EngineRun.h"
#include "Models/BackupError.h"
#include "Repository/LockBusyError.h"
#include "SmallDisk.h"
#include "Support/Thrown.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>

namespace marrowbox {

namespace {

using namespace test;

/// A run on a disk of four megabytes, with a published snapshot in it.
class BadDestination : public testing::Test {
  protected:
    void SetUp() override {
        if (!disk.isMounted())
            GTEST_SKIP() << disk.whyNot();
        run.emplace(disk.path());
        run->source->put("kept", "content");
        published = (*run)();
    }

    /// What the system says against the run. Fails the test unless the history is as it was and whole.
    std::error_code failure() {
        try {
            (*run)();
        } catch (const std::system_error& error) {
            return error.code();
        }
        ADD_FAILURE() << "the run succeeded";
        return {};
    }

    void expectHistoryIsWhole() {
        EXPECT_EQ(run->repository->snapshots(), std::vector{published});
        EXPECT_EQ(readFile(run->repository.object("content")), "content");
    }

    SmallDisk disk{4};
    std::optional<EngineRun> run;
    Snapshot published;
};

} // namespace

TEST_F(BadDestination, keepsItsHistoryWhenTheDiskFillsWhileFilesArrive) {
    for (int number = 0; number < 3; ++number)
        run->source->put(std::to_string(number), std::string(2 << 20, static_cast<char>('a' + number)));
    EXPECT_EQ(failure(), std::errc::no_space_on_device);
    expectHistoryIsWhole();
    EXPECT_TRUE(fs::is_empty(run->repository / "Staging"));
    for (int number = 0; number < 3; ++number)
        run->source->remove(std::to_string(number));
    EXPECT_NO_THROW((*run)()) << "the work folder's room is free again";
}

TEST_F(BadDestination, keepsItsHistoryWhenTheDiskFillsWhileTheManifestIsWritten) {
    run->source->beforeInventory = [&](int call, const fs::path&) {
        if (call % 2 == 0)
            writeFile(disk.path() / "filler", std::string(disk.freeBytes(), 'x'));
    };
    EXPECT_EQ(failure(), std::errc::no_space_on_device);
    expectHistoryIsWhole();
    EXPECT_EQ(directoryNames(run->repository / "Snapshots").size(), 1u) << "no part of a manifest stays";
    fs::remove(disk.path() / "filler");
    run->source->beforeInventory = nullptr;
    EXPECT_NO_THROW((*run)());
}

TEST_F(BadDestination, isAnIdentityFailureWhenTheDiskIsGoneBeforeTheRun) {
    disk.takeAway();
    EXPECT_EQ(thrown<BackupError>([&] { (*run)(); }), identityRefusal);
    EXPECT_TRUE(fs::is_empty(disk.path())) << "nothing is made in place of the disk";
}

TEST_F(BadDestination, makesNothingInPlaceOfADiskThatGoesAwayWhileFilesArrive) {
    run->source->put("new", "new content");
    run->source->afterDownload = [&](int, const fs::path&) { disk.takeAway(); };
    EXPECT_EQ(thrown<BackupError>([&] { (*run)(); }), identityRefusal);
    EXPECT_TRUE(fs::is_empty(disk.path()));
}

TEST_F(BadDestination, publishesNothingWhenTheDiskGoesAwayBeforeTheEnd) {
    run->source->beforeInventory = [&](int call, const fs::path&) {
        if (call % 2 == 0)
            disk.takeAway();
    };
    EXPECT_EQ(thrown<BackupError>([&] { (*run)(); }), identityRefusal);
    EXPECT_TRUE(fs::is_empty(disk.path()));
}

TEST_F(BadDestination, changesNothingOnAReadOnlyDisk) {
    const auto before = contentsOf(disk.path());
    disk.makeReadOnly();
    EXPECT_EQ(thrown<BackupError>([&] { (*run)(); }),
              "Could not open the backup lock. Check destination permissions.");
    EXPECT_EQ(run->repository->snapshots(), std::vector{published}) << "history reads all the same";
    EXPECT_EQ(contentsOf(disk.path()), before);
}

TEST_F(BadDestination, isStoppedByAStoreThatTurnsReadOnlyInMidRun) {
    run->source->put("new", "new content");
    const fs::path objects = run->repository / "Objects";
    run->source->afterDownload = [&](int, const fs::path&) { disk.makeReadOnly(objects); };
    EXPECT_EQ(failure(), std::errc::read_only_file_system);
    disk.makeWritable(objects);
    expectHistoryIsWhole();
    run->source->afterDownload = nullptr;
    EXPECT_NO_THROW((*run)());
}

TEST_F(BadDestination, isNotHurtByAWorkFolderThatCannotBeRemoved) {
    run->source->put("new", "new content");
    const fs::path staging = run->repository / "Staging";
    run->source->beforeInventory = [&](int call, const fs::path&) {
        if (call % 2 == 0)
            disk.makeReadOnly(staging);
    };
    const Snapshot snapshot = (*run)();
    disk.makeWritable(staging);
    EXPECT_EQ(run->repository->snapshots(), (std::vector{published, snapshot}));
    EXPECT_TRUE(fs::exists(staging / snapshot.id.text()));
}

TEST_F(BadDestination, refusesToInitialiseOnAReadOnlyDisk) {
    disk.makeReadOnly();
    const BackupRepository repository(disk.path(), Uuid::random());
    EXPECT_THROW(repository.initialize(), std::system_error);
}

TEST(TwoProcesses, doNotWorkOnOneRepositoryAtTheSameTime) {
    EngineRun run;
    run.source->put("a", "content");
    // The other process tells when it holds the lock, and holds it until it is told to end.
    int ready[2];
    int end[2];
    ASSERT_EQ(::pipe2(ready, O_CLOEXEC), 0);
    ASSERT_EQ(::pipe2(end, O_CLOEXEC), 0);
    const pid_t other = ::fork();
    ASSERT_GE(other, 0);
    if (other == 0) {
        const int lock = ::open((run.repository / ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        char byte = ::flock(lock, LOCK_EX | LOCK_NB) == 0 ? '1' : '0';
        const bool isTold = ::write(ready[1], &byte, 1) == 1;
        ::close(end[1]);
        ::_exit(isTold && ::read(end[0], &byte, 1) == 0 ? 0 : 1);
    }
    char held = 0;
    ASSERT_EQ(::read(ready[0], &held, 1), 1);
    ASSERT_EQ(held, '1');
    EXPECT_EQ(thrown<LockBusyError>([&] { run(); }), busyRefusal);
    EXPECT_EQ(run.source->inventories, 0);
    for (const int descriptor : {ready[0], ready[1], end[0], end[1]})
        ::close(descriptor);
    int status = 0;
    ASSERT_EQ(::waitpid(other, &status, 0), other);
    EXPECT_EQ(status, 0);
    EXPECT_NO_THROW(run());
}

} // namespace marrowbox
