#include "Repository/RepositoryLock.h"

#include "Models/BackupError.h"
#include "Repository/LockBusyError.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <optional>
#include <sys/file.h>
#include <sys/wait.h>

namespace marrowbox {

namespace {

const std::string busy = "Somebody else is at work.";
const std::string cannotOpen = "Could not open the backup lock. Check destination permissions.";

std::string refusalToLock(const fs::path& path) {
    return test::thrown<LockBusyError>([&] { RepositoryLock lock(path, busy); });
}

} // namespace

TEST(RepositoryLock, makesThePrivateFileThatItLocks) {
    const test::ScratchFolder folder;
    const RepositoryLock lock(folder / ".lock", busy);
    EXPECT_EQ(linkStatus(folder / ".lock")->st_mode & 07777, 0600u);
    EXPECT_EQ(::fcntl(lock.descriptor(), F_GETFD), FD_CLOEXEC);
}

TEST(RepositoryLock, refusesASecondLockInTheSameProcessAtOnce) {
    const test::ScratchFolder folder;
    const RepositoryLock lock(folder / ".lock", busy);
    EXPECT_EQ(refusalToLock(folder / ".lock"), busy);
}

TEST(RepositoryLock, isFreeAgainAndLeavesItsFileWhenTheObjectEnds) {
    const test::ScratchFolder folder;
    {
        const RepositoryLock lock(folder / ".lock", busy);
    }
    EXPECT_TRUE(fs::exists(folder / ".lock"));
    EXPECT_NO_THROW(RepositoryLock(folder / ".lock", busy));
}

TEST(RepositoryLock, staysHeldWhenItIsMoved) {
    const test::ScratchFolder folder;
    std::optional<RepositoryLock> first(std::in_place, folder / ".lock", busy);
    std::optional<RepositoryLock> second(std::move(first));
    first.reset();
    EXPECT_EQ(refusalToLock(folder / ".lock"), busy);
    second.reset();
    EXPECT_NO_THROW(RepositoryLock(folder / ".lock", busy));
}

TEST(RepositoryLock, letsGoOfItsOwnFileWhenAnotherLockIsMovedIntoIt) {
    const test::ScratchFolder folder;
    RepositoryLock kept(folder / "one", busy);
    kept = RepositoryLock(folder / "two", busy);
    EXPECT_NO_THROW(RepositoryLock(folder / "one", busy));
    EXPECT_EQ(refusalToLock(folder / "two"), busy);
}

TEST(RepositoryLock, refusesALinkAndLeavesItsTargetUnmade) {
    const test::ScratchFolder folder;
    fs::create_symlink(folder / "elsewhere", folder / ".lock");
    const auto message = test::thrown<BackupError>([&] { RepositoryLock(folder / ".lock", busy); });
    EXPECT_EQ(message, cannotOpen);
    EXPECT_FALSE(fs::exists(folder / "elsewhere"));
}

TEST(RepositoryLock, saysThatAMissingFolderHasNoLock) {
    const test::ScratchFolder folder;
    const auto message = test::thrown<BackupError>([&] { RepositoryLock(folder / "gone" / ".lock", busy); });
    EXPECT_EQ(message, cannotOpen);
}

TEST(RepositoryLock, isDroppedByTheSystemWhenItsProcessDies) {
    const test::ScratchFolder folder;
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const int file = ::open((folder / ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        ::_exit(file >= 0 && ::flock(file, LOCK_EX | LOCK_NB) == 0 ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    EXPECT_NO_THROW(RepositoryLock(folder / ".lock", busy));
}

} // namespace marrowbox
