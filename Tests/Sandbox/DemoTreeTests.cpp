#include "Sandbox/DemoTree.h"

#include <gtest/gtest.h>

namespace marrowbox::test {
namespace {

using namespace sandbox;

int filesBelow(const Drive& drive, const std::string& folder) {
    std::vector<std::string> folders;
    int count = 0;
    drive.visitChildren(folder, 0, [&](std::int64_t, const DriveItem& item) {
        if (item.isFolder())
            folders.push_back(item.id);
        else if (!item.trashed)
            ++count;
        return true;
    });
    for (const std::string& below : folders)
        count += filesBelow(drive, below);
    return count;
}

TEST(DemoTree, holdsAsManyFilesAsItTells) {
    Drive drive;
    const DemoTree tree = demoTree(drive);
    EXPECT_GT(tree.papersFiles, 300);
    EXPECT_EQ(filesBelow(drive, tree.papers), tree.papersFiles);
    EXPECT_EQ(filesBelow(drive, tree.team), tree.teamFiles);
}

TEST(DemoTree, tellsHowARoundOfWorkChangedIt) {
    Drive drive;
    const DemoTree tree = demoTree(drive);
    const DemoChanges changes = changeDemoTree(drive, tree);
    EXPECT_GT(changes.edited, 0);
    EXPECT_EQ(filesBelow(drive, tree.papers), tree.papersFiles + changes.added - changes.trashed);
    EXPECT_EQ(drive.item(tree.document)->version, "2");
}

} // namespace
} // namespace marrowbox::test
