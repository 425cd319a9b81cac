#include "MountWorld.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

const std::string badIdentity = "Invalid snapshot mount identity was retained.";
const std::string escaping = "Escaping snapshot mount path was retained.";
const std::string untrusted = "Untrusted snapshot mount data was retained.";
const std::string badMarker = "Invalid snapshot mount marker was retained.";
const std::string otherMarker = "Mismatched snapshot mount marker was retained.";

/// Moves a work folder out of the tree and leaves a link in its place.
void redirect(const test::MountWorld& world, const MountEntry& entry) {
    fs::rename(entry.workingDirectory.path(), world.scratch / "elsewhere");
    fs::create_directory_symlink(world.scratch / "elsewhere", entry.workingDirectory.path());
}

/// Nothing deletes, ejects or shows the one entry of the registry, though its image may be attached.
void expectRetained(test::MountWorld& world) {
    const MountEntry entry = world.folder.load().entries.at(0);
    world.machine->attached = {{entry.image.path(), "/Volumes/Snapshot"}};
    EXPECT_FALSE(
        world.refusal<std::exception>([&] { world.run(world.mounts.unmount(world.mountedOf(entry), {})); })
            .empty());
    const std::string before = test::treeState(world.scratch.path());
    EXPECT_FALSE(world.run(world.mounts.validatedMounted(entry.id, {})));
    EXPECT_EQ(test::treeState(world.scratch.path()), before);
    EXPECT_EQ(world.machine->count("hdiutil detach"), 0u);
    world.machine->attached.clear();
    const auto reconciliation = world.unchangingReconcile();
    EXPECT_EQ(reconciliation.issue, "Invalid snapshot mount registry entry was retained.");
    EXPECT_TRUE(reconciliation.mounted.empty());
    EXPECT_TRUE(reconciliation.isAuthoritative);
}

} // namespace

TEST(MountValidation, passesAnEntryWithItsWorkFolder) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    EXPECT_NO_THROW(world.folder.validate(entry, MarkerCheck::required));
}

TEST(MountValidation, passesAMissingWorkFolderWhenTheMarkerIsNotNeeded) {
    const test::MountWorld world;
    const MountEntry entry = world.newEntry();
    EXPECT_NO_THROW(world.folder.validate(entry, MarkerCheck::notRequired));
    EXPECT_FALSE(world.folder.validateWhereItStands(entry));
}

TEST(MountValidation, passesAnImageThatWasNotMadeYet) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    fs::remove(entry.image.path());
    EXPECT_NO_THROW(world.folder.validate(entry, MarkerCheck::required));
}

TEST(MountValidation, refusesAWorkFolderOutsideTheTree) {
    test::MountWorld world;
    fs::create_directory(world.scratch / "x");
    openFile(world.scratch / "x" / "mine.txt", O_WRONLY | O_CREAT, 0600);
    const fs::path root = world.folder.workRoot();
    for (const fs::path& folder : {fs::path("/tmp/x"), world.scratch / "x", root, root / "a/b", root / "..",
                                   root / "../x", world.directory, fs::path("/"), root.parent_path()}) {
        MountEntry entry = world.newEntry();
        entry.workingDirectory = FileURL::ofFolder(folder);
        entry.image = FileURL::ofFile(folder / "Snapshot.dmg");
        world.registerEntries({entry});
        EXPECT_EQ(world.refusedValidation<BackupError>(entry), badIdentity) << folder;
        EXPECT_EQ(world.refusedUnmount(entry), badIdentity) << folder;
        expectRetained(world);
    }
}

TEST(MountValidation, refusesAnImageOfAnotherNameOrPlace) {
    test::MountWorld world;
    MountEntry entry = world.prepare();
    const fs::path workFolder = entry.workingDirectory.path();
    for (const fs::path& image : {workFolder / "Other.dmg", workFolder, workFolder / "Files/Snapshot.dmg",
                                  world.folder.workRoot() / "Snapshot.dmg", fs::path("/dev/sda")}) {
        entry.image = FileURL::ofFile(image);
        world.registerEntries({entry});
        EXPECT_EQ(world.refusedValidation<BackupError>(entry), badIdentity) << image;
        expectRetained(world);
    }
}

TEST(MountValidation, refusesTextsThatAreNoFileURLs) {
    test::MountWorld world;
    MountEntry entry = world.prepare();
    const std::string good = entry.workingDirectory.text;
    for (const std::string& text : {entry.workingDirectory.path().string(), "https" + good.substr(4),
                                    "file://host" + good.substr(7), good + "?x", good + "#x", good + "%2",
                                    good + "%00", good + "%zz", std::string("x"), "FILE" + good.substr(4)}) {
        entry.workingDirectory.text = text;
        world.registerEntries({entry});
        EXPECT_EQ(world.refusedValidation<BackupError>(entry), badIdentity) << text;
        expectRetained(world);
    }
}

TEST(MountValidation, acceptsOtherSpellingsOfTheSameWorkFolder) {
    test::MountWorld world;
    MountEntry entry = world.prepare();
    const std::string good = entry.workingDirectory.text;
    for (const std::string& text : {good.substr(0, good.size() - 1), good + "/./", good + "Files/..",
                                    "file://localhost" + good.substr(7), "file:///%2F" + good.substr(8)}) {
        entry.workingDirectory.text = text;
        EXPECT_NO_THROW(world.folder.validate(entry, MarkerCheck::required)) << text;
    }
}

TEST(MountValidation, refusesAWorkFolderThatIsALinkOutOfTheTree) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    redirect(world, entry);
    EXPECT_EQ(world.refusedValidation<BackupError>(entry), escaping);
    EXPECT_EQ(world.refusedUnmount(entry), escaping);
    expectRetained(world);
}

TEST(MountValidation, refusesAWorkFolderThatIsALinkToNothing) {
    test::MountWorld world;
    const MountEntry entry = world.newEntry();
    world.registerEntries({entry});
    fs::create_directory_symlink(world.scratch / "nothing", entry.workingDirectory.path());
    EXPECT_EQ(world.refusal<BackupError>([&] { world.folder.validateWhereItStands(entry); }), escaping);
    expectRetained(world);
}

TEST(MountValidation, refusesAWorkFolderThatIsALinkToItsNeighbour) {
    test::MountWorld world;
    const MountEntry neighbour = world.prepareWork();
    const MountEntry entry = world.newEntry();
    world.registerEntries({entry});
    fs::create_directory_symlink(neighbour.workingDirectory.path(), entry.workingDirectory.path());
    EXPECT_EQ(world.refusedValidation<BackupError>(entry), untrusted);
    expectRetained(world);
}

TEST(MountValidation, refusesAMarkerOrAnImageThatIsALink) {
    for (const std::string_view name : {".marrowbox-mount.json", "Snapshot.dmg"}) {
        test::MountWorld world;
        const MountEntry entry = world.prepare();
        const fs::path item = entry.workingDirectory.path() / name;
        fs::rename(item, world.scratch / "elsewhere");
        fs::create_symlink(world.scratch / "elsewhere", item);
        EXPECT_EQ(world.refusedValidation<BackupError>(entry), untrusted) << name;
        expectRetained(world);
    }
}

TEST(MountValidation, refusesWorkOfSomebodyElse) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    for (const fs::path& path : {entry.workingDirectory.path(), test::markerOf(entry), entry.image.path()}) {
        world.machine->owners = {{path, ::getuid() + 1}};
        EXPECT_EQ(world.refusedValidation<BackupError>(entry), untrusted) << path;
        expectRetained(world);
    }
}

TEST(MountValidation, refusesWorkThatWasGivenToAnotherUser) {
    if (::getuid() != 0)
        GTEST_SKIP() << "only the administrator can give a file away";
    for (const std::string_view name : {".", ".marrowbox-mount.json", "Snapshot.dmg"}) {
        test::MountWorld world;
        const MountEntry entry = world.prepare();
        ASSERT_EQ(::chown((entry.workingDirectory.path() / name).c_str(), 65534, 65534), 0);
        EXPECT_EQ(world.refusedValidation<BackupError>(entry), untrusted) << name;
        expectRetained(world);
    }
}

TEST(MountMarker, thatIsMissingIsTheSystemsErrorAndNoneOfOurs) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    fs::remove(test::markerOf(entry));
    try {
        world.folder.validate(entry, MarkerCheck::required);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::system_error& failure) {
        EXPECT_EQ(failure.code(), std::errc::no_such_file_or_directory);
    }
    expectRetained(world);
}

TEST(MountMarker, thatIsAFolderIsInvalid) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    fs::remove(test::markerOf(entry));
    fs::create_directory(test::markerOf(entry));
    EXPECT_EQ(world.refusedValidation<BackupError>(entry), badMarker);
    expectRetained(world);
}

TEST(MountMarker, thatIsAPipeIsInvalidAndNotWaitedFor) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    fs::remove(test::markerOf(entry));
    ASSERT_EQ(::mkfifo(test::markerOf(entry).c_str(), 0600), 0);
    EXPECT_EQ(world.refusedValidation<BackupError>(entry), badMarker);
    expectRetained(world);
}

TEST(MountMarker, thatCannotBeDecodedIsRetained) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    writeAll(openFile(test::markerOf(entry), O_WRONLY | O_TRUNC), "{\"id\":");
    EXPECT_NE(world.refusedValidation<JSONDecodingError>(entry), "");
    expectRetained(world);
}

TEST(MountMarker, ofAnotherWorkFolderIsMismatched) {
    test::MountWorld world;
    const MountEntry other = world.prepareWork();
    const MountEntry entry = world.prepare();
    fs::rename(test::markerOf(other), test::markerOf(entry));
    EXPECT_EQ(world.refusedValidation<BackupError>(entry), otherMarker);
    expectRetained(world);
}

TEST(MountMarker, mustAgreeInEveryIdentity) {
    test::MountWorld world;
    const MountEntry entry = world.prepare();
    const auto differs = [&](auto change) {
        MountEntry other = entry;
        change(other);
        return world.refusedValidation<BackupError>(other);
    };
    EXPECT_EQ(differs([](MountEntry& other) { other.id = Uuid::random(); }), otherMarker);
    EXPECT_EQ(differs([](MountEntry& other) { other.unitID = Uuid::random(); }), otherMarker);
    EXPECT_EQ(differs([](MountEntry& other) { other.displayName += "x"; }), otherMarker);
}

TEST(MountMarker, mayDifferInPhaseAndVolume) {
    test::MountWorld world;
    MountEntry entry = world.prepare();
    entry.phase = MountPhase::attached;
    entry.volume = FileURL::ofFolder("/Volumes/M");
    EXPECT_NO_THROW(world.folder.validate(entry, MarkerCheck::required));
}

} // namespace marrowbox
