#include "Repository/BackupRepository.h"

#include "Models/BackupError.h"
#include "Repository/LockBusyError.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Thrown.h"
#include "TestRepository.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace test;

const std::string incomplete =
    "The backup repository is incomplete. Restore its missing folders before continuing.";
const Uuid unit = *Uuid::parse("FEDCBA98-7654-3210-FEDC-BA9876543210");

std::string refusalToValidate(const TestRepository& repository) {
    return thrown<BackupError>([&] { repository->validate(); });
}

} // namespace

TEST(BackupRepository, touchesNothingWhenItIsMade) {
    const ScratchFolder destination;
    const BackupRepository repository(destination.path(), unit);
    EXPECT_EQ(repository.root(), destination / "Marrowbox/FEDCBA98-7654-3210-FEDC-BA9876543210");
    EXPECT_TRUE(fs::is_empty(destination.path()));
}

TEST(BackupRepository, makesItsFoldersAndIdentityPrivate) {
    const TestRepository repository;
    EXPECT_EQ(modeOf(repository.destination() / "Marrowbox"), 0700u);
    EXPECT_EQ(modeOf(repository->root()), 0700u);
    for (const char* name : {"Objects", "Snapshots", "Staging"})
        EXPECT_EQ(modeOf(repository / name), 0700u) << name;
    EXPECT_EQ(modeOf(repository / "Repository.json"), 0600u);
    EXPECT_EQ(readFile(repository / "Repository.json"),
              "{\n  \"format\": 1,\n  \"unitID\": \"FEDCBA98-7654-3210-FEDC-BA9876543210\"\n}");
}

TEST(BackupRepository, leavesAnExistingRepositoryAsItIs) {
    const TestRepository repository;
    repository.publish({stored(repository, "a", "content")}, 1);
    const auto before = contentsOf(repository->root());
    repository->initialize();
    EXPECT_EQ(contentsOf(repository->root()), before);
}

TEST(BackupRepository, refusesADestinationThatIsAFile) {
    const ScratchFolder folder;
    writeFile(folder / "file", "");
    const BackupRepository repository(folder / "file", unit);
    EXPECT_EQ(thrown<BackupError>([&] { repository.initialize(); }),
              "Choose an existing destination folder.");
    EXPECT_EQ(contentsOf(folder.path()), (std::map<std::string, std::string>{{"file", ""}}));
}

TEST(BackupRepository, passesOnTheSystemsWordsForADestinationThatIsGone) {
    const ScratchFolder folder;
    const BackupRepository repository(folder / "gone", unit);
    EXPECT_THROW(repository.initialize(), std::system_error);
    EXPECT_FALSE(fs::exists(folder / "gone"));
}

TEST(BackupRepository, refusesToMakeARepositoryBehindALink) {
    const ScratchFolder folder;
    const ScratchFolder elsewhere;
    fs::create_directory_symlink(elsewhere.path(), folder / "Marrowbox");
    const BackupRepository repository(folder.path(), unit);
    EXPECT_EQ(thrown<BackupError>([&] { repository.initialize(); }), linkRefusal);
    EXPECT_TRUE(fs::is_empty(elsewhere.path()));
}

TEST(BackupRepository, refusesToMakeARepositoryBehindALinkThatLeadsToItself) {
    const ScratchFolder folder;
    fs::create_symlink("Marrowbox", folder / "Marrowbox");
    const BackupRepository repository(folder.path(), unit);
    EXPECT_EQ(thrown<BackupError>([&] { repository.initialize(); }), linkRefusal);
}

TEST(BackupRepository, neitherValidatesNorFinishesAnInterruptedInitialisation) {
    const TestRepository repository;
    fs::remove(repository / "Staging");
    EXPECT_EQ(refusalToValidate(repository), incomplete);
    EXPECT_EQ(thrown<BackupError>([&] { repository->initialize(); }), incomplete);
    EXPECT_FALSE(fs::exists(repository / "Staging"));
}

TEST(BackupRepository, isIncompleteWhenAFolderIsAFile) {
    const TestRepository repository;
    for (const char* name : {"Objects", "Snapshots", "Staging"}) {
        fs::remove(repository / name);
        writeFile(repository / name, "");
        EXPECT_EQ(refusalToValidate(repository), incomplete) << name;
        fs::remove(repository / name);
        fs::create_directory(repository / name);
    }
    EXPECT_NO_THROW(repository->validate());
}

TEST(BackupRepository, reportsTheRepositoryOfAnotherUnitAndChangesNoFileInIt) {
    const TestRepository repository;
    writeFile(repository / "Repository.json",
              R"({"format": 1, "unitID": "00000000-0000-0000-0000-000000000000"})");
    const auto before = contentsOf(repository->root());
    EXPECT_EQ(refusalToValidate(repository), identityRefusal);
    EXPECT_EQ(thrown<BackupError>([&] { repository->initialize(); }), identityRefusal);
    EXPECT_EQ(thrown<BackupError>([&] { repository->lock(); }), identityRefusal);
    EXPECT_EQ(thrown<BackupError>([&] { repository->snapshots(); }), identityRefusal);
    EXPECT_EQ(contentsOf(repository->root()), before);
}

TEST(BackupRepository, reportsAnIdentityThatCannotBeRead) {
    const struct {
        const char* name;
        const char* text;
    } rows[] = {{"of another format", R"({"format": 2, "unitID": "FEDCBA98-7654-3210-FEDC-BA9876543210"})"},
                {"cut off", R"({"format": 1, "unit)"},
                {"without its unit", R"({"format": 1})"},
                {"empty", ""}};
    const TestRepository repository;
    for (const auto& row : rows) {
        writeFile(repository / "Repository.json", row.text);
        EXPECT_EQ(refusalToValidate(repository), identityRefusal) << row.name;
    }
    fs::remove(repository / "Repository.json");
    EXPECT_EQ(refusalToValidate(repository), identityRefusal);
    ASSERT_EQ(::mkfifo((repository / "Repository.json").c_str(), 0600), 0);
    EXPECT_EQ(refusalToValidate(repository), identityRefusal) << "a pipe that nobody writes";
}

TEST(BackupRepository, takesAMissingVolumeForAChangedIdentity) {
    const TestRepository repository;
    fs::remove_all(repository.destination() / "Marrowbox");
    EXPECT_EQ(refusalToValidate(repository), identityRefusal);
}

TEST(BackupRepository, refusesALinkAtEachPathOfItsLayout) {
    for (const char* name : {"", "Objects", "Snapshots", "Staging", "Repository.json", "../../Marrowbox"}) {
        const TestRepository repository;
        const fs::path planted = (repository / name).lexically_normal();
        const fs::path place = name[0] == '\0' ? repository->root() : planted;
        fs::rename(place, repository.destination() / "moved");
        fs::create_symlink(repository.destination() / "moved", place);
        EXPECT_EQ(refusalToValidate(repository), linkRefusal) << name;
    }
}

TEST(BackupRepository, locksOnceAndSaysThatItIsBusy) {
    const TestRepository repository;
    const RepositoryLock lock = repository->lock();
    EXPECT_EQ(thrown<LockBusyError>([&] { repository->lock(); }), busyRefusal);
    EXPECT_EQ(modeOf(repository / ".lock"), 0600u);
}

TEST(BackupRepository, refusesALinkInPlaceOfItsLock) {
    const TestRepository repository;
    fs::create_symlink(repository.destination() / "elsewhere", repository / ".lock");
    EXPECT_EQ(thrown<BackupError>([&] { repository->lock(); }),
              "Could not open the backup lock. Check destination permissions.");
    EXPECT_FALSE(fs::exists(repository.destination() / "elsewhere"));
}

TEST(BackupRepository, saysWhereAnObjectLiesWithoutMakingIt) {
    const TestRepository repository;
    const std::string hash = "ab" + std::string(62, '0');
    EXPECT_EQ(repository->objectURL(ObjectHash(hash)), repository / "Objects/ab" / hash);
    EXPECT_TRUE(fs::is_empty(repository / "Objects"));
}

TEST(BackupRepository, refusesAHashOfAnotherForm) {
    const struct {
        const char* name;
        std::string hash;
    } rows[] = {{"an upper-case digit", "A" + std::string(63, '0')},
                {"63 characters", std::string(63, '0')},
                {"65 characters", std::string(65, '0')},
                {"no digit", "g" + std::string(63, '0')},
                {"a way out", "../" + std::string(61, '0')},
                {"nothing", ""}};
    const TestRepository repository;
    for (const auto& row : rows)
        EXPECT_EQ(thrown<BackupError>([&] { repository->objectURL(ObjectHash(row.hash)); }),
                  test::invalidHash)
            << row.name;
}

TEST(BackupRepository, refusesALinkOnTheWayToAnObject) {
    const TestRepository repository;
    const ObjectHash hash = repository.store("content");
    const fs::path object = repository.object("content");
    fs::rename(object, repository.destination() / "moved");
    fs::create_symlink(repository.destination() / "moved", object);
    EXPECT_EQ(thrown<BackupError>([&] { repository->objectURL(hash); }), linkRefusal);
    EXPECT_EQ(thrown<BackupError>([&] { repository->hasObject(file("a", "content")); }), linkRefusal);
    fs::remove(object);
    fs::rename(object.parent_path(), repository.destination() / "fan-out");
    fs::create_directory_symlink(repository.destination() / "fan-out", object.parent_path());
    EXPECT_EQ(thrown<BackupError>([&] { repository->objectURL(hash); }), linkRefusal);
    EXPECT_EQ(thrown<BackupError>([&] { repository->hasObject(file("a", "content")); }), linkRefusal);
}

TEST(BackupRepository, knowsAnObjectByItsSizeAlone) {
    const TestRepository repository;
    const SnapshotEntry entry = stored(repository, "a", "content");
    EXPECT_TRUE(repository->hasObject(entry));
    writeFile(repository.object("content"), "CONTENT");
    EXPECT_TRUE(repository->hasObject(entry)) << "no byte is read";
    writeFile(repository.object("content"), "conten");
    EXPECT_FALSE(repository->hasObject(entry));
    fs::remove(repository.object("content"));
    EXPECT_FALSE(repository->hasObject(entry));
    fs::create_directory(repository.object("content"));
    EXPECT_FALSE(repository->hasObject(entry)) << "a folder";
    fs::remove_all(repository.object("content").parent_path());
    EXPECT_FALSE(repository->hasObject(entry)) << "no fan-out folder";
}

TEST(BackupRepository, needsNoObjectForAFolderAndHasNoneForAFileWithoutHash) {
    const TestRepository repository;
    EXPECT_TRUE(repository->hasObject(folder("a")));
    SnapshotEntry entry = file("a", "content");
    entry.objectHash.reset();
    EXPECT_FALSE(repository->hasObject(entry));
    entry.objectHash = ObjectHash("short");
    EXPECT_EQ(thrown<BackupError>([&] { repository->hasObject(entry); }), test::invalidHash);
}

TEST(BackupRepository, makesAPrivateWorkFolderOnce) {
    const TestRepository repository;
    const Uuid id = *Uuid::parse("0123abcd-4567-89ef-0123-456789abcdef");
    EXPECT_EQ(repository->staging(id), repository / "Staging/0123ABCD-4567-89EF-0123-456789ABCDEF");
    EXPECT_EQ(modeOf(repository->staging(Uuid::random())), 0700u);
    EXPECT_THROW(repository->staging(id), std::system_error);
}

} // namespace marrowbox
