#include "MountWorld.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "SnapshotMount/MountPaths.h"
#include "Support/Stranger.h"
#include "Support/Thrown.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

const std::string unsafeRoot = "Unsafe snapshot mount root was retained.";

} // namespace

TEST(MountRoots, areMadePrivateWithTheirParents) {
    const test::ScratchFolder scratch;
    const auto machine = std::make_shared<test::ScriptedMachine>();
    const MountRegistryFolder folder(scratch / "data/Marrowbox/./MountedSnapshots/", machine);
    EXPECT_EQ(folder.directory(), scratch / "data/Marrowbox/MountedSnapshots");
    EXPECT_TRUE(fs::is_empty(scratch.path())) << "building the value touches nothing";
    folder.ensureDirectories();
    folder.ensureDirectories();
    for (const fs::path& made : {scratch / "data", folder.directory(), folder.workRoot()})
        EXPECT_EQ(linkStatus(made)->st_mode, mode_t(S_IFDIR | 0700)) << made;
}

TEST(MountRoots, lieAmongTheUsersApplicationDataUnlessToldOtherwise) {
    const Environment environment{{"MARROW_DATA_DIR", "/data"}, {"HOME", "/home/me"}};
    EXPECT_EQ(SnapshotMount::defaultRegistryDirectory(environment),
              "/home/me/.local/share/Marrowbox/SnapshotMounts");
    EXPECT_EQ(SnapshotMount::defaultRegistryDirectory({{"XDG_DATA_HOME", "/share"}, {"HOME", "/home/me"}}),
              "/share/Marrowbox/SnapshotMounts");
}

TEST(MountRoots, refuseADirectoryThatIsALinkAndMakeNothingBehindIt) {
    test::MountWorld world;
    fs::remove_all(world.directory);
    fs::create_directory(world.scratch / "elsewhere");
    fs::create_symlink(world.scratch / "elsewhere", world.directory);
    world.expectEveryOperationRefuses(unsafeRoot);
}

TEST(MountRoots, refuseAWorkRootThatIsALink) {
    test::MountWorld world;
    fs::remove(world.folder.workRoot());
    fs::create_directory(world.scratch / "elsewhere");
    fs::create_symlink(world.scratch / "elsewhere", world.folder.workRoot());
    world.expectEveryOperationRefuses(unsafeRoot);
    EXPECT_EQ(world.refusedValidation<BackupError>(world.newEntry(), MarkerCheck::notRequired), unsafeRoot);
}

TEST(MountRoots, thatAreFilesAreTheSystemsToRefuse) {
    const test::MountWorld world;
    fs::remove(world.folder.workRoot());
    openFile(world.folder.workRoot(), O_WRONLY | O_CREAT, 0600);
    EXPECT_NE(world.refusal<std::system_error>([&] { world.folder.ensureDirectories(); }), "");
    EXPECT_EQ(world.refusedValidation<BackupError>(world.newEntry(), MarkerCheck::notRequired), unsafeRoot);
}

TEST(MountRoots, ofSomebodyElseAreRefused) {
    test::MountWorld world;
    for (const fs::path& root : {world.directory, world.folder.workRoot()}) {
        world.machine->owners = {{root, ::getuid() + 1}};
        SCOPED_TRACE(root);
        world.expectEveryOperationRefuses(unsafeRoot);
    }
}

TEST(MountRoots, thatWereGivenToAnotherUserAreRefused) {
    if (::getuid() != 0)
        GTEST_SKIP() << "only the administrator can give a folder away";
    for (const bool isWorkRoot : {false, true}) {
        test::MountWorld world;
        const fs::path root = isWorkRoot ? world.folder.workRoot() : world.directory;
        ASSERT_EQ(::chown(root.c_str(), 65534, 65534), 0);
        SCOPED_TRACE(root);
        world.expectEveryOperationRefuses(unsafeRoot);
    }
}

TEST(MountRoots, areNotMadeInAFolderOfAnotherUser) {
    if (const auto reason = test::reasonForNoStranger())
        GTEST_SKIP() << *reason;
    const test::ScratchFolder scratch;
    const fs::path data = scratch / "data";
    makeDirectory(data, 0777);
    test::giveToStranger(data);
    const MountRegistryFolder folder(data / "MountedSnapshots", std::make_shared<test::ScriptedMachine>());
    EXPECT_EQ(test::thrown<BackupError>([&] { folder.ensureDirectories(); }), unsafeRoot);
    EXPECT_TRUE(fs::is_empty(data));
}

TEST(MountRoots, areLockedThroughNoLink) {
    test::MountWorld world;
    openFile(world.scratch / "elsewhere", O_WRONLY | O_CREAT, 0600);
    for (const fs::path& target : {world.scratch / "elsewhere", world.scratch / "missing"}) {
        fs::remove(world.directory / "mounts.lock");
        fs::create_symlink(target, world.directory / "mounts.lock");
        SCOPED_TRACE(target);
        EXPECT_EQ(test::thrown<BackupError>([&] { world.folder.lock(); }),
                  "Could not open the backup lock. Check destination permissions.");
    }
    EXPECT_FALSE(fs::exists(world.scratch / "missing"));
}

TEST(MountRoots, areLockedWithoutWaitingForAPipe) {
    if (const auto reason = test::reasonForNoStranger())
        GTEST_SKIP() << *reason;
    test::MountWorld world;
    fs::remove(world.directory / "mounts.lock");
    const test::EndlessPipe pipe(world.directory / "mounts.lock");
    world.folder.lock();
    EXPECT_TRUE(fs::is_fifo(world.directory / "mounts.lock"));
}

TEST(MountRoots, thatVanishedFailValidationWithTheSystemsError) {
    const test::MountWorld world;
    fs::remove_all(world.directory);
    const MountEntry entry = world.newEntry();
    EXPECT_THROW(world.folder.validate(entry, MarkerCheck::notRequired), std::system_error);
}

TEST(NestedMount, isAnythingMountedAtOrBelowTheFolder) {
    const test::MountWorld world;
    const fs::path root = world.folder.workRoot();
    const auto answer = [&](const fs::path& point) {
        world.machine->mounted = {{"/", "/proc", point}};
        return world.folder.hasNestedMount(root);
    };
    EXPECT_TRUE(answer(root));
    EXPECT_TRUE(answer(root / "below/deep"));
    EXPECT_FALSE(answer(root.string() + "-beside"));
    EXPECT_FALSE(answer(root.parent_path()));
}

TEST(NestedMount, isAssumedWhenTheListOfMountsCannotBeRead) {
    const test::MountWorld world;
    world.machine->mounted.reset();
    EXPECT_TRUE(world.folder.hasNestedMount(world.folder.workRoot()));
    world.machine->mounted.emplace();
    EXPECT_TRUE(world.folder.hasNestedMount(world.folder.workRoot()));
}

TEST(NestedMount, isFoundThroughALinkInThePath) {
    const test::MountWorld world;
    fs::create_directory_symlink(world.scratch.path(), world.scratch / "way");
    world.machine->mounted = {{"/", world.folder.workRoot() / "x"}};
    EXPECT_TRUE(world.folder.hasNestedMount(world.scratch / "way" / "MountedSnapshots"));
}

TEST(MountPaths, areStandardizedByTheirTextAlone) {
    EXPECT_EQ(standardized("/a/./b//c/../d/"), "/a/b/d");
    EXPECT_EQ(standardized("/"), "/");
    EXPECT_EQ(standardized("/.."), "/");
}

TEST(MountPaths, areResolvedAsFarAsTheyExist) {
    const test::ScratchFolder scratch;
    fs::create_directory(scratch / "real");
    fs::create_directory_symlink(scratch / "real", scratch / "link");
    fs::create_directory_symlink("gone/far", scratch / "dangling");
    const fs::path base = fs::canonical(scratch.path());
    EXPECT_EQ(resolved(scratch / "link/new/file"), base / "real/new/file");
    EXPECT_EQ(resolved(scratch / "dangling"), base / "gone/far");
    fs::create_directory_symlink("circle", scratch / "circle");
    EXPECT_EQ(resolved(scratch / "circle"), scratch / "circle");
}

TEST(MountPaths, countTheRootAsInsideAndNoNeighbour) {
    EXPECT_TRUE(isInside("/no/root", "/no/root"));
    EXPECT_TRUE(isInside("/no/root/a", "/no/root/"));
    EXPECT_FALSE(isInside("/no/rooted", "/no/root"));
    EXPECT_FALSE(isInside("/no", "/no/root"));
}

TEST(MountPaths, findAMountPointInsideThroughALinkWithoutAskingWhatIsMountedThere) {
    const test::ScratchFolder scratch;
    fs::create_directories(scratch / "real/root");
    fs::create_directory_symlink(scratch / "real", scratch / "way");
    EXPECT_TRUE(isInside(scratch / "way/root", scratch / "real/root"));
    EXPECT_TRUE(isInside(scratch / "real/root/a", scratch / "way/root"));
    // Only a look at the place itself would tell that this one leads inside.
    fs::create_directory_symlink(scratch / "real/root", scratch / "beside");
    EXPECT_FALSE(isInside(scratch / "beside", scratch / "real/root"));
}

TEST(MountPaths, takeADanglingLinkForSomething) {
    const test::ScratchFolder scratch;
    fs::create_symlink(scratch / "gone", scratch / "link");
    EXPECT_TRUE(somethingExists(scratch / "link"));
    EXPECT_FALSE(somethingExists(scratch / "gone"));
}

} // namespace marrowbox
