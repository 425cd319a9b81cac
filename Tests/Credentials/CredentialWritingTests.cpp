#include "CredentialFolder.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

/// A call that fails with this error when it is made for the n-th time, and else answers as the system does.
template <typename Call>
auto failing(Call call, int time, int error) {
    return [call, time, error](auto... arguments) mutable -> decltype(call(arguments...)) {
        if (--time != 0)
            return call(arguments...);
        errno = error;
        return -1;
    };
}

/// A store with one value.
class CredentialWriting : public testing::Test {
  protected:
    CredentialWriting() { folder.save("old", "key"); }

    void expectOldValueAlone() {
        EXPECT_EQ(folder.read("key"), "old");
        EXPECT_TRUE(folder.temporaries().empty());
    }

    test::CredentialFolder folder;
    CredentialFileCalls calls;
};

} // namespace

TEST_F(CredentialWriting, leavesTheOldFileWhenTheNewOneCannotBeMade) {
    // The first file that a save opens is the old one.
    calls.open = failing(calls.open, 2, EROFS);
    EXPECT_EQ(folder.refusalToSave(calls), test::notSaved);
    expectOldValueAlone();
}

TEST_F(CredentialWriting, leavesTheOldFileWhenTheDiskIsFull) {
    calls.write = failing(calls.write, 1, ENOSPC);
    EXPECT_EQ(folder.refusalToSave(calls), test::notSaved);
    expectOldValueAlone();
}

TEST_F(CredentialWriting, leavesTheOldFileWhenAWriteMakesNoProgress) {
    calls.write = [](auto, auto, auto) { return ssize_t(0); };
    EXPECT_EQ(folder.refusalToSave(calls), test::notSaved);
    expectOldValueAlone();
}

TEST_F(CredentialWriting, goesOnAfterShortWrites) {
    int count = 0;
    calls.write = [&](int file, const void* bytes, std::size_t) {
        ++count;
        return ::write(file, bytes, 1);
    };
    folder.save("new", "key", calls);
    EXPECT_EQ(folder.read("key"), "new");
    EXPECT_EQ(count, static_cast<int>(fs::file_size(folder.file())));
}

TEST_F(CredentialWriting, leavesTheOldFileWhenTheNewOneDoesNotReachTheDisk) {
    calls.fsync = failing(calls.fsync, 1, EIO);
    EXPECT_EQ(folder.refusalToSave(calls), test::notSaved);
    expectOldValueAlone();
}

TEST_F(CredentialWriting, leavesTheOldFileWhenTheRenameFails) {
    calls.rename = failing(calls.rename, 1, EIO);
    EXPECT_EQ(folder.refusalToSave(calls), test::notSaved);
    expectOldValueAlone();
}

TEST_F(CredentialWriting, saysThatTheNewFileIsInPlaceWhenTheFolderCannotBeSynchronised) {
    calls.fsync = failing(calls.fsync, 2, EINVAL);
    EXPECT_EQ(folder.refusalToSave(calls), test::notDurable);
    EXPECT_EQ(folder.read("key"), "new");
}

TEST_F(CredentialWriting, saysThatTheNewFileIsInPlaceWhenTheFolderCannotBeOpened) {
    calls.open = failing(calls.open, 3, EMFILE);
    EXPECT_EQ(folder.refusalToSave(calls), test::notDurable);
    EXPECT_EQ(folder.read("key"), "new");
}

TEST_F(CredentialWriting, synchronisesTheFileThenRenamesThenSynchronisesTheFolder) {
    std::vector<std::string> order;
    calls.fsync = [&](int file) {
        struct stat status{};
        ::fstat(file, &status);
        order.emplace_back(S_ISDIR(status.st_mode) ? "synchronise the folder" : "synchronise the file");
        return ::fsync(file);
    };
    calls.rename = [&](const char* from, const char* to) {
        order.emplace_back("rename");
        return ::rename(from, to);
    };
    folder.save("new", "key", calls);
    EXPECT_EQ(order, (std::vector<std::string>{"synchronise the file", "rename", "synchronise the folder"}));
}

TEST_F(CredentialWriting, namesTheTemporaryFileByAFreshIdentifier) {
    std::string temporary;
    calls.rename = [&](const char* from, const char* to) {
        temporary = fs::path(from).filename();
        return ::rename(from, to);
    };
    folder.save("new", "key", calls);
    EXPECT_TRUE(temporary.starts_with(".credentials-") && temporary.ends_with(".tmp")) << temporary;
    EXPECT_EQ(temporary.size(), 36 + std::string_view(".credentials-.tmp").size());
}

TEST_F(CredentialWriting, refusesAModeThatTheUmaskAltered) {
    const mode_t before = ::umask(0277);
    const std::string sentence = folder.refusalToSave();
    ::umask(before);
    EXPECT_EQ(sentence, test::notSavedSafely);
    expectOldValueAlone();
}

TEST_F(CredentialWriting, removesTheNewFileWhenItsAccessRulesAreNotTold) {
    calls.accessList = [](const fs::path& path) {
        return path.extension() == ".tmp" ? AccessList::unknown : accessList(path);
    };
    EXPECT_EQ(folder.refusalToSave(calls), "Credential access rules could not be verified.");
    expectOldValueAlone();
}

TEST_F(CredentialWriting, checksTheFolderAgainBeforeItWrites) {
    // The old file is opened after the checks of entering.
    calls.open = [&](const char* path, int flags, mode_t mode) {
        ::chmod(folder.directory().c_str(), 0755);
        return ::open(path, flags, mode);
    };
    EXPECT_EQ(folder.refusalToSave(calls), test::unsafeFolder);
    ::chmod(folder.directory().c_str(), 0700);
    expectOldValueAlone();
}

TEST_F(CredentialWriting, checksTheFolderAgainAfterItWrote) {
    calls.rename = [&](const char* from, const char* to) {
        ::chmod(from, 0644);
        return ::rename(from, to);
    };
    EXPECT_EQ(folder.refusalToSave(calls), test::unsafeFile);
}

} // namespace marrowbox
