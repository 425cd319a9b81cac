#include "DriveAPI/DriveTree.h"
#include "DriveFileBuilder.h"

#include "Models/BackupError.h"
#include "Support/Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace marrowbox::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const DriveLocation source{"top", "Top", std::nullopt};

DriveTree treeOf(DriveLocation location = source) {
    return {std::move(location), driveFolder("top", "Top")};
}

/// The one entry of a tree whose source holds nothing else.
SourceEntry entryOf(DriveFile file) {
    DriveTree tree = treeOf();
    tree.nextFolder();
    tree.add({std::move(file)});
    if (tree.nextFolder())
        tree.add({});
    return tree.finish().at(0);
}

std::vector<std::string> paths(const std::vector<SourceEntry>& entries) {
    std::vector<std::string> found;
    for (const SourceEntry& entry : entries)
        found.push_back(entry.path.string());
    return found;
}

} // namespace

TEST(DriveTree, describesAFile) {
    DriveFile file = driveFile("f", "a.txt");
    file.version = "17";
    file.size = "12";
    file.md5Checksum = "d41d8cd98f00b204e9800998ecf8427e";
    const SourceEntry expected{.id = "f",
                               .path = "a.txt",
                               .version = "17",
                               .mimeType = "text/plain",
                               .size = 12,
                               .md5 = "d41d8cd98f00b204e9800998ecf8427e",
                               .isDirectory = false};
    EXPECT_EQ(entryOf(file), expected);
}

TEST(DriveTree, describesAFolder) {
    DriveFile folder = driveFolder("d", "Sub");
    folder.version = "9";
    folder.size = "77";
    const SourceEntry expected{.id = "d",
                               .path = "Sub",
                               .version = "directory",
                               .mimeType = folderType,
                               .size = 0,
                               .md5 = std::nullopt,
                               .isDirectory = true};
    EXPECT_EQ(entryOf(folder), expected);
}

TEST(DriveTree, describesAnExportWithoutASize) {
    const SourceEntry entry = entryOf(driveFile("n", "Plan", documentType));
    EXPECT_EQ(entry.path, "Plan.docx");
    EXPECT_EQ(entry.size, -1);
    EXPECT_EQ(entry.md5, std::nullopt);
    EXPECT_TRUE(entry.isExport());
}

TEST(DriveTree, readsASizeOrCallsItUnknown) {
    const struct {
        const char* text;
        std::int64_t size;
    } rows[] = {
        {"0", 0},
        {"9223372036854775807", INT64_MAX},
        {"9223372036854775808", -1},
        {"-5", -5},
        {"+5", 5},
        {"+-5", -1},
        {"+", -1},
        {"", -1},
        {" 5", -1},
        {"5 ", -1},
        {"5.0", -1},
        {"many", -1},
        {"0x10", -1},
    };
    for (const auto& row : rows) {
        DriveFile file = driveFile("f", "a");
        file.size = row.text;
        EXPECT_EQ(entryOf(file).size, row.size) << row.text;
    }
}

TEST(DriveTree, takesTheTimeForAMissingVersion) {
    DriveFile file = driveFile("f", "a");
    file.version.reset();
    file.modifiedTime = "2026-01-02T03:04:05.000Z";
    EXPECT_EQ(entryOf(file).version, "2026-01-02T03:04:05.000Z");
}

TEST(DriveTree, refusesAFileWithoutAnyVersion) {
    DriveFile file = driveFile("f", "a/b");
    file.version.reset();
    EXPECT_EQ(thrown<BackupError>([&] { entryOf(file); }), "Google did not provide a version for “a%2Fb”.");
}

TEST(DriveTree, refusesAFileThatMustNotBeDownloaded) {
    DriveTree tree = treeOf();
    tree.nextFolder();
    tree.add({driveFolder("d", "Sub")});
    tree.nextFolder();
    DriveFile file = driveFile("f", "secret");
    file.capabilities = DriveFile::Capabilities{false};
    EXPECT_EQ(thrown<BackupError>([&] { tree.add({file}); }),
              "Google does not permit downloading “Sub/secret”. Ask its owner to allow downloads.");
}

TEST(DriveTree, takesAnUntoldPermissionAsGiven) {
    DriveFile file = driveFile("f", "a");
    file.capabilities = DriveFile::Capabilities{std::nullopt};
    EXPECT_EQ(entryOf(file).path, "a");
    file.capabilities = DriveFile::Capabilities{true};
    EXPECT_EQ(entryOf(file).path, "a");
}

TEST(DriveTree, doesNotAskWhetherAFolderMayBeDownloaded) {
    DriveFile folder = driveFolder("d", "Sub");
    folder.capabilities = DriveFile::Capabilities{false};
    EXPECT_TRUE(entryOf(folder).isDirectory);
}

TEST(DriveTree, isEmptyForAnEmptyFolder) {
    DriveTree tree = treeOf();
    EXPECT_EQ(tree.nextFolder(), source);
    tree.add({});
    EXPECT_EQ(tree.nextFolder(), std::nullopt);
    EXPECT_THAT(tree.finish(), IsEmpty());
}

TEST(DriveTree, walksLevelByLevelAndSortsByPath) {
    DriveTree tree = treeOf({"top", "Top", "shared"});
    std::vector<std::string> visited;
    while (const auto folder = tree.nextFolder()) {
        visited.push_back(folder->id);
        EXPECT_EQ(folder->sharedDriveID, "shared");
        if (folder->id == "top")
            tree.add({driveFolder("b", "b"), driveFolder("a", "a"), driveFile("z", "z")});
        else if (folder->id == "b")
            tree.add({driveFolder("bb", "b"), driveFile("ba", "a")});
        else
            tree.add({});
    }
    EXPECT_THAT(visited, ElementsAre("top", "a", "b", "bb"));
    EXPECT_THAT(paths(tree.finish()), ElementsAre("a", "b", "b/a", "b/b", "z"));
}

TEST(DriveTree, putsWhatLiesInATaggedFolderBelowTheTaggedName) {
    DriveTree tree = treeOf();
    tree.nextFolder();
    tree.add({driveFolder("a", "x"), driveFile("b", "X")});
    tree.nextFolder();
    tree.add({driveFile("c", "inside")});
    EXPECT_THAT(paths(tree.finish()),
                ElementsAre("X [3e23e81600]", "x [ca978112ca]", "x [ca978112ca]/inside"));
}

TEST(DriveTree, refusesAFolderThatHoldsItself) {
    DriveTree tree = treeOf();
    tree.nextFolder();
    tree.add({driveFolder("top", "again")});
    EXPECT_EQ(thrown<BackupError>([&] { tree.nextFolder(); }), "A folder cycle was found in Google Drive.");
}

TEST(DriveTree, refusesAFolderWithTwoParents) {
    DriveTree tree = treeOf();
    tree.nextFolder();
    tree.add({driveFolder("a", "a"), driveFolder("b", "b")});
    tree.nextFolder();
    tree.add({driveFolder("both", "both")});
    tree.nextFolder();
    tree.add({driveFolder("both", "both")});
    tree.nextFolder();
    tree.add({});
    EXPECT_EQ(thrown<BackupError>([&] { tree.nextFolder(); }), "A folder cycle was found in Google Drive.");
}

TEST(DriveTree, refusesASourceThatIsNoFolderOrIsInTheTrash) {
    const std::string sentence = "The source folder is unavailable or in the Google Drive trash.";
    DriveFile trashed = driveFolder("top", "Top");
    trashed.trashed = true;
    EXPECT_EQ(thrown<BackupError>([&] { DriveTree(source, trashed); }), sentence);
    EXPECT_EQ(thrown<BackupError>([&] { DriveTree(source, driveFile("top", "Top")); }), sentence);
    DriveFile kept = driveFolder("top", "Top");
    kept.trashed = false;
    EXPECT_EQ(DriveTree(source, kept).nextFolder(), source);
}

TEST(DriveTree, namesEveryChildBeforeItLooksAtAnyOther) {
    DriveTree tree = treeOf();
    tree.nextFolder();
    DriveFile withoutVersion = driveFile("a", "a");
    withoutVersion.version.reset();
    const std::string words = thrown<BackupError>(
        [&] { tree.add({withoutVersion, driveFile("s", "Link", "application/vnd.google-apps.shortcut")}); });
    EXPECT_TRUE(words.starts_with("“Link” is a Google type")) << words;
}

TEST(DriveTree, goesOnInTheOrderOfAFileBrowser) {
    DriveTree tree = treeOf();
    tree.nextFolder();
    tree.add({driveFolder("ten", "part 10"), driveFile("x", "x"), driveFolder("nine", "Part 9"),
              driveFolder("first", "same"), driveFolder("second", "same")});
    std::vector<std::string> visited;
    while (const auto folder = tree.nextFolder()) {
        visited.push_back(folder->id);
        tree.add({});
    }
    EXPECT_THAT(visited, ElementsAre("nine", "ten", "first", "second"));
}

TEST(DriveTree, tellsTheRefusalThatComesFirstInAFileBrowser) {
    DriveFile tenth = driveFile("a", "part 10");
    tenth.version.reset();
    DriveFile ninth = driveFile("b", "Part 9");
    ninth.capabilities = DriveFile::Capabilities{false};
    DriveTree tree = treeOf();
    tree.nextFolder();
    EXPECT_EQ(thrown<BackupError>([&] { tree.add({tenth, driveFolder("d", "z"), ninth}); }),
              "Google does not permit downloading “Part 9”. Ask its owner to allow downloads.");
}

TEST(DriveTree, knowsTheUpcomingFolderAsSoonAsItCan) {
    DriveTree tree = treeOf();
    EXPECT_EQ(tree.nextFolder(), source);
    EXPECT_EQ(tree.upcomingFolder(1), std::nullopt);
    tree.add({driveFolder("a", "a"), driveFolder("b", "b"), driveFolder("top", "c")});
    EXPECT_EQ(tree.nextFolder()->id, "a");
    EXPECT_EQ(tree.upcomingFolder(1)->id, "b");
    EXPECT_EQ(tree.upcomingFolder(2), std::nullopt) << "the cycle is for its turn to find";
    tree.add({});
    EXPECT_EQ(tree.nextFolder()->id, "b");
    EXPECT_EQ(tree.upcomingFolder(1), std::nullopt);
}

TEST(DriveTree, knowsNoFolderAheadThatComesTwice) {
    DriveTree tree = treeOf();
    tree.nextFolder();
    tree.add({driveFolder("a", "a"), driveFolder("b", "b"), driveFolder("b", "c"), driveFolder("d", "d")});
    tree.nextFolder();
    EXPECT_EQ(tree.upcomingFolder(1)->id, "b");
    EXPECT_EQ(tree.upcomingFolder(2), std::nullopt);
    EXPECT_EQ(tree.upcomingFolder(3)->id, "d");
    EXPECT_EQ(tree.upcomingFolder(4), std::nullopt);
}

TEST(DriveTree, sortsByTheBytesOfWholePaths) {
    // Some characters come before the separator, so that what lies in a folder does not always follow it.
    DriveTree tree = treeOf();
    tree.nextFolder();
    tree.add({driveFolder("1", "a"), driveFile("2", "a b"), driveFolder("3", "a!"), driveFile("4", "a.txt"),
              driveFile("5", "a0"), driveFolder("6", "ä"), driveFile("7", "B"), driveFolder("8", "empty")});
    while (const auto folder = tree.nextFolder())
        tree.add(folder->id == "8"
                     ? std::vector<DriveFile>()
                     : std::vector{driveFile("x" + folder->id, "z"), driveFile("y" + folder->id, "Z1")});
    const std::vector<std::string> found = paths(tree.finish());
    std::vector<std::string> expected = found;
    std::ranges::sort(expected);
    EXPECT_EQ(found, expected);
    EXPECT_EQ(found.size(), 14U);
}

TEST(DriveTree, sortsRandomTreesByTheBytesOfWholePaths) {
    std::mt19937 random(7);
    const std::string letters = "a !.-0Ab~";
    for (int round = 0; round < 50; ++round) {
        DriveTree tree = treeOf();
        int ids = 0;
        while (const auto folder = tree.nextFolder()) {
            std::vector<DriveFile> children;
            for (unsigned count = random() % 8; count > 0 && ids < 300; --count) {
                std::string name;
                for (unsigned length = 1 + random() % 4; length > 0; --length)
                    name += letters[random() % letters.size()];
                const std::string id = "i" + std::to_string(++ids);
                children.push_back(random() % 2 == 0 ? driveFolder(id, name) : driveFile(id, name));
            }
            tree.add(std::move(children));
        }
        const std::vector<SourceEntry> entries = tree.finish();
        EXPECT_EQ(entries.size(), static_cast<std::size_t>(ids));
        EXPECT_TRUE(std::ranges::is_sorted(entries, {}, &SourceEntry::path));
    }
}

TEST(DriveTree, describesATreeOfFiveThousandLevels) {
    constexpr std::size_t levels = 5000;
    DriveTree tree = treeOf();
    for (std::size_t level = 0; level < levels; ++level) {
        ASSERT_TRUE(tree.nextFolder());
        tree.add(
            {driveFolder("d" + std::to_string(level), "d"), driveFile("f" + std::to_string(level), "f")});
    }
    tree.nextFolder();
    tree.add({});
    ASSERT_FALSE(tree.nextFolder());
    const auto entries = tree.finish();
    ASSERT_EQ(entries.size(), 2 * levels);
    EXPECT_EQ(entries[levels - 1].path.size(), 2 * levels - 1);
    EXPECT_EQ(entries.back().path, "f");
}

TEST(DriveTree, checksTheWholeListAtItsEnd) {
    // A name that looks like the tagged one of another pair.
    DriveTree tree = treeOf();
    tree.nextFolder();
    tree.add({driveFile("a", "x"), driveFile("b", "X"), driveFile("c", "X [CA978112CA]")});
    EXPECT_EQ(thrown<BackupError>([&] { tree.finish(); }),
              "Two Google Drive items map to “X [CA978112CA]”. Rename one in Drive before backing up.");
}

} // namespace marrowbox::test
