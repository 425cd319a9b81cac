#include "AppSupport/PrivateMounts.h"
#include "Marrowbox/Platform/Bookmarks.h"
#include "Models/BackupError.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <fstream>
#include <gmock/gmock.h>

namespace marrowbox::test {

namespace {

const std::string unreadable = "The stored destination of this backup could not be read.";
const std::string notConnected =
    "The disk or network share of this backup is not connected. Reconnect it and try again.";

/// Lists of a machine that the test invents.
class InventedMachine {
  public:
    InventedMachine() { fs::create_directory(places.identifierLinks); }
    void mountShares(const std::string& lines) const {
        std::ofstream(places.mountList) << "27 1 0:9 / / rw - overlay overlay rw\n" << lines;
    }

  private:
    ScratchFolder folder_;

  public:
    BookmarkPlaces places{.mountList = folder_ / "mountinfo", .identifierLinks = folder_ / "by-uuid"};
};

std::string nfs(const std::string& share, const std::string& folder) {
    return "40 27 0:50 / " + folder + " rw - nfs4 " + share + " rw\n";
}

} // namespace

TEST(BookmarkRecords, keepEveryByteOfAPath) {
    const BookmarkRecord record{.path = "/a b/\n\xFF%/…", .volume = "share://nas/x\n", .inside = "/…"};
    EXPECT_EQ(readBookmark(writeBookmark(record)), record);
    const BookmarkRecord unnamed{.path = "/home/someone"};
    EXPECT_EQ(readBookmark(writeBookmark(unnamed)), unnamed);
}

TEST(BookmarkRecords, refuseBytesThatAreNone) {
    const std::string sound = writeBookmark({.path = "/a", .volume = "uuid:1", .inside = "/b"}).bytes;
    std::vector<std::string> broken{"",
                                    std::string(1, '\0'),
                                    "book",
                                    sound + "x",
                                    sound + std::string(1, '\0'),
                                    "x" + sound,
                                    std::string(sound) + std::string(20000, 'a')};
    for (std::size_t length = 1; length < sound.size(); ++length)
        broken.push_back(sound.substr(0, length));
    for (const BookmarkRecord& record :
         std::vector<BookmarkRecord>{{.path = ""},
                                     {.path = "a"},
                                     {.path = "/a/../b"},
                                     {.path = "/a/"},
                                     {.path = "/a//b"},
                                     {.path = "/a", .volume = "uuid:1"},
                                     {.path = "/a", .inside = "/b"},
                                     {.path = "/a", .volume = "u", .inside = "/.."}})
        broken.push_back(writeBookmark(record).bytes);
    for (const std::string& bytes : broken)
        EXPECT_EQ(thrown<BackupError>([&] { readBookmark({bytes}); }), unreadable)
            << testing::PrintToString(bytes);
}

TEST(BookmarkRecords, sayWhenANewerVersionWroteThem) {
    const std::string later("Marrowbox bookmark 2\0whatever\0", 30);
    EXPECT_EQ(thrown<BackupError>([&] { readBookmark({later}); }),
              "The stored destination of this backup needs a newer Marrowbox version.");
}

TEST(Bookmarks, keepThePathAloneOnAVolumeWithoutAName) {
    const InventedMachine machine;
    machine.mountShares("");
    const ScratchFolder folder;
    const auto bookmark = makeBookmark(folder.path(), machine.places);
    EXPECT_EQ(readBookmark(bookmark).volume, "");
    EXPECT_EQ(resolveBookmark(bookmark, machine.places), (ResolvedBookmark{.path = folder.path()}));
}

TEST(Bookmarks, followNoLinkThatIsTurnedLater) {
    const InventedMachine machine;
    machine.mountShares("");
    const ScratchFolder folder;
    fs::create_directory(folder / "real");
    fs::create_symlink("real", folder / "link");
    const auto bookmark = makeBookmark(folder / "link", machine.places);
    EXPECT_EQ(resolveBookmark(bookmark, machine.places), (ResolvedBookmark{.path = folder / "real"}));
}

TEST(Bookmarks, areNotMadeOfAFolderThatIsNotThere) {
    EXPECT_THROW(makeBookmark("/nonexistent/folder"), std::system_error);
}

TEST(Bookmarks, findANetworkShareThatIsMountedElsewhere) {
    const InventedMachine machine;
    const ScratchFolder folder;
    fs::create_directory(folder / "backups");
    machine.mountShares(nfs("nas:/disk", folder.path()));
    const auto bookmark = makeBookmark(folder / "backups", machine.places);
    EXPECT_EQ(resolveBookmark(bookmark, machine.places), (ResolvedBookmark{.path = folder / "backups"}));

    machine.mountShares(nfs("nas:/disk", "/media/nas"));
    EXPECT_EQ(resolveBookmark(bookmark, machine.places),
              (ResolvedBookmark{.path = "/media/nas/backups", .isStale = true}));

    machine.mountShares(nfs("other:/disk", folder.path()));
    EXPECT_EQ(thrown<BackupError>([&] { resolveBookmark(bookmark, machine.places); }), notConnected);

    machine.mountShares("");
    EXPECT_EQ(thrown<BackupError>([&] { resolveBookmark(bookmark, machine.places); }), notConnected);
}

TEST(Bookmarks, findAFolderOfAVolumeThatIsMountedInPart) {
    const InventedMachine machine;
    machine.mountShares("40 27 0:50 /team /mnt/team rw - nfs4 nas:/disk rw\n");
    const auto bookmark = writeBookmark(
        {.path = "/mnt/all/team/backups", .volume = "share:nas:/disk", .inside = "/team/backups"});
    EXPECT_EQ(resolveBookmark(bookmark, machine.places),
              (ResolvedBookmark{.path = "/mnt/team/backups", .isStale = true}));
    machine.mountShares("40 27 0:50 /private /mnt/team rw - nfs4 nas:/disk rw\n");
    EXPECT_EQ(thrown<BackupError>([&] { resolveBookmark(bookmark, machine.places); }), notConnected);
}

TEST(Bookmarks, neverLeadToAVolumeThatAnotherOneCovers) {
    const InventedMachine machine;
    machine.mountShares(nfs("nas:/disk", "/media/nas") + "41 40 0:51 / /media/nas rw - tmpfs above rw\n");
    const auto bookmark = writeBookmark({.path = "/mnt/nas", .volume = "share:nas:/disk", .inside = "/"});
    EXPECT_EQ(thrown<BackupError>([&] { resolveBookmark(bookmark, machine.places); }), notConnected);
}

TEST(Bookmarks, trustAPathWhoseVolumeComesWhenItIsUsed) {
    const InventedMachine machine;
    machine.mountShares("40 27 0:50 / /mnt/nas rw - autofs systemd-1 rw\n");
    const auto bookmark =
        writeBookmark({.path = "/mnt/nas/backups", .volume = "share:nas:/disk", .inside = "/backups"});
    EXPECT_EQ(resolveBookmark(bookmark, machine.places), (ResolvedBookmark{.path = "/mnt/nas/backups"}));
}

namespace {

/// Two disks and two places for them.
class BookmarksOnDisks : public testing::Test {
  protected:
    void SetUp() override {
        if (!enterPrivateMounts())
            GTEST_SKIP() << "This user may not mount.";
        fs::create_directory(left);
        fs::create_directory(right);
        fs::create_directory(places.identifierLinks);
        if (!disk.mount(left) || !other.mount(right))
            GTEST_SKIP() << "This machine does not mount disk images.";
        fs::create_directories(left / "my/backups");
        fs::create_directories(right / "my/backups");
    }
    void swapDisks() {
        disk.unmount();
        other.unmount();
        ASSERT_TRUE(other.mount(left));
        ASSERT_TRUE(disk.mount(right));
    }
    /// What a system keeps that names its disks in a folder of links.
    void linkDisk(const std::string& identifier) const {
        const auto mounts = readMounts();
        const Mount* mount = mountHolding(mounts, left);
        fs::create_symlink(mount->source, places.identifierLinks / identifier);
    }

    ScratchFolder folder;
    fs::path left = folder / "left";
    fs::path right = folder / "right";
    BookmarkPlaces places{.identifierLinks = folder / "by-uuid"};
    ImageVolume disk{folder / "disk.img"};
    ImageVolume other{folder / "other.img"};
};

} // namespace

TEST_F(BookmarksOnDisks, findADiskThatSwappedPlacesWithAnother) {
    const auto bookmark = makeBookmark(left / "my/backups", places);
    EXPECT_EQ(resolveBookmark(bookmark, places), (ResolvedBookmark{.path = left / "my/backups"}));
    swapDisks();
    const auto found = resolveBookmark(bookmark, places);
    EXPECT_EQ(found, (ResolvedBookmark{.path = right / "my/backups", .isStale = true}));
    const auto fresh = makeBookmark(found.path, places);
    EXPECT_EQ(resolveBookmark(fresh, places), (ResolvedBookmark{.path = right / "my/backups"}));
    disk.unmount();
    EXPECT_EQ(thrown<BackupError>([&] { resolveBookmark(bookmark, places); }), notConnected);
    EXPECT_EQ(thrown<BackupError>([&] { resolveBookmark(fresh, places); }), notConnected);
}

TEST_F(BookmarksOnDisks, takeTheNameThatTheSystemLinks) {
    linkDisk("1234-ABCD");
    const auto bookmark = makeBookmark(left / "my", places);
    EXPECT_EQ(readBookmark(bookmark),
              (BookmarkRecord{.path = left / "my", .volume = "uuid:1234-ABCD", .inside = "/my"}));
    EXPECT_EQ(resolveBookmark(bookmark, places), (ResolvedBookmark{.path = left / "my"}));
}

TEST_F(BookmarksOnDisks, followAPartOfADiskThatIsMountedByItself) {
    const auto bookmark = makeBookmark(left / "my/backups", places);
    ASSERT_TRUE(runProgram("mount", {"--bind", left / "my", right}));
    disk.unmount();
    EXPECT_EQ(resolveBookmark(bookmark, places),
              (ResolvedBookmark{.path = right / "backups", .isStale = true}));
    ASSERT_TRUE(runProgram("umount", {right}));
}

} // namespace marrowbox::test
