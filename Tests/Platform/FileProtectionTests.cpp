#include "Platform/FileProtection.h"

#include "Support/ScratchFolder.h"

#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/acl.h>
#include <sys/ioctl.h>

namespace marrowbox {

TEST(AccessList, isAbsentFromAFileWithAModeAlone) {
    test::ScratchFolder folder;
    std::ofstream(folder / "file") << "text";
    EXPECT_EQ(accessList(folder / "file"), AccessList::absent);
    EXPECT_EQ(accessList(folder.path()), AccessList::absent);
}

TEST(AccessList, isPresentWithAnEntryForAnotherUser) {
    test::ScratchFolder folder;
    std::ofstream(folder / "file") << "text";
    const acl_t list = ::acl_from_text("u::rw-,u:65534:r--,g::---,m::r--,o::---");
    const int set = ::acl_set_file((folder / "file").c_str(), ACL_TYPE_ACCESS, list);
    ::acl_free(list);
    if (set != 0)
        GTEST_SKIP() << "this file system keeps no access control lists";
    EXPECT_EQ(accessList(folder / "file"), AccessList::present);
}

TEST(AccessList, isAbsentFromAMissingFile) {
    test::ScratchFolder folder;
    EXPECT_EQ(accessList(folder / "missing"), AccessList::absent);
}

TEST(AccessList, isAbsentWhereTheFileSystemKeepsNone) {
    EXPECT_EQ(accessList("/proc/self/status"), AccessList::absent);
}

TEST(AccessList, isUnknownWhenThePathCannotBeExamined) {
    EXPECT_EQ(accessList("/proc/self/status/below"), AccessList::unknown);
}

TEST(Exclusion, marksTheFolderForTheSystemsBackups) {
    test::ScratchFolder folder;
    const Descriptor opened = openFile(folder.path(), O_RDONLY | O_DIRECTORY);
    int flags = 0;
    if (::ioctl(opened.number(), FS_IOC_GETFLAGS, &flags) != 0)
        GTEST_SKIP() << "this file system keeps no such attribute";
    ASSERT_EQ(flags & FS_NODUMP_FL, 0);
    excludeFromSystemBackups(folder.path());
    ASSERT_EQ(::ioctl(opened.number(), FS_IOC_GETFLAGS, &flags), 0);
    EXPECT_NE(flags & FS_NODUMP_FL, 0);
}

TEST(Exclusion, ignoresAFolderThatCannotBeMarked) {
    excludeFromSystemBackups("/proc/self");
    excludeFromSystemBackups("/missing");
}

} // namespace marrowbox
