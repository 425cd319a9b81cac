#include "SnapshotMount/HdiutilTool.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "ScriptedMachine.h"
#include "SnapshotMount/PropertyList.h"
#include "Support/Coroutine.h"
#include "Support/Thrown.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

std::string recorded(const std::string& name) {
    return readFile(fs::path(MARROWBOX_TEST_DATA) / name);
}

struct ScriptedHdiutil {
    std::shared_ptr<test::ScriptedMachine> machine = std::make_shared<test::ScriptedMachine>();
    HdiutilTool hdiutil{machine};
};

} // namespace

TEST(HdiutilTool, makesAReadOnlyImageWithItsExactArguments) {
    ScriptedHdiutil tool;
    tool.machine->answer("hdiutil create", ProcessRunner::Result{0, ""});
    EXPECT_TRUE(
        test::await(tool.hdiutil.create("/w/Files", "Marrowbox A 11-21 1504", "/w/Snapshot.dmg", {})));
    const std::vector<ToolCommand> expected{
        {"/usr/bin/hdiutil",
         {"create", "-quiet", "-srcfolder", "/w/Files", "-format", "UDRO", "-fs", "HFS+", "-volname",
          "Marrowbox A 11-21 1504", "/w/Snapshot.dmg"}}};
    EXPECT_EQ(tool.machine->calls, expected);
    tool.machine->answer("hdiutil create", ProcessRunner::Result{1, "no space"});
    EXPECT_FALSE(test::await(tool.hdiutil.create("/w/Files", "M", "/w/Snapshot.dmg", {})));
}

TEST(HdiutilTool, attachesReadOnlyAndTakesTheFirstMountPoint) {
    ScriptedHdiutil tool;
    tool.machine->answer("hdiutil attach", ProcessRunner::Result{0, recorded("attach-partitioned.plist")});
    EXPECT_EQ(test::await(tool.hdiutil.attach("/w/Snapshot.dmg", "M", {})),
              "/Volumes/Marrowbox Papers 11-21 1504");
    const std::vector<ToolCommand> expected{
        {"/usr/bin/hdiutil", {"attach", "-readonly", "-plist", "/w/Snapshot.dmg"}}};
    EXPECT_EQ(tool.machine->calls, expected);
}

TEST(HdiutilTool, findsNoMountPointWhereNothingWasMounted) {
    ScriptedHdiutil tool;
    tool.machine->answerOnce("hdiutil attach",
                             ProcessRunner::Result{0, recorded("attach-without-mount-point.plist")});
    EXPECT_FALSE(test::await(tool.hdiutil.attach("/w/Snapshot.dmg", "M", {})));
    tool.machine->answerOnce("hdiutil attach",
                             ProcessRunner::Result{1, recorded("attach-partitioned.plist")});
    EXPECT_FALSE(test::await(tool.hdiutil.attach("/w/Snapshot.dmg", "M", {})));
}

TEST(HdiutilTool, skipsMountPointsThatAreNoTexts) {
    EXPECT_EQ(HdiutilTool::attachPoint(recorded("attach-numbered-mount-point.plist")), "/Volumes/M");
}

TEST(HdiutilTool, refusesAnAttachAnswerOfAnotherShape) {
    for (const std::string name :
         {"attach-without-entities.plist", "attach-entities-of-texts.plist", "info-array.plist"})
        EXPECT_EQ(test::thrown<BackupError>([&] { HdiutilTool::attachPoint(recorded(name)); }),
                  "macOS returned ambiguous attach state.")
            << name;
    EXPECT_THROW(HdiutilTool::attachPoint("hdiutil: attach failed\n"), PropertyListError);
}

TEST(HdiutilTool, readsTheWholeInventory) {
    ScriptedHdiutil tool;
    tool.machine->answer("hdiutil info", ProcessRunner::Result{0, recorded("info-two-images.plist")});
    const std::vector<Attachment> expected{
        {"/Users/rene/Library/Application Support/Marrowbox/MountedSnapshots/MountWork/"
         "0A0C7F5B-6A57-4C3B-9A30-3D2A0F5E9A11/Snapshot.dmg",
         "/Volumes/Marrowbox Papers 11-21 1504"},
        {"/Users/rene/Downloads/Fish & Chips — '24'.dmg", std::nullopt}};
    EXPECT_EQ(test::await(tool.hdiutil.attached({})), expected);
    EXPECT_EQ(tool.machine->calls, (std::vector<ToolCommand>{{"/usr/bin/hdiutil", {"info", "-plist"}}}));
}

TEST(HdiutilTool, takesAnEmptyInventoryForNothingAttached) {
    EXPECT_TRUE(HdiutilTool::inventory(recorded("info-no-images.plist")).empty());
}

TEST(HdiutilTool, failsTheWholeInventoryForOneImageThatIsNotComplete) {
    for (const std::string name : {"info-image-without-entities.plist", "info-image-without-path.plist",
                                   "info-image-with-empty-path.plist", "info-image-with-numbered-path.plist",
                                   "info-entities-of-texts.plist"})
        EXPECT_EQ(test::thrown<BackupError>([&] { HdiutilTool::inventory(recorded(name)); }),
                  "macOS returned an incomplete disk-image inventory.")
            << name;
}

TEST(HdiutilTool, failsAnInventoryOfAnotherShape) {
    for (const std::string name : {"info-array.plist", "info-images-as-dictionary.plist",
                                   "info-images-of-texts.plist", "attach-partitioned.plist"})
        EXPECT_EQ(test::thrown<BackupError>([&] { HdiutilTool::inventory(recorded(name)); }),
                  "macOS returned ambiguous disk-image state.")
            << name;
}

TEST(HdiutilTool, failsAnInventoryThatIsNoPropertyList) {
    for (const std::string name : {"info-truncated.plist", "info-with-warning-before.plist",
                                   "info-with-warning-behind.plist", "info-doubled-images.plist"})
        EXPECT_THROW(HdiutilTool::inventory(recorded(name)), PropertyListError) << name;
    EXPECT_THROW(HdiutilTool::inventory(""), PropertyListError);
}

TEST(HdiutilTool, saysThatTheInventoryCouldNotBeAskedFor) {
    ScriptedHdiutil tool;
    tool.machine->answer("hdiutil info", ProcessRunner::Result{1, recorded("info-no-images.plist")});
    EXPECT_EQ(test::thrown<BackupError>([&] { test::await(tool.hdiutil.attached({})); }),
              "macOS disk-image state could not be inspected; temporary files were kept.");
}

TEST(HdiutilTool, detachesAMountPointAndNeverForces) {
    ScriptedHdiutil tool;
    tool.machine->answerOnce("hdiutil detach", ProcessRunner::Result{0, ""});
    tool.machine->answerOnce("hdiutil detach", ProcessRunner::Result{16, "Resource busy"});
    const Attachment attachment{"/w/Snapshot.dmg", "/Volumes/M"};
    EXPECT_TRUE(test::await(tool.hdiutil.detach(attachment, {})));
    EXPECT_FALSE(test::await(tool.hdiutil.detach(attachment, {})));
    const ToolCommand command{"/usr/bin/hdiutil", {"detach", "/Volumes/M"}};
    EXPECT_EQ(tool.machine->calls, (std::vector{command, command}));
}

} // namespace marrowbox
