#include "KillSwitch.h"
#include "MountWorld.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "Repository/LockBusyError.h"
#include "SnapshotMount/MountPaths.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace marrowbox {

namespace {

const std::string unsafeRegistry = "Unsafe snapshot mount registry was retained.";
const std::string unsupported = "Unsupported snapshot mount registry; no files were changed.";
const std::string duplicate = "Duplicate snapshot mount registry identity; no files were changed.";

void writeText(const fs::path& path, std::string_view text) {
    writeAll(openFile(path, O_WRONLY | O_CREAT | O_TRUNC, 0600), text);
}

} // namespace

TEST(MountRegistry, readsAsEmptyWhereThereIsNoFileAndMakesNone) {
    const test::MountWorld world;
    EXPECT_EQ(world.folder.load(), MountRegistry{});
    EXPECT_FALSE(fs::exists(world.folder.registryFile()));
}

TEST(MountRegistry, readsBackWhatWasSaved) {
    test::MountWorld world;
    MountEntry attached = world.newEntry();
    attached.volume = FileURL::ofFolder("/Volumes/A name with % and é");
    attached.phase = MountPhase::attached;
    const MountRegistry registry{.entries = {world.newEntry(), attached}};
    world.folder.save(registry);
    EXPECT_EQ(world.folder.load(), registry);
    EXPECT_EQ(linkStatus(world.folder.registryFile())->st_mode & 07777, 0600u);
}

TEST(MountRegistry, isWrittenWithoutBlanksInTheOrderOfItsFields) {
    MountEntry entry{.id = *Uuid::parse("0123ABCD-4567-89EF-0123-456789ABCDEF"),
                     .unitID = *Uuid::parse("FEDCBA98-7654-3210-FEDC-BA9876543210"),
                     .displayName = "Marrowbox Papers 11-21 1504",
                     .workingDirectory = FileURL::ofFolder("/data/Mounted Snapshots/MountWork/W"),
                     .image = FileURL::ofFile("/data/Mounted Snapshots/MountWork/W/Snapshot.dmg")};
    const std::string start = R"({"id":"0123ABCD-4567-89EF-0123-456789ABCDEF",)"
                              R"("unitID":"FEDCBA98-7654-3210-FEDC-BA9876543210",)"
                              R"("displayName":"Marrowbox Papers 11-21 1504",)"
                              R"("workingDirectory":"file:///data/Mounted%20Snapshots/MountWork/W/",)"
                              R"("image":"file:///data/Mounted%20Snapshots/MountWork/W/Snapshot.dmg",)";
    EXPECT_EQ(encodeMountMarker(entry), start + R"("phase":"preparing"})");
    entry.volume = FileURL::ofFolder("/Volumes/M");
    entry.phase = MountPhase::attached;
    EXPECT_EQ(encodeMountRegistry({.entries = {entry}}),
              R"({"version":1,"entries":[)" + start +
                  R"("volume":"file:///Volumes/M/","phase":"attached"}]})");
}

TEST(MountRegistry, acceptsEscapedSlashesAndKeysInAnyOrder) {
    const test::MountWorld world;
    writeText(world.folder.registryFile(),
              R"({"entries":[{"phase":"attached","image":"file:\/\/\/w\/Snapshot.dmg",)"
              R"("workingDirectory":"file:\/\/\/w\/","displayName":"M","volume":null,)"
              R"("unitID":"fedcba98-7654-3210-fedc-ba9876543210",)"
              R"("id":"0123ABCD-4567-89EF-0123-456789ABCDEF"}],"version":1})");
    const MountRegistry registry = world.folder.load();
    ASSERT_EQ(registry.entries.size(), 1u);
    EXPECT_EQ(registry.entries[0].image.path(), "/w/Snapshot.dmg");
    EXPECT_EQ(registry.entries[0].workingDirectory.path(), "/w");
    EXPECT_EQ(registry.entries[0].volume, std::nullopt);
}

TEST(MountRegistry, thatIsALinkStopsEveryOperation) {
    test::MountWorld world;
    writeText(world.scratch / "elsewhere.json", R"({"version":1,"entries":[]})");
    fs::create_symlink(world.scratch / "elsewhere.json", world.folder.registryFile());
    world.expectEveryOperationRefuses(unsafeRegistry);
}

TEST(MountRegistry, thatIsALinkToNothingStopsEveryOperation) {
    test::MountWorld world;
    fs::create_symlink(world.scratch / "nothing", world.folder.registryFile());
    world.expectEveryOperationRefuses(unsafeRegistry);
}

TEST(MountRegistry, thatIsAFolderStopsEveryOperation) {
    test::MountWorld world;
    fs::create_directory(world.folder.registryFile());
    world.expectEveryOperationRefuses(unsafeRegistry);
}

TEST(MountRegistry, thatIsAPipeStopsEveryOperationWithoutWaiting) {
    test::MountWorld world;
    ASSERT_EQ(::mkfifo(world.folder.registryFile().c_str(), 0600), 0);
    world.expectEveryOperationRefuses(unsafeRegistry);
    // Nor does a reading that comes too late for the check.
    EXPECT_THROW(world.folder.load(), std::exception);
}

TEST(MountRegistry, ofSomebodyElseStopsEveryOperation) {
    test::MountWorld world;
    world.folder.save({});
    world.machine->owners[world.folder.registryFile()] = ::getuid() + 1;
    world.expectEveryOperationRefuses(unsafeRegistry);
}

TEST(MountRegistry, thatWasGivenToAnotherUserStopsEveryOperation) {
    if (::getuid() != 0)
        GTEST_SKIP() << "only the administrator can give a file away";
    test::MountWorld world;
    world.folder.save({});
    ASSERT_EQ(::chown(world.folder.registryFile().c_str(), 65534, 65534), 0);
    world.expectEveryOperationRefuses(unsafeRegistry);
}

TEST(MountRegistry, ofAnotherVersionStopsEveryOperation) {
    test::MountWorld world;
    world.folder.save({.version = 2});
    world.expectEveryOperationRefuses(unsupported);
    world.folder.save({.version = 0});
    world.expectEveryOperationRefuses(unsupported);
}

TEST(MountRegistry, withOneSnapshotTwiceStopsEveryOperation) {
    test::MountWorld world;
    MountEntry second = world.newEntry();
    const MountEntry first = world.newEntry();
    second.id = first.id;
    world.registerEntries({first, second});
    world.expectEveryOperationRefuses(duplicate);
}

TEST(MountRegistry, withOneWorkFolderTwiceStopsEveryOperationHoweverItIsSpelled) {
    test::MountWorld world;
    const MountEntry first = world.newEntry();
    MountEntry second = world.newEntry();
    second.workingDirectory =
        FileURL::ofFile(world.folder.workRoot() / "." / first.workingDirectory.path().filename());
    world.registerEntries({first, second});
    world.expectEveryOperationRefuses(duplicate);
}

TEST(MountRegistry, withOneImageTwiceStopsEveryOperationThoughEachEntryAloneIsValid) {
    test::MountWorld world;
    const MountEntry first = world.newEntry();
    MountEntry second = first;
    second.id = Uuid::random();
    EXPECT_NO_THROW(world.folder.validate(first, MarkerCheck::notRequired));
    EXPECT_NO_THROW(world.folder.validate(second, MarkerCheck::notRequired));
    second.workingDirectory = FileURL::ofFolder(world.folder.workRoot() / Uuid::random().text());
    world.registerEntries({first, second});
    world.expectEveryOperationRefuses(duplicate);
}

TEST(MountRegistry, thatCannotBeDecodedIsLeftAsItIs) {
    test::MountWorld world;
    for (const std::string_view text :
         {"", "{", "[]", R"({"version":1})", R"({"version":"1","entries":[]})",
          R"({"version":1,"entries":[{"id":"x"}]})", R"({"version":1,"entries":[]} more)"}) {
        writeText(world.folder.registryFile(), text);
        EXPECT_FALSE(world.refusal<JSONDecodingError>([&] { world.folder.load(); }).empty()) << text;
        const auto reconciliation = world.unchangingReconcile();
        EXPECT_TRUE(reconciliation.issue->starts_with("Snapshot mount recovery was skipped: ")) << text;
        EXPECT_FALSE(reconciliation.isAuthoritative);
    }
}

TEST(MountRegistry, keepsAnUnknownPhaseAsAFailureToDecode) {
    test::MountWorld world;
    std::string text = encodeMountRegistry({.entries = {world.newEntry()}});
    text.replace(text.find("preparing"), 9, "ejecting!");
    writeText(world.folder.registryFile(), text);
    EXPECT_THROW(world.folder.load(), JSONDecodingError);
}

TEST(MountRegistry, cutAtAnyByteIsRefusedAndLeftAsItIs) {
    test::MountWorld world;
    const std::string whole = encodeMountRegistry({.entries = {world.newEntry(), world.newEntry()}});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        writeText(world.folder.registryFile(), whole.substr(0, length));
        EXPECT_THROW(world.folder.load(), JSONDecodingError) << length;
    }
}

TEST(MountRegistry, isKeptFromASecondOperationByItsLock) {
    test::MountWorld world;
    const MountEntry entry = world.prepareMounted();
    const RepositoryLock lock = world.folder.lock();
    const std::string words =
        world.refusal<LockBusyError>([&] { world.run(world.mounts.unmount(world.mountedOf(entry), {})); });
    EXPECT_EQ(words, "Another snapshot mount operation is still finishing. Try again in a moment.");
    EXPECT_FALSE(world.run(world.mounts.validatedMounted(entry.id, {})));
    EXPECT_EQ(world.unchangingReconcile(), SnapshotMount::Reconciliation{});
    EXPECT_TRUE(world.machine->calls.empty());
}

TEST(MountRegistry, whoseLockIsALinkIsNotTouched) {
    test::MountWorld world;
    fs::remove(world.directory / "mounts.lock");
    fs::create_symlink(world.scratch / "nothing", world.directory / "mounts.lock");
    world.expectEveryOperationRefuses("Could not open the backup lock. Check destination permissions.");
    EXPECT_FALSE(fs::exists(world.scratch / "nothing"));
}

TEST(MountRegistry, neverFailsToBeSavedOnceItHasItsName) {
    test::MountWorld world;
    rlimit usual{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
    const MountRegistry registry{.entries = {world.newEntry()}};
    // Nothing is killed; from the rename on no file can be opened.
    test::killBefore([&](std::string_view call, const std::string&) {
        const rlimit none{.rlim_cur = 0, .rlim_max = usual.rlim_max};
        if (call == "rename")
            EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
        return false;
    });
    EXPECT_NO_THROW(world.folder.save(registry));
    test::killBefore({});
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
    EXPECT_EQ(world.folder.load(), registry);
}

TEST(MountRegistry, dropsOnlyTheEntryOfTheSameWorkFolder) {
    test::MountWorld world;
    const MountEntry later = world.newEntry();
    MountEntry older = world.newEntry();
    older.id = later.id;
    world.registerEntries({later});
    world.folder.forget(older);
    EXPECT_EQ(world.folder.load().entries, std::vector{later});
    world.folder.forget(later);
    EXPECT_TRUE(world.folder.load().entries.empty());
}

} // namespace marrowbox
