#include "KillSwitch.h"
#include "MountWorld.h"

#include "Platform/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

namespace marrowbox {

namespace {

const std::string inUse = "Snapshot temporary files may still be in use and were retained.";
const std::string preparing = "Snapshot preparation is still running and was retained.";
const std::string unknownTools =
    "Running mount preparation could not be inspected; temporary files were retained.";
const std::string nested = "A filesystem is mounted inside snapshot temporary files; they were retained.";
const std::string mountedAfterAll = "Snapshot temporary files are still mounted and were retained.";

/// One finished mount to remove, and the removal.
struct Removal {
    test::MountWorld world;
    MountEntry entry = world.prepare();
    OwnedRemoval removal{world.folder, world.machine, std::make_shared<HdiutilTool>(world.machine)};

    void run() { world.run(removal.remove(entry, {})); }
    template <typename Error = BackupError>
    std::string refused() {
        return world.refusal<Error>([&] { run(); });
    }
    /// Runs an action when a tool is called, and answers as usual.
    void whenCalled(const std::string& call, std::function<void()> action) {
        world.machine->answerOnce(call, [this, action](const ToolCommand& command) {
            action();
            return world.machine->usual(command);
        });
    }
    fs::path workFolder() const { return entry.workingDirectory.path(); }
};

/// A folder that even the administrator cannot change while the object lives.
class Frozen {
  public:
    explicit Frozen(const fs::path& path) : folder_(openFile(path, O_RDONLY | O_DIRECTORY)) { set(true); }
    ~Frozen() { set(false); }
    bool isFrozen() const { return isFrozen_; }

  private:
    void set(bool immutable) {
        int flags = 0;
        isFrozen_ = ::ioctl(folder_.number(), FS_IOC_GETFLAGS, &flags) == 0;
        flags = immutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
        isFrozen_ = isFrozen_ && ::ioctl(folder_.number(), FS_IOC_SETFLAGS, &flags) == 0;
    }
    Descriptor folder_;
    bool isFrozen_ = false;
};

} // namespace

TEST(OwnedRemoval, deletesAFreeWorkFolderAndItsEntryAndNothingElse) {
    Removal removal;
    const MountEntry other = removal.world.prepare();
    removal.run();
    EXPECT_FALSE(fs::exists(removal.workFolder()));
    EXPECT_TRUE(fs::exists(other.workingDirectory.path() / "Files" / "paper.txt"));
    EXPECT_EQ(removal.world.folder.load().entries, std::vector{other});
}

TEST(OwnedRemoval, asksTheToolsWithTheirExactArguments) {
    Removal removal;
    removal.run();
    const std::vector<ToolCommand> expected{
        {"/usr/bin/hdiutil", {"info", "-plist"}},
        {"/usr/sbin/lsof", {"-Fn", "+D", removal.workFolder().string()}},
        {"/bin/ps", {"-axo", "command="}},
        {"/usr/bin/hdiutil", {"info", "-plist"}},
    };
    EXPECT_EQ(removal.world.machine->calls, expected);
}

TEST(OwnedRemoval, ofAnEntryWithoutAFolderAsksNeitherForOpenFilesNorForProcesses) {
    Removal removal;
    fs::remove_all(removal.workFolder());
    removal.run();
    EXPECT_TRUE(removal.world.folder.load().entries.empty());
    EXPECT_EQ(removal.world.machine->count("lsof"), 0u);
    EXPECT_EQ(removal.world.machine->count("ps"), 0u);
}

TEST(OwnedRemoval, forgetsAFolderOnlyWhenItIsGoneForGood) {
    Removal removal;
    bool isGoneForGood = false;
    bool isForgotten = false;
    // Nothing is killed; the calls are only looked at.
    test::killBefore([&](std::string_view call, const std::string& path) {
        if (call == "fsync" && path == removal.world.folder.workRoot())
            isGoneForGood = !fs::exists(removal.workFolder());
        if (call == "rename" && path == removal.world.folder.registryFile()) {
            isForgotten = true;
            EXPECT_TRUE(isGoneForGood);
        }
        return false;
    });
    removal.run();
    test::killBefore({});
    EXPECT_TRUE(isForgotten);
}

TEST(OwnedRemoval, followsNoLinkOutOfTheWorkFolder) {
    Removal removal;
    const fs::path mine = removal.world.scratch / "mine";
    fs::create_directory(mine);
    writeAll(openFile(mine / "letter.txt", O_WRONLY | O_CREAT, 0600), "dear");
    fs::create_directory_symlink(mine, removal.workFolder() / "Files" / "way out");
    removal.run();
    EXPECT_EQ(readFile(mine / "letter.txt"), "dear");
    EXPECT_FALSE(fs::exists(removal.workFolder()));
}

TEST(OwnedRemoval, keepsAnAttachedImage) {
    Removal removal;
    removal.world.machine->attached = {{removal.entry.image.path(), std::nullopt}};
    EXPECT_EQ(removal.refused(), "The snapshot image is still attached and was retained.");
}

TEST(OwnedRemoval, keepsAnImageThatIsAttachedUnderAnotherSpelling) {
    Removal removal;
    fs::create_directory_symlink(removal.world.directory, removal.world.scratch / "way");
    const fs::path spelled =
        removal.world.scratch / "way/MountWork" / removal.workFolder().filename() / "Snapshot.dmg";
    removal.world.machine->attached = {{spelled, "/Volumes/Snapshot"}};
    EXPECT_EQ(removal.refused(), "The snapshot image is still attached and was retained.");
}

TEST(OwnedRemoval, keepsFilesThatAreOpenOrMayBe) {
    Removal removal;
    for (const ProcessRunner::Result& answer :
         {ProcessRunner::Result{0, ""}, {0, "p1\nn/x\n"}, {1, "p1\nn/x\n"}, {1, "\n"}, {2, ""}, {9, ""}}) {
        removal.world.machine->answer("lsof", answer);
        EXPECT_EQ(removal.refused(), inUse) << answer.status << answer.output;
    }
}

TEST(OwnedRemoval, keepsFilesWhileAToolNamesThemAnywhere) {
    Removal removal;
    const std::string folder = removal.workFolder();
    for (const std::string& line :
         {"hdiutil create -srcfolder " + folder + "/Files", "x" + folder, folder + "/Files/a/b",
          "open " + removal.entry.image.path().string(), "\xff\xfe " + folder + "\xff"}) {
        removal.world.machine->answer("ps", ProcessRunner::Result{0, "/sbin/launchd\n" + line + "\n"});
        EXPECT_EQ(removal.refused(), preparing) << line;
    }
}

TEST(OwnedRemoval, findsItsFolderInAListThatCannotShowThePathBeforeIt) {
    Removal removal;
    removal.world.machine->answer(
        "ps", ProcessRunner::Result{0, "mksquashfs /home/Ren?/" + removal.workFolder().filename().string() +
                                           "/Files\n"});
    EXPECT_EQ(removal.refused(), preparing);
}

TEST(OwnedRemoval, keepsFilesWhenTheProcessesCannotBeListed) {
    Removal removal;
    removal.world.machine->answer("ps", ProcessRunner::Result{1, ""});
    EXPECT_EQ(removal.refused(), unknownTools);
}

TEST(OwnedRemoval, keepsAFolderInWhichAFileSystemIsMounted) {
    Removal removal;
    removal.world.machine->mounted = {{"/", removal.workFolder() / "Files"}};
    EXPECT_EQ(removal.refused(), nested);
    removal.world.machine->mounted.reset();
    EXPECT_EQ(removal.refused(), nested);
}

TEST(OwnedRemoval, keepsEverythingWhenAToolCannotBeStarted) {
    for (const std::string call : {"hdiutil info", "lsof", "ps"}) {
        Removal removal;
        removal.world.machine->answer(call, [](const ToolCommand&) -> ProcessRunner::Result {
            throw std::system_error(ENOENT, std::generic_category(), "posix_spawn");
        });
        EXPECT_NE(removal.refused<std::system_error>(), "") << call;
    }
}

TEST(OwnedRemoval, keepsAnImageThatWasAttachedMeanwhile) {
    Removal removal;
    removal.whenCalled(
        "ps", [&] { removal.world.machine->attached = {{removal.entry.image.path(), std::nullopt}}; });
    EXPECT_EQ(removal.refused(), mountedAfterAll);
}

TEST(OwnedRemoval, keepsAFolderInWhichAnotherImageWasMountedMeanwhile) {
    Removal removal;
    removal.whenCalled("lsof", [&] {
        removal.world.machine->attached = {{"/Users/x/Other.dmg", removal.workFolder() / "Files"}};
    });
    EXPECT_EQ(removal.refused(), mountedAfterAll);
}

TEST(OwnedRemoval, keepsAFolderInWhichSomethingWasMountedAtTheLastMoment) {
    Removal removal;
    removal.world.machine->answerOnce("hdiutil info", ProcessRunner::Result{0, test::inventoryText({})});
    removal.whenCalled("hdiutil info",
                       [&] { removal.world.machine->mounted = {{"/", removal.workFolder()}}; });
    EXPECT_EQ(removal.refused(), nested);
}

TEST(OwnedRemoval, noticesAMarkerThatWasSwappedMeanwhile) {
    Removal removal;
    const MountEntry other = removal.world.prepareWork();
    std::string afterSwap;
    removal.whenCalled("ps", [&] {
        fs::copy_file(other.workingDirectory.path() / ".marrowbox-mount.json",
                      removal.workFolder() / ".marrowbox-mount.json", fs::copy_options::overwrite_existing);
        afterSwap = test::treeState(removal.world.scratch.path());
    });
    EXPECT_EQ(test::thrown<BackupError>([&] { removal.run(); }),
              "Mismatched snapshot mount marker was retained.");
    EXPECT_EQ(test::treeState(removal.world.scratch.path()), afterSwap);
}

TEST(OwnedRemoval, noticesAFolderThatWasSwappedForALinkMeanwhile) {
    Removal removal;
    std::string afterSwap;
    removal.whenCalled("lsof", [&] {
        fs::rename(removal.workFolder(), removal.world.scratch / "elsewhere");
        fs::create_directory_symlink(removal.world.scratch / "elsewhere", removal.workFolder());
        afterSwap = test::treeState(removal.world.scratch.path());
    });
    EXPECT_EQ(test::thrown<BackupError>([&] { removal.run(); }),
              "Escaping snapshot mount path was retained.");
    EXPECT_EQ(test::treeState(removal.world.scratch.path()), afterSwap);
}

TEST(OwnedRemoval, speaksOfASwappedMarkerBeforeAnythingIsAsked) {
    Removal removal;
    const MountEntry other = removal.world.prepareWork();
    fs::rename(other.workingDirectory.path() / ".marrowbox-mount.json",
               removal.workFolder() / ".marrowbox-mount.json");
    EXPECT_EQ(removal.refused(), "Mismatched snapshot mount marker was retained.");
    EXPECT_TRUE(removal.world.machine->calls.empty());
}

TEST(OwnedRemoval, checksTheFolderAgainAfterTheInventory) {
    // Each check is repeated where it matters, so that it holds by itself.
    Removal removal;
    std::string afterSwap;
    const auto swappedDuringInventory = [&](const std::function<void()>& swap) {
        removal.whenCalled("hdiutil info", [&] {
            swap();
            afterSwap = test::treeState(removal.world.scratch.path());
        });
        const std::string words = test::thrown<BackupError>([&] { removal.run(); });
        EXPECT_EQ(test::treeState(removal.world.scratch.path()), afterSwap);
        return words;
    };
    MountEntry changed = removal.entry;
    changed.unitID = Uuid::random();
    EXPECT_EQ(swappedDuringInventory([&] { removal.world.folder.writeMarker(changed); }),
              "Unrecognized snapshot work folder was retained.");
    removal.world.folder.writeMarker(removal.entry);
    EXPECT_EQ(swappedDuringInventory([&] {
                  fs::rename(removal.workFolder(), removal.world.folder.workRoot() / "beside");
                  fs::create_directory_symlink("beside", removal.workFolder());
              }),
              "Ambiguous snapshot work folder was retained.");
    fs::remove(removal.workFolder());
    fs::rename(removal.world.folder.workRoot() / "beside", removal.workFolder());
    EXPECT_EQ(swappedDuringInventory([&] {
                  fs::rename(removal.workFolder(), removal.world.scratch / "elsewhere");
                  fs::create_directory_symlink(removal.world.scratch / "elsewhere", removal.workFolder());
              }),
              "Unsafe snapshot work path was retained.");
}

TEST(OwnedRemoval, keepsEntryAndMarkerWhenTheFolderCannotBeDeleted) {
    Removal removal;
    {
        const Frozen files(removal.workFolder() / "Files");
        if (!files.isFrozen())
            GTEST_SKIP() << "this file system or user cannot make a folder immutable";
        EXPECT_THROW(removal.run(), std::system_error);
        EXPECT_EQ(removal.world.folder.load().entries, std::vector{removal.entry});
        EXPECT_TRUE(fs::exists(removal.workFolder() / ".marrowbox-mount.json"));
    }
    removal.run();
    EXPECT_FALSE(fs::exists(removal.workFolder()));
}

} // namespace marrowbox
