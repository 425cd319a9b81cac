// The demonstration as a person runs it, to its end and stopped in the middle.
#include "DemoProgram.h"
#include "Platform/Files.h"
#include "Platform/FuseSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// Stops the program once it has written these words.
class DemoProgramStopped : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        const bool needsVolumes = std::string_view(GetParam()) == "A read-only volume at";
        if (const auto reason = needsVolumes ? reasonForNoFUSE() : std::nullopt)
            GTEST_SKIP() << *reason;
    }
};

} // namespace

TEST(DemoProgram, signsInBacksUpBringsBackAndComparesEveryByte) {
    DemoProgram demo;
    EXPECT_EQ(demo.status(), 0) << demo.written();
    EXPECT_THAT(demo.written(), HasSubstr("You can return to Marrowbox. This window may be closed."));
    EXPECT_THAT(demo.written(), HasSubstr("Connected ada@example.com, read-only, with leave to send mail."));
    for (const char* line : {"Ada's papers, first snapshot restored", "Ada's papers, last snapshot restored",
                             "Shared drive, first snapshot restored", "Shared drive, last snapshot restored"})
        EXPECT_THAT(demo.written(),
                    testing::ContainsRegex(std::string("\n") + line + "[ 0-9.]*as it was in Google Drive\n"));
    EXPECT_THAT(demo.written(), HasSubstr("For daily use, with your own Google account:\n"));
    EXPECT_THAT(demo.written(), HasSubstr("There is no display here, so the window stays closed.\n"));
}

TEST(DemoProgram, mountsAndEjectsTheLastSnapshot) {
    if (const auto reason = reasonForNoFUSE())
        GTEST_SKIP() << *reason;
    DemoProgram demo;
    EXPECT_EQ(demo.status(), 0) << demo.written();
    EXPECT_THAT(demo.written(),
                HasSubstr("  Letters/2022/Month 1/Letter 1.txt reads: Rewritten letter 0.\n"));
    EXPECT_THAT(demo.written(), HasSubstr("  Ejected.\n"));
    EXPECT_THAT(
        demo.written(),
        testing::ContainsRegex("\nAda's papers, last snapshot mounted[ 0-9.]*as it was in Google Drive\n"));
    EXPECT_THAT(directoryNames(demo.folder() / "Volumes" / "marrowbox"), testing::ElementsAre(".lock"));
    EXPECT_THAT(directoryNames(demo.folder() / "MountedSnapshots" / "MountWork"), IsEmpty());
}

TEST_P(DemoProgramStopped, leavesNoProcessNoMountAndNoFile) {
    DemoProgram demo;
    demo.awaitWords(GetParam());
    demo.interrupt();
    EXPECT_EQ(demo.status(), 130) << demo.written();
    EXPECT_THAT(demo.written(), HasSubstr("Stopped. Nothing was left running, mounted or half done.\n"));
    demo.expectNothingLeft();
}

INSTANTIATE_TEST_SUITE_P(AtEachStage, DemoProgramStopped,
                         testing::Values("Signing in to Google", "The browser shows", "Downloading 33",
                                         "Verifying the backup", "Restoring Ada's papers, first",
                                         "Mounting Ada's papers", "A read-only volume at"));

TEST(DemoProgram, thatIsTerminatedLeavesNothing) {
    DemoProgram demo;
    demo.awaitWords("Downloading 1");
    demo.terminate();
    EXPECT_EQ(demo.status(), 130) << demo.written();
    demo.expectNothingLeft();
}

TEST(DemoProgram, whoseReaderLeavesLeavesNothing) {
    DemoProgram demo;
    demo.awaitWords("Downloading 1");
    demo.stopReading();
    EXPECT_EQ(demo.status(), 130);
    demo.expectNothingLeft();
}

} // namespace marrowbox::test
