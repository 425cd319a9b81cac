#include "Sandbox/Drive.h"

#include <gmock/gmock.h>
#include <set>

namespace marrowbox::test {
namespace {

using namespace sandbox;
using testing::ElementsAre;

std::vector<DriveItem> children(const Drive& drive, const std::string& folder, std::int64_t from = 0) {
    std::vector<DriveItem> found;
    drive.visitChildren(folder, from, [&](std::int64_t, const DriveItem& item) {
        found.push_back(item);
        return true;
    });
    return found;
}

/// Every id below a folder, folders and files.
void gather(const Drive& drive, const std::string& folder, std::set<std::string>& ids) {
    for (const DriveItem& item : children(drive, folder)) {
        EXPECT_TRUE(ids.insert(item.id).second);
        EXPECT_THAT(item.parents, ElementsAre(folder));
        if (item.isFolder())
            gather(drive, item.id, ids);
    }
}

TEST(GeneratedTree, hasAsManyFoldersAndFilesAsItsShapeSays) {
    for (const std::int64_t fanOut : {0, 1, 3}) {
        Drive drive;
        const std::string top = drive.addGenerated(
            "root", "tree", {.folders = 20, .filesPerFolder = 5, .foldersPerFolder = fanOut});
        std::set<std::string> ids;
        gather(drive, top, ids);
        EXPECT_EQ(ids.size(), 120) << fanOut;
    }
}

TEST(GeneratedTree, findsByItsIdWhatItLists) {
    Drive drive;
    const std::string top = drive.addGenerated("root", "tree", {.folders = 3, .filesPerFolder = 2});
    const DriveItem folder = children(drive, top).at(1);
    const DriveItem file = children(drive, folder.id).at(0);
    EXPECT_EQ(drive.item(file.id).value().name, file.name);
    EXPECT_EQ(file.md5Checksum, file.content.md5());
    EXPECT_EQ(file.size, std::to_string(file.content.bytes().size()));
    EXPECT_FALSE(drive.item(top + "-f6"));
    EXPECT_FALSE(drive.item(top + "-x0"));
}

TEST(GeneratedTree, sharesContentsOnlyAsFarAsToldTo) {
    Drive drive;
    const auto digests = [&](std::int64_t distinct) {
        const std::string top = drive.addGenerated(
            "root", "tree", {.folders = 1, .filesPerFolder = 10, .distinctContents = distinct});
        std::set<std::string> found;
        for (const DriveItem& file : children(drive, children(drive, top).at(0).id))
            found.insert(file.md5Checksum.value());
        return found.size();
    };
    EXPECT_EQ(digests(0), 10);
    EXPECT_EQ(digests(3), 3);
}

TEST(GeneratedTree, takesChangesLikeAnyOther) {
    Drive drive;
    const std::string top = drive.addGenerated("root", "tree", {.folders = 1, .filesPerFolder = 3});
    const std::string folder = children(drive, top).at(0).id;
    drive.replaceContent(folder.substr(0, folder.size() - 2) + "f0", "new");
    drive.remove(folder.substr(0, folder.size() - 2) + "f1");
    drive.addFile(folder, "added", "x");

    const auto now = children(drive, folder);
    ASSERT_EQ(now.size(), 3);
    EXPECT_EQ(now[0].name, "file 0000002.bin");
    EXPECT_EQ(now[1].content.bytes(), "new");
    EXPECT_EQ(now[1].version, "2");
    EXPECT_EQ(now[2].name, "added");
    EXPECT_EQ(children(drive, folder, 3).size(), 2) << "places behind the computed ones";
}

TEST(GeneratedTree, readsAPatternTheSameWholeAndInParts) {
    const Content content = Content::pattern(42, 1000);
    const std::string all = content.bytes();
    std::string part(333, '\0');
    content.read(5, part);
    EXPECT_EQ(part, all.substr(5, 333));
    EXPECT_NE(all, Content::pattern(43, 1000).bytes());
}

} // namespace
} // namespace marrowbox::test
