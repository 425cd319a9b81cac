#include "Marrowbox/Platform/MountTable.h"
#include "Support/ScratchFolder.h"

#include <fstream>
#include <gmock/gmock.h>

namespace marrowbox::test {

namespace {

std::vector<Mount> mountsOf(const std::string& list) {
    const ScratchFolder folder;
    std::ofstream(folder / "mountinfo") << list;
    return readMounts(folder / "mountinfo");
}

fs::path holding(const std::vector<Mount>& mounts, const fs::path& path) {
    const Mount* mount = mountHolding(mounts, path);
    return mount == nullptr ? fs::path("none") : fs::path(mount->source);
}

} // namespace

TEST(MountTable, readsTheKernelsForm) {
    const auto mounts = mountsOf("27 1 254:0 / / rw,relatime - ext4 /dev/vda rw,discard\n"
                                 "36 27 8:17 /backups /media/My\\040Disk rw shared:7 - ext4 /dev/sdb1 rw\n"
                                 "40 27 0:50 / /mnt/nas rw - nfs4 nas:/export rw\n");
    ASSERT_EQ(mounts.size(), 3U);
    EXPECT_EQ(mounts[1], (Mount{.id = 36,
                                .parent = 27,
                                .device = 8 << 8 | 17,
                                .root = "/backups",
                                .target = "/media/My Disk",
                                .source = "/dev/sdb1",
                                .type = "ext4"}));
    EXPECT_FALSE(mounts[0].isNetworkShare);
    EXPECT_TRUE(mounts[2].isNetworkShare);
}

TEST(MountTable, findsTheMountOfAPath) {
    const auto mounts = mountsOf("27 1 254:0 / / rw - ext4 root rw\n"
                                 "30 27 0:40 / /mnt/a rw - tmpfs a rw\n"
                                 "31 30 0:41 / /mnt/a/b rw - tmpfs b rw\n");
    EXPECT_EQ(holding(mounts, "/"), "root");
    EXPECT_EQ(holding(mounts, "/mnt/ab"), "root");
    EXPECT_EQ(holding(mounts, "/mnt/a"), "a");
    EXPECT_EQ(holding(mounts, "/mnt/a/bc"), "a");
    EXPECT_EQ(holding(mounts, "/mnt/a/b/c"), "b");
    EXPECT_EQ(holding(mountsOf(""), "/"), "none");
}

TEST(MountTable, passesOverCoveredMounts) {
    const auto mounts = mountsOf("27 1 254:0 / / rw - ext4 root rw\n"
                                 "30 27 0:40 / /mnt/a rw - tmpfs below rw\n"
                                 "31 30 0:41 / /mnt/a/b rw - tmpfs hidden rw\n"
                                 "32 30 0:42 / /mnt/a rw - tmpfs above rw\n");
    EXPECT_EQ(holding(mounts, "/mnt/a/b"), "above");
    EXPECT_EQ(holding(mounts, "/mnt/a"), "above");
}

TEST(MountTable, endsItsWalkOnAListThatGoesInCircles) {
    const auto mounts = mountsOf("1 1 0:1 / / rw - rootfs root rw\n"
                                 "2 3 0:2 / / rw - tmpfs two rw\n"
                                 "3 2 0:3 / / rw - tmpfs three rw\n");
    EXPECT_EQ(holding(mounts, "/a"), "root");
}

TEST(MountTable, failsWithTheSystemsWordsWithoutAList) {
    EXPECT_THROW(readMounts("/nonexistent/mountinfo"), std::system_error);
}

} // namespace marrowbox::test
