#include "Repository/ObjectImport.h"

#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Thrown.h"
#include "TestRepository.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace test;

const std::string damaged = "An existing backup object is damaged. No snapshot was published.";

/// A repository with a work folder for downloads.
struct Downloads {
    TestRepository repository;
    fs::path folder = repository->staging(Uuid::random());

    SourceEntry add(std::string_view path, std::string_view content) {
        fs::create_directories((folder / path).parent_path());
        writeFile(folder / path, content);
        return file(path, content).source;
    }
    SnapshotEntry import(const SourceEntry& source) {
        return repository->importFile(folder / source.path.view(), source, {});
    }
    std::vector<SnapshotEntry> importAll(const std::vector<SourceEntry>& batch) {
        return ObjectImport(*repository).importFiles(batch, folder, {});
    }
    std::string refusal(const SourceEntry& source) {
        const auto before = contentsOf(repository / "Objects");
        const auto one = thrown<BackupError>([&] { import(source); });
        EXPECT_EQ(thrown<BackupError>([&] { importAll({source}); }), one);
        EXPECT_EQ(contentsOf(repository / "Objects"), before);
        EXPECT_TRUE(linkStatus(folder / source.path.view())) << "the download stays where it is";
        return one;
    }
};

} // namespace

TEST(ObjectImport, movesAFileToThePrivateObjectOfItsContent) {
    Downloads downloads;
    const SourceEntry source = downloads.add("a/b.txt", "content");
    EXPECT_EQ(downloads.import(source), file("a/b.txt", "content"));
    EXPECT_EQ(readFile(downloads.repository.object("content")), "content");
    EXPECT_EQ(modeOf(downloads.repository.object("content")), 0600u);
    EXPECT_FALSE(fs::exists(downloads.folder / "a/b.txt"));
}

TEST(ObjectImport, storesAnEmptyFile) {
    Downloads downloads;
    EXPECT_EQ(downloads.import(downloads.add("empty", "")), file("empty", ""));
    EXPECT_EQ(readFile(downloads.repository.object("")), "");
}

TEST(ObjectImport, keepsOneObjectOfEqualBytesAndLeavesTheSecondFile) {
    Downloads downloads;
    downloads.import(downloads.add("first", "content"));
    const SnapshotEntry second = downloads.import(downloads.add("second", "content"));
    EXPECT_EQ(second, file("second", "content"));
    EXPECT_TRUE(fs::exists(downloads.folder / "second"));
    EXPECT_EQ(contentsOf(downloads.repository / "Objects").size(), 2u) << "a fan-out folder and an object";
}

TEST(ObjectImport, keepsOneObjectOfEqualBytesInOneBatch) {
    Downloads downloads;
    const std::vector batch{downloads.add("1", "same"), downloads.add("2", "other"),
                            downloads.add("3", "same")};
    EXPECT_EQ(downloads.importAll(batch),
              (std::vector{file("1", "same"), file("2", "other"), file("3", "same")}));
    EXPECT_FALSE(fs::exists(downloads.folder / "1"));
    EXPECT_FALSE(fs::exists(downloads.folder / "2"));
    EXPECT_TRUE(fs::exists(downloads.folder / "3"));
}

TEST(ObjectImport, keepsTheOrderOfALargeBatch) {
    Downloads downloads;
    std::vector<SourceEntry> batch;
    std::vector<SnapshotEntry> expected;
    for (int number = 0; number < 200; ++number) {
        const std::string name = std::to_string(number);
        batch.push_back(downloads.add("folder/" + name, "content " + name));
        expected.push_back(file("folder/" + name, "content " + name));
    }
    EXPECT_EQ(downloads.importAll(batch), expected);
}

TEST(ObjectImport, throwsTheFirstFailureInOrderWithTheFilesBeforeItStored) {
    Downloads downloads;
    std::vector<SourceEntry> batch;
    for (int number = 0; number < 32; ++number)
        batch.push_back(downloads.add(std::to_string(number), "content " + std::to_string(number)));
    batch[20].size = 1;
    batch[21].md5 = "0";
    batch[30].size = 2;
    EXPECT_EQ(thrown<BackupError>([&] { downloads.importAll(batch); }), "Size verification failed for “20”.");
    for (int number = 0; number < 32; ++number) {
        const bool isStored = fs::exists(downloads.repository.object("content " + std::to_string(number)));
        EXPECT_EQ(isStored, number < 20) << number;
    }
}

TEST(ObjectImport, refusesALinkInPlaceOfADownload) {
    Downloads downloads;
    const SourceEntry source = downloads.add("real", "content");
    fs::create_symlink("real", downloads.folder / "a");
    SourceEntry linked = source;
    linked.path = "a";
    EXPECT_EQ(downloads.refusal(linked), linkRefusal);
}

TEST(ObjectImport, reportsADownloadThatIsAFolderAsMissing) {
    Downloads downloads;
    fs::create_directories(downloads.folder / "a/b");
    EXPECT_EQ(downloads.refusal(file("a/b", "content").source), "A downloaded file is missing: a/b");
}

TEST(ObjectImport, passesOnTheSystemsWordsForADownloadThatIsNotThere) {
    Downloads downloads;
    EXPECT_THROW(downloads.import(file("a", "content").source), std::system_error);
    EXPECT_THROW(downloads.importAll({file("a", "content").source}), std::system_error);
}

TEST(ObjectImport, refusesASizeThatTheSourceDoesNotSay) {
    Downloads downloads;
    SourceEntry source = downloads.add("a/b", "content");
    source.size = 8;
    EXPECT_EQ(downloads.refusal(source), "Size verification failed for “a/b”.");
    source.size = 0;
    EXPECT_EQ(downloads.refusal(source), "Size verification failed for “a/b”.");
}

TEST(ObjectImport, skipsTheSizeButNotTheDigestWhenTheSourceSaysNoSize) {
    Downloads downloads;
    SourceEntry source = downloads.add("a", "content");
    source.size = -1;
    const SharedText md5 = *source.md5;
    source.md5 = std::string(32, '0');
    EXPECT_EQ(downloads.refusal(source), "Checksum verification failed for “a”.");
    source.md5 = md5;
    EXPECT_EQ(downloads.import(source).storedSize, 7);
}

TEST(ObjectImport, takesADigestInEitherCaseAndNoOtherForm) {
    Downloads downloads;
    SourceEntry source = downloads.add("a", "content");
    std::string md5 = source.md5->string();
    source.md5 = md5 + "0";
    EXPECT_EQ(downloads.refusal(source), "Checksum verification failed for “a”.");
    source.md5 = "";
    EXPECT_EQ(downloads.refusal(source), "Checksum verification failed for “a”.");
    std::ranges::transform(md5, md5.begin(), [](unsigned char letter) { return std::toupper(letter); });
    source.md5 = md5;
    EXPECT_NO_THROW(downloads.import(source));
}

TEST(ObjectImport, takesADocumentOfAnySize) {
    Downloads downloads;
    SourceEntry source = downloads.add("a.docx", "content");
    source.mimeType = "application/vnd.google-apps.document";
    source.size = 1024;
    source.md5.reset();
    EXPECT_EQ(downloads.import(source).storedSize, 7);
}

TEST(ObjectImport, neverReplacesADamagedObject) {
    Downloads downloads;
    const SourceEntry source = downloads.add("a", "content");
    downloads.repository.store("content");
    writeFile(downloads.repository.object("content"), "conten");
    EXPECT_EQ(downloads.refusal(source), damaged) << "cut off";
    writeFile(downloads.repository.object("content"), "CONTENT");
    EXPECT_EQ(downloads.refusal(source), damaged) << "of the same size";
}

TEST(ObjectImport, refusesALinkInPlaceOfAnObjectOrItsFolder) {
    Downloads downloads;
    const SourceEntry source = downloads.add("a", "content");
    const fs::path object = downloads.repository.object("content");
    const fs::path elsewhere = downloads.repository.destination() / "elsewhere";
    fs::create_directory(elsewhere);
    fs::create_directory(object.parent_path());
    fs::create_symlink(elsewhere / "object", object);
    EXPECT_EQ(downloads.refusal(source), linkRefusal) << "a link to nothing";
    writeFile(elsewhere / "object", "content");
    EXPECT_EQ(downloads.refusal(source), linkRefusal);
    fs::remove_all(object.parent_path());
    fs::create_directory_symlink(elsewhere, object.parent_path());
    EXPECT_EQ(downloads.refusal(source), linkRefusal) << "the folder";
    EXPECT_EQ(contentsOf(elsewhere), (std::map<std::string, std::string>{{"object", "content"}}));
}

TEST(ObjectImport, isStoppedByAnObjectThatIsAFolder) {
    Downloads downloads;
    const SourceEntry source = downloads.add("a", "content");
    fs::create_directories(downloads.repository.object("content"));
    EXPECT_THROW(downloads.import(source), std::system_error);
}

TEST(ObjectImport, leavesEverythingInTheWorkFolderOnceCancelled) {
    Downloads downloads;
    std::stop_source stop;
    stop.request_stop();
    const std::vector batch{downloads.add("1", "one"), downloads.add("2", "two")};
    EXPECT_THROW(ObjectImport(*downloads.repository).importFiles(batch, downloads.folder, stop.get_token()),
                 CancellationError);
    EXPECT_TRUE(fs::is_empty(downloads.repository / "Objects"));
}

TEST(ObjectImport, makesTheNamesOfItsObjectsLastMoreThanOnce) {
    Downloads downloads;
    ObjectImport import(*downloads.repository);
    import.synchronizeFolders();
    import.importFiles(std::vector{downloads.add("1", "one"), downloads.add("2", "two")}, downloads.folder,
                       {});
    import.synchronizeFolders();
    fs::remove_all(downloads.repository / "Objects");
    EXPECT_NO_THROW(import.synchronizeFolders()) << "nothing is left to do";
}

} // namespace marrowbox
