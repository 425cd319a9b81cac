#include "SnapshotMount/MountPointFolder.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "Support/ScratchFolder.h"
#include "Support/Stranger.h"
#include "Support/Thrown.h"
#include "Support/TreeState.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

struct Points {
    test::ScratchFolder scratch;
    MountPointFolder folder{fs::canonical(scratch.path()) / "marrowbox", ::getuid()};

    void expectRefused() {
        const std::string before = test::treeState(scratch.path());
        EXPECT_EQ(test::thrown<BackupError>([&] { folder.prepare(); }),
                  "Unsafe snapshot mount root was retained.");
        EXPECT_EQ(test::treeState(scratch.path()), before);
    }
};

} // namespace

TEST(MountPointFolder, liesInTheRuntimeFolderOfTheSession) {
    const test::ScratchFolder scratch;
    EXPECT_EQ(MountPointFolder::place({{"XDG_RUNTIME_DIR", scratch.path()}}, ::getuid()),
              scratch / "marrowbox");
}

TEST(MountPointFolder, liesInNoRuntimeFolderThatIsNotTheUsersAlone) {
    const test::ScratchFolder scratch;
    const std::map<std::string, std::string> environment{{"XDG_RUNTIME_DIR", scratch.path()}};
    const uid_t user = ::getuid();
    EXPECT_EQ(MountPointFolder::place(environment, user + 1), "/tmp/marrowbox-" + std::to_string(user + 1));
    for (const unsigned mode : {0777U, 0770U, 01777U, 0702U}) {
        fs::permissions(scratch.path(), fs::perms(mode));
        EXPECT_EQ(MountPointFolder::place(environment, user), "/tmp/marrowbox-" + std::to_string(user));
    }
    fs::permissions(scratch.path(), fs::perms(0755));
    EXPECT_EQ(MountPointFolder::place(environment, user), scratch / "marrowbox");
}

TEST(MountPointFolder, liesBesideTheUsersNumberWhereTheSessionHasNone) {
    using Environment = std::map<std::string, std::string>;
    for (const Environment& environment :
         {Environment{}, Environment{{"XDG_RUNTIME_DIR", ""}}, Environment{{"XDG_RUNTIME_DIR", "relative"}},
          Environment{{"XDG_RUNTIME_DIR", "/no/such/folder"}}})
        EXPECT_EQ(MountPointFolder::place(environment, 1000), "/tmp/marrowbox-1000");
}

TEST(MountPointFolder, isMadePrivateAndAcceptedAgain) {
    Points points;
    points.folder.prepare();
    points.folder.prepare();
    EXPECT_EQ(linkStatus(points.folder.path())->st_mode, mode_t(S_IFDIR | 0700));
}

TEST(MountPointFolder, isRefusedAsALinkAFileOrOpenToOthers) {
    Points points;
    fs::create_directory(points.scratch / "elsewhere");
    fs::permissions(points.scratch / "elsewhere", fs::perms::owner_all);
    fs::create_directory_symlink(points.scratch / "elsewhere", points.folder.path());
    points.expectRefused();
    fs::remove(points.folder.path());
    openFile(points.folder.path(), O_WRONLY | O_CREAT, 0700);
    points.expectRefused();
    fs::remove(points.folder.path());
    makeDirectory(points.folder.path(), 0750);
    points.expectRefused();
}

TEST(MountPointFolder, ofSomebodyElseIsRefused) {
    Points points;
    points.folder.prepare();
    points.folder = MountPointFolder(points.folder.path(), ::getuid() + 1);
    points.expectRefused();
}

TEST(MountPointFolder, thatAnotherUserMadeBeforeIsRefused) {
    if (const auto reason = test::reasonForNoStranger())
        GTEST_SKIP() << *reason;
    Points points;
    fs::permissions(points.scratch.path(), fs::perms(01777));
    ASSERT_TRUE(test::doneByStranger([&] { return ::mkdir(points.folder.path().c_str(), 0700) == 0; }));
    points.expectRefused();
    fs::remove(points.folder.path());
    ASSERT_TRUE(test::doneByStranger([&] { return ::mkfifo(points.folder.path().c_str(), 0777) == 0; }));
    points.expectRefused();
}

TEST(MountPointFolder, numbersANameThatIsTaken) {
    Points points;
    points.folder.prepare();
    const fs::path taken = points.folder.path() / "M";
    makeDirectory(taken, 0700);
    openFile(taken / "file", O_WRONLY | O_CREAT, 0600);
    fs::create_symlink("nowhere", points.folder.path() / "M 1");
    EXPECT_EQ(points.folder.makeMountPoint("M"), points.folder.path() / "M 2");
    EXPECT_TRUE(fs::exists(taken / "file"));
    EXPECT_TRUE(isSymbolicLink(points.folder.path() / "M 1"));
}

TEST(MountPointFolder, usesAnEmptyFolderOfAnEarlierVolumeAgain) {
    Points points;
    points.folder.prepare();
    EXPECT_EQ(points.folder.makeMountPoint("M"), points.folder.path() / "M");
    EXPECT_EQ(points.folder.makeMountPoint("M"), points.folder.path() / "M");
}

TEST(MountPointFolder, looksForNoOtherNameWhereNoneCanBeMade) {
    Points points;
    points.folder.prepare();
    EXPECT_THROW(points.folder.makeMountPoint(std::string(300, 'M')), std::system_error);
    EXPECT_TRUE(fs::is_empty(points.folder.path()));
}

TEST(MountPointFolder, removesOnlyEmptyFoldersThatItHolds) {
    Points points;
    points.folder.prepare();
    const fs::path made = points.folder.makeMountPoint("M");
    const fs::path full = points.folder.makeMountPoint("Full");
    openFile(full / "file", O_WRONLY | O_CREAT, 0600);
    fs::create_directory(points.scratch / "elsewhere");
    for (const fs::path& path : {made, full, points.scratch / "elsewhere", points.folder.path()})
        points.folder.removeMountPoint(path);
    EXPECT_FALSE(fs::exists(made));
    EXPECT_TRUE(fs::exists(full / "file"));
    EXPECT_TRUE(fs::exists(points.scratch / "elsewhere"));
}

} // namespace marrowbox
