#include "Repository/BackupRepository.h"

#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Platform/RandomBytes.h"
#include "Support/ScratchFolder.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Thrown.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

struct Restoring {
    Restoring() {
        repository.initialize();
        snapshot.unitID = repository.unitID();
    }

    void add(const std::string& path, const std::string& content) {
        writeAll(openFile(scratch / "incoming", O_WRONLY | O_CREAT | O_TRUNC, 0600), content);
        snapshot.entries.emplace_back(
            repository.importFile(scratch / "incoming", test::file(path, content).source, {}));
    }
    fs::path objectOf(std::size_t entry) const {
        return repository.objectURL(*snapshot.entries[entry]->objectHash);
    }
    void run(std::stop_token stop = {}) { repository.restore(snapshot, target, stop); }
    std::string refused() {
        return test::thrown<BackupError>([&] { run(); });
    }

    test::ScratchFolder scratch;
    BackupRepository repository{scratch.path(), Uuid::random()};
    Snapshot snapshot;
    fs::path target = scratch / "restored";
};

} // namespace

TEST(Restore, writesEveryFileAndFolderWithItsBytes) {
    Restoring restoring;
    const std::string large = *randomBytes(3'000'001);
    restoring.snapshot.entries.emplace_back(test::folder("a"));
    restoring.add("a/one.txt", "one");
    restoring.add("a/two/twin.txt", "one");
    restoring.add("empty", "");
    restoring.snapshot.entries.emplace_back(test::folder("folder"));
    restoring.add("large.bin", large);
    for (int number = 0; number < 200; ++number)
        restoring.add("many/" + std::to_string(number), std::to_string(number));
    restoring.run();
    EXPECT_EQ(readFile(restoring.target / "a/one.txt"), "one");
    EXPECT_EQ(readFile(restoring.target / "a/two/twin.txt"), "one");
    EXPECT_EQ(readFile(restoring.target / "empty"), "");
    EXPECT_TRUE(fs::is_directory(restoring.target / "folder"));
    EXPECT_EQ(readFile(restoring.target / "large.bin"), large);
    for (int number = 0; number < 200; ++number)
        EXPECT_EQ(readFile(restoring.target / "many" / std::to_string(number)), std::to_string(number));
    EXPECT_EQ(linkStatus(restoring.target / "large.bin")->st_mode & 07777, 0600u);
    EXPECT_EQ(linkStatus(restoring.target / "empty")->st_mode & 07777, 0600u);
}

TEST(Restore, ofNoEntriesIsAnEmptyFolder) {
    Restoring restoring;
    restoring.run();
    EXPECT_TRUE(fs::is_empty(restoring.target));
}

TEST(Restore, acceptsAFolderThatADeeperPathHasMade) {
    Restoring restoring;
    restoring.add("a/b", "content");
    restoring.snapshot.entries.emplace_back(test::folder("a"));
    EXPECT_NO_THROW(restoring.run());
}

TEST(Restore, refusesAnExistingTargetInAnyForm) {
    Restoring restoring;
    const std::string words = "Choose a new folder for this restored snapshot.";
    fs::create_directory(restoring.target);
    EXPECT_EQ(restoring.refused(), words);
    fs::remove(restoring.target);
    fs::create_symlink("nowhere", restoring.target);
    EXPECT_EQ(restoring.refused(), words);
}

TEST(Restore, needsTheParentOfItsTarget) {
    Restoring restoring;
    restoring.target = restoring.scratch / "missing" / "restored";
    EXPECT_THROW(restoring.run(), std::system_error);
    EXPECT_FALSE(fs::exists(restoring.scratch / "missing"));
}

TEST(Restore, stopsAtAFlippedByteAndKeepsWhatSortsBefore) {
    for (const std::size_t size : {10U, 3'000'000U}) {
        Restoring restoring;
        restoring.add("a.txt", "before");
        restoring.add("b “b”.bin", std::string(size, 'b'));
        const Descriptor object = openFile(restoring.objectOf(1), O_RDWR);
        ASSERT_EQ(::pwrite(object.number(), "B", 1, static_cast<off_t>(size) - 1), 1);
        EXPECT_EQ(restoring.refused(), "Integrity verification failed for “b “b”.bin”.");
        EXPECT_EQ(readFile(restoring.target / "a.txt"), "before");
        EXPECT_FALSE(fs::exists(restoring.target / "b “b”.bin"));
    }
}

TEST(Restore, passesOnThatAnObjectIsMissing) {
    Restoring restoring;
    restoring.add("a.txt", "a");
    fs::remove(restoring.objectOf(0));
    EXPECT_THROW(restoring.run(), std::system_error);
}

TEST(Restore, refusesEntriesAndLinksThatItCannotTrust) {
    Restoring restoring;
    restoring.add("a.txt", "a");
    const Snapshot good = restoring.snapshot;
    const auto refusedEntry = [&](auto change) {
        fs::remove_all(restoring.target);
        SnapshotEntry entry = *good.entries[0];
        change(entry);
        restoring.snapshot = good;
        restoring.snapshot.entries = {Shared<SnapshotEntry>(entry)};
        return restoring.refused();
    };
    EXPECT_EQ(refusedEntry([](auto& entry) { entry.objectHash.reset(); }),
              "A snapshot file reference is missing.");
    EXPECT_EQ(refusedEntry([](auto& entry) { entry.objectHash = ObjectHash("XY"); }),
              "Invalid content reference in the backup.");
    EXPECT_EQ(refusedEntry([](auto& entry) { entry.source.path = "../a"; }), "Unsafe path in backup: ../a");
    EXPECT_FALSE(fs::exists(restoring.target));
    const fs::path object = restoring.repository.objectURL(*good.entries[0]->objectHash);
    fs::rename(object, restoring.scratch / "elsewhere");
    fs::create_symlink(restoring.scratch / "elsewhere", object);
    EXPECT_EQ(refusedEntry([](auto&) {}), "A symbolic link cannot be used inside the backup repository.");
    restoring.snapshot = good;
    restoring.snapshot.unitID = Uuid::random();
    EXPECT_EQ(restoring.refused(), "Snapshot belongs to another backup unit.");
}

TEST(Restore, looksAtTheContentAloneAndNotAtSizes) {
    Restoring restoring;
    restoring.add("a.txt", "a");
    SnapshotEntry entry = *restoring.snapshot.entries[0];
    entry.storedSize = 99;
    entry.source.size = 98;
    entry.source.md5 = "00";
    restoring.snapshot.entries = {Shared<SnapshotEntry>(entry)};
    EXPECT_NO_THROW(restoring.run());
}

TEST(Restore, endsWhenItIsCancelled) {
    Restoring restoring;
    restoring.add("a.txt", "a");
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(restoring.run(stop.get_token()), CancellationError);
    EXPECT_TRUE(fs::is_empty(restoring.target));
}

} // namespace marrowbox
