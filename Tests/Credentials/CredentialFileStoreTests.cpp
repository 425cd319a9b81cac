#include "CredentialFolder.h"

#include "Models/JSONFile.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(CredentialFileStore, makesItsFolderAndLockWhenReadForTheFirstTime) {
    test::CredentialFolder folder;
    EXPECT_EQ(folder.read("google.1"), std::nullopt);
    EXPECT_EQ(linkStatus(folder.directory())->st_mode & 07777U, 0700U);
    EXPECT_EQ(linkStatus(folder.lock())->st_mode & 07777U, 0600U);
    EXPECT_EQ(directoryNames(folder.directory()), std::vector<std::string>{"credentials.lock"});
}

TEST(CredentialFileStore, makesItsFolderPrivateWhateverTheUmask) {
    test::CredentialFolder folder;
    const mode_t before = ::umask(0);
    folder.save("secret", "key");
    ::umask(before);
    EXPECT_EQ(linkStatus(folder.directory())->st_mode & 07777U, 0700U);
    EXPECT_EQ(linkStatus(folder.lock())->st_mode & 07777U, 0600U);
    EXPECT_EQ(linkStatus(folder.file())->st_mode & 07777U, 0600U);
}

TEST(CredentialFileStore, doesNotMakeTheFolderAboveItsOwn) {
    test::CredentialFolder folder;
    fs::remove(folder.parent());
    EXPECT_THROW(folder.read("key"), std::system_error);
    EXPECT_FALSE(fs::exists(folder.parent()));
}

TEST(CredentialFileStore, givesBackWhatWasSaved) {
    test::CredentialFolder folder;
    const std::string bytes("\0\xff\n{\"token\"}", 12);
    folder.save(bytes, "google.1");
    folder.save("", "google.2");
    EXPECT_EQ(folder.read("google.1"), bytes);
    EXPECT_EQ(folder.read("google.2"), "");
    EXPECT_EQ(folder.read("google.3"), std::nullopt);
}

TEST(CredentialFileStore, writesAVersionAndValuesAsBase64) {
    test::CredentialFolder folder;
    folder.save("secret", "google.1");
    EXPECT_EQ(readFile(folder.file()), R"({"values":{"google.1":"c2VjcmV0"},"version":1})");
}

TEST(CredentialFileStore, replacesOneValueAndKeepsTheOthers) {
    test::CredentialFolder folder;
    folder.save("a", "one");
    folder.save("b", "two");
    folder.save("c", "one");
    EXPECT_EQ(folder.read("one"), "c");
    EXPECT_EQ(folder.read("two"), "b");
    folder.remove("one");
    EXPECT_EQ(folder.read("one"), std::nullopt);
    EXPECT_EQ(folder.read("two"), "b");
}

TEST(CredentialFileStore, rewritesTheFileWhenAnAbsentKeyIsRemoved) {
    test::CredentialFolder folder;
    folder.save("a", "one");
    const ino_t before = linkStatus(folder.file())->st_ino;
    folder.remove("two");
    EXPECT_NE(linkStatus(folder.file())->st_ino, before);
    EXPECT_EQ(folder.read("one"), "a");
}

TEST(CredentialFileStore, writesAnEmptyDocumentWhenAKeyIsRemovedFromANewStore) {
    test::CredentialFolder folder;
    folder.remove("key");
    EXPECT_EQ(readFile(folder.file()), R"({"values":{},"version":1})");
}

class DamagedCredentials : public testing::TestWithParam<const char*> {};

TEST_P(DamagedCredentials, areReportedAndLeftUnchanged) {
    test::CredentialFolder folder;
    folder.plant(GetParam());
    EXPECT_EQ(folder.refusal(), test::damaged);
    EXPECT_EQ(folder.refusalToSave(), test::damaged);
    EXPECT_EQ(test::thrown<BackupError>([&] { folder.remove("key"); }), test::damaged);
    EXPECT_EQ(readFile(folder.file()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(, DamagedCredentials,
                         testing::Values("", "{", "[]", "null", "\xff", R"({"version":1})",
                                         R"({"values":{}})", R"({"version":"1","values":{}})",
                                         R"({"version":1,"values":[]})",
                                         R"({"version":1,"values":{"key":7}})",
                                         R"({"version":1,"values":{"key":"not base64!"}})",
                                         R"({"version":1,"values":{"key":"b2xk"}}x)"));

TEST(CredentialFileStore, reportsAnUnknownVersionAndLeavesItUnchanged) {
    test::CredentialFolder folder;
    const std::string_view text = R"({"version":2,"values":{"key":"b2xk"}})";
    folder.plant(text);
    EXPECT_EQ(folder.refusal(), test::unsupported);
    EXPECT_EQ(folder.refusalToSave(), test::unsupported);
    EXPECT_EQ(readFile(folder.file()), text);
}

TEST(CredentialFileStore, acceptsKeysOfLettersDigitsDotsUnderscoresAndHyphens) {
    test::CredentialFolder folder;
    for (const std::string& key :
         {std::string("google.104857_A-z"), std::string("."), std::string(200, 'k')}) {
        folder.save("value", key);
        EXPECT_EQ(folder.read(key), "value") << key;
    }
}

TEST(CredentialFileStore, refusesAnyOtherKey) {
    test::CredentialFolder folder;
    const std::string tooLong(201, 'k');
    for (const std::string& key : {std::string(), tooLong, std::string("a b"), std::string("a/b"),
                                   std::string("é"), std::string("a\0", 2), std::string("a\n")}) {
        const std::string sentence = "Invalid credential identifier.";
        EXPECT_EQ(test::thrown<BackupError>([&] { folder.read(key); }), sentence) << key;
        EXPECT_EQ(test::thrown<BackupError>([&] { folder.save("value", key); }), sentence) << key;
        EXPECT_EQ(test::thrown<BackupError>([&] { folder.remove(key); }), sentence) << key;
    }
    EXPECT_FALSE(fs::exists(folder.file()));
}

TEST(CredentialFileStore, reportsADamagedFileBeforeABadKey) {
    test::CredentialFolder folder;
    folder.plant("{");
    EXPECT_EQ(test::thrown<BackupError>([&] { folder.read(""); }), test::damaged);
}

TEST(CredentialFileStore, reportsAFileThatCannotBeExamined) {
    test::CredentialFolder folder;
    folder.save("old", "key");
    CredentialFileCalls calls;
    calls.lstat = [](auto, auto) {
        errno = EIO;
        return -1;
    };
    EXPECT_EQ(folder.refusal(calls), "Credential file identity could not be verified.");
}

TEST(CredentialFileStore, reportsAFileThatCannotBeOpened) {
    test::CredentialFolder folder;
    folder.save("old", "key");
    CredentialFileCalls calls;
    calls.open = [](auto, auto, auto) {
        errno = EIO;
        return -1;
    };
    EXPECT_EQ(folder.refusal(calls), test::damaged);
}

TEST(CredentialFileStore, refusesAFileThatIsSwappedBetweenTheCheckAndTheOpening) {
    test::CredentialFolder folder;
    folder.save("old", "key");
    const fs::path other = folder.parent() / "other.json";
    fs::copy_file(folder.file(), other);
    CredentialFileCalls calls;
    calls.open = [&](const char* path, int flags, mode_t mode) {
        fs::rename(other, folder.file());
        return ::open(path, flags, mode);
    };
    EXPECT_EQ(folder.refusal(calls), test::damaged);
}

TEST(CredentialFileStore, refusesAFileThatBecomesALinkBetweenTheCheckAndTheOpening) {
    test::CredentialFolder folder;
    folder.save("old", "key");
    CredentialFileCalls calls;
    calls.open = [&](const char* path, int flags, mode_t mode) {
        fs::rename(folder.file(), folder.parent() / "other.json");
        fs::create_symlink(folder.parent() / "other.json", folder.file());
        return ::open(path, flags, mode);
    };
    EXPECT_EQ(folder.refusal(calls), test::damaged);
}

TEST(CredentialFileStore, refusesAFileThatOthersMayReadAfterTheCheck) {
    test::CredentialFolder folder;
    folder.save("old", "key");
    CredentialFileCalls calls;
    calls.open = [](const char* path, int flags, mode_t mode) {
        ::chmod(path, 0644);
        return ::open(path, flags, mode);
    };
    EXPECT_EQ(folder.refusal(calls), test::damaged);
}

} // namespace marrowbox
