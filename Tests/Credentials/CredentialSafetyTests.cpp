#include "CredentialFolder.h"
#include "Support/Stranger.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/acl.h>
#include <sys/ioctl.h>

namespace marrowbox {

namespace {

/// Gives a path an access control list; false where the file system keeps none.
bool setList(const fs::path& path, acl_type_t type, const char* text) {
    const acl_t list = ::acl_from_text(text);
    const bool set = ::acl_set_file(path.c_str(), type, list) == 0;
    ::acl_free(list);
    return set;
}

/// Lets a stranger in without a change of the mode: the mask takes the group's place in it.
constexpr auto fileList = "u::rw-,u:65534:r--,g::---,m::---,o::---";
constexpr auto folderList = "u::rwx,u:65534:r-x,g::---,m::---,o::---";

/// A store with one value.
class CredentialSafety : public testing::Test {
  protected:
    CredentialSafety() { folder.save("old", "key"); }

    void expectRefusal(const char* sentence) {
        EXPECT_EQ(folder.refusal(), sentence);
        EXPECT_EQ(folder.refusalToSave(), sentence);
    }

    test::CredentialFolder folder;
};

} // namespace

TEST(CredentialFolder, isNotMadeWhereOthersMayPutSomethingInItsPlace) {
    const test::CredentialFolder folder;
    fs::permissions(folder.parent(), fs::perms(0777));
    EXPECT_EQ(folder.refusalToSave(), test::unsafeParent);
    EXPECT_FALSE(linkStatus(folder.directory()));
}

TEST(CredentialFolder, isLeftOutOfTheSystemsBackups) {
    const test::CredentialFolder folder;
    folder.save("new", "key");
    const Descriptor opened = openFile(folder.directory(), O_RDONLY | O_DIRECTORY);
    int flags = 0;
    if (::ioctl(opened.number(), FS_IOC_GETFLAGS, &flags) != 0)
        GTEST_SKIP() << "this file system keeps no such attribute";
    EXPECT_NE(flags & FS_NODUMP_FL, 0);
}

TEST_F(CredentialSafety, refusesAFileThatOthersMayRead) {
    ::chmod(folder.file().c_str(), 0644);
    const std::string before = readFile(folder.file());
    expectRefusal(test::unsafeFile);
    EXPECT_EQ(linkStatus(folder.file())->st_mode & 07777U, 0644U);
    EXPECT_EQ(readFile(folder.file()), before);
}

TEST_F(CredentialSafety, refusesAFileThatItsOwnerMayNotWrite) {
    ::chmod(folder.file().c_str(), 0400);
    expectRefusal(test::unsafeFile);
}

TEST_F(CredentialSafety, refusesAFileThatIsASymbolicLink) {
    fs::rename(folder.file(), folder.parent() / "elsewhere.json");
    fs::create_symlink(folder.parent() / "elsewhere.json", folder.file());
    expectRefusal(test::unsafeFile);
    EXPECT_TRUE(fs::is_symlink(folder.file()));
}

TEST_F(CredentialSafety, refusesAFileThatIsASymbolicLinkToNothing) {
    fs::remove(folder.file());
    fs::create_symlink(folder.parent() / "missing.json", folder.file());
    expectRefusal(test::unsafeFile);
    EXPECT_FALSE(fs::exists(folder.parent() / "missing.json"));
}

TEST_F(CredentialSafety, refusesAFileWithASecondName) {
    fs::create_hard_link(folder.file(), folder.parent() / "second.json");
    expectRefusal(test::unsafeFile);
}

TEST_F(CredentialSafety, refusesAFolderInTheFilesPlace) {
    fs::remove(folder.file());
    makeDirectory(folder.file(), 0600);
    expectRefusal(test::unsafeFile);
}

TEST_F(CredentialSafety, refusesAFolderThatOthersMayRead) {
    ::chmod(folder.directory().c_str(), 0755);
    expectRefusal(test::unsafeFolder);
    EXPECT_EQ(linkStatus(folder.directory())->st_mode & 07777U, 0755U);
}

TEST_F(CredentialSafety, refusesAFolderThatIsASymbolicLink) {
    fs::rename(folder.directory(), folder.parent() / "elsewhere");
    fs::create_symlink(folder.parent() / "elsewhere", folder.directory());
    expectRefusal(test::unsafeFolder);
}

TEST_F(CredentialSafety, refusesAFileInTheFoldersPlace) {
    removeTree(folder.directory());
    std::ofstream(folder.directory()) << "text";
    ::chmod(folder.directory().c_str(), 0700);
    expectRefusal(test::unsafeFolder);
}

TEST_F(CredentialSafety, refusesAParentThatOthersMayWrite) {
    for (const mode_t mode : {0777U, 0770U, 0702U}) {
        ::chmod(folder.parent().c_str(), mode);
        expectRefusal(test::unsafeParent);
    }
    ::chmod(folder.parent().c_str(), 0755);
    EXPECT_EQ(folder.read("key"), "old");
}

TEST_F(CredentialSafety, refusesAParentThatIsASymbolicLink) {
    const fs::path link = folder.parent() / "link";
    fs::create_directory_symlink(folder.parent(), link);
    const CredentialFileStore store(link / "Credentials");
    EXPECT_EQ(
        test::thrown<BackupError>([&] { store.access([](const auto& held) { return held.read("key"); }); }),
        test::unsafeParent);
}

TEST_F(CredentialSafety, refusesALockThatIsNotAPrivateFile) {
    ::chmod(folder.lock().c_str(), 0644);
    expectRefusal(test::unsafeLock);
    fs::remove(folder.lock());
    fs::create_symlink(folder.parent() / "missing", folder.lock());
    expectRefusal(test::unsafeLock);
    EXPECT_FALSE(fs::exists(folder.parent() / "missing"));
    fs::remove(folder.lock());
    fs::create_hard_link(folder.file(), folder.lock());
    expectRefusal(test::unsafeFile);
}

TEST_F(CredentialSafety, refusesWhatBelongsToSomebodyElse) {
    if (::getuid() != 0)
        GTEST_SKIP() << "only the administrator can give files away";
    const auto give = [](const fs::path& path, uid_t owner) {
        return ::chown(path.c_str(), owner, gid_t(-1));
    };
    const std::pair<fs::path, const char*> places[] = {{folder.file(), test::unsafeFile},
                                                       {folder.lock(), test::unsafeLock},
                                                       {folder.directory(), test::unsafeFolder},
                                                       {folder.parent(), test::unsafeParent}};
    for (const auto& [path, sentence] : places) {
        ASSERT_EQ(give(path, test::stranger), 0);
        expectRefusal(sentence);
        ASSERT_EQ(give(path, 0), 0);
    }
    EXPECT_EQ(folder.read("key"), "old");
}

TEST_F(CredentialSafety, isNotHeldUpByWhatIsNoFile) {
    if (const auto reason = test::reasonForNoStranger())
        GTEST_SKIP() << *reason;
    const std::pair<fs::path, const char*> places[] = {{folder.file(), test::unsafeFile},
                                                       {folder.lock(), test::unsafeLock}};
    for (const auto& [path, sentence] : places) {
        fs::rename(path, folder.parent() / "away");
        for (const mode_t kind : {mode_t(S_IFIFO), mode_t(S_IFSOCK)}) {
            ASSERT_EQ(::mknod(path.c_str(), kind | 0600, 0), 0);
            expectRefusal(sentence);
            fs::remove(path);
        }
        {
            const test::EndlessPipe pipe(path);
            expectRefusal(sentence);
        }
        fs::remove(path);
        fs::create_directory(path);
        expectRefusal(sentence);
        fs::remove(path);
        fs::rename(folder.parent() / "away", path);
    }
    EXPECT_EQ(folder.read("key"), "old");
}

TEST_F(CredentialSafety, refusesAnAccessControlListOnAnyOfItsFiles) {
    if (!setList(folder.file(), ACL_TYPE_ACCESS, fileList))
        GTEST_SKIP() << "this file system keeps no access control lists";
    ASSERT_EQ(linkStatus(folder.file())->st_mode & 07777U, 0600U);
    expectRefusal(test::unsafeFile);
    fs::remove(folder.file());
    ASSERT_TRUE(setList(folder.lock(), ACL_TYPE_ACCESS, fileList));
    expectRefusal(test::unsafeLock);
    ASSERT_TRUE(setList(folder.directory(), ACL_TYPE_ACCESS, folderList));
    ASSERT_EQ(linkStatus(folder.directory())->st_mode & 07777U, 0700U);
    expectRefusal(test::unsafeFolder);
}

TEST_F(CredentialSafety, refusesToSaveWhereNewFilesGetReaders) {
    if (!setList(folder.directory(), ACL_TYPE_DEFAULT, "u::rwx,u:65534:r-x,g::---,m::r-x,o::---"))
        GTEST_SKIP() << "this file system keeps no access control lists";
    EXPECT_EQ(folder.refusalToSave(), test::notSavedSafely);
    EXPECT_EQ(folder.read("key"), "old");
    EXPECT_TRUE(folder.temporaries().empty());
}

TEST_F(CredentialSafety, refusesALockFileThatWasMadeWithReaders) {
    if (!setList(folder.directory(), ACL_TYPE_DEFAULT, "u::rwx,u:65534:r-x,g::---,m::r-x,o::---"))
        GTEST_SKIP() << "this file system keeps no access control lists";
    fs::remove(folder.lock());
    expectRefusal(test::unsafeLock);
}

TEST_F(CredentialSafety, refusesWhenTheSystemDoesNotTellItsAccessRules) {
    CredentialFileCalls calls;
    calls.accessList = [](const auto&) { return AccessList::unknown; };
    EXPECT_EQ(folder.refusal(calls), "Credential access rules could not be verified.");
}

} // namespace marrowbox
