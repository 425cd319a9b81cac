#include "Demo/Comparison.h"
#include "Demo/PortableName.h"

#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Platform/Files.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox::demo {

namespace {

using test::thrown;
using testing::HasSubstr;

/// A folder of a Drive, and the same on disk.
class DemoComparison : public testing::Test {
  protected:
    DemoComparison() {
        const std::string inner = drive.addFolder(source, "Inner");
        file = drive.addFile(inner, "a/b.txt", "bytes");
        drive.addNative(source, "Plan", sandbox::NativeKind::document, "words");
        drive.addFolder(source, "Nothing yet");
        drive.trash(drive.addFile(source, "thrown away", "no longer"));
        picture = pictureOf(drive, source);
        makeDirectory(disk, 0700);
        makeDirectory(disk / "Inner", 0700);
        makeDirectory(disk / "Nothing yet", 0700);
        write("Inner/a%2Fb.txt", "bytes");
        for (const DrivePicture& item : picture.children)
            if (item.name == "Plan")
                write("Plan.docx", item.content.bytes());
    }
    void write(const std::string& path, const std::string& bytes) {
        writeAll(openFile(disk / path, O_WRONLY | O_CREAT | O_TRUNC), bytes);
    }
    std::string difference() {
        return thrown<BackupError>([&] { compare(disk, picture, {}); });
    }

    test::ScratchFolder scratch;
    fs::path disk = scratch / "restored";
    sandbox::Drive drive;
    std::string source = drive.addFolder("root", "Source");
    std::string file;
    DrivePicture picture;
};

} // namespace

TEST_F(DemoComparison, passesWhatIsTheSame) {
    const Compared same = compare(disk, picture, {});
    EXPECT_EQ(same.files, 2);
    EXPECT_EQ(same.folders, 2);
    EXPECT_EQ(same.bytes, 5 + regularFileSize(disk / "Plan.docx").value());
}

TEST_F(DemoComparison, goesByTheDriveAsItWasAtThatTime) {
    drive.replaceContent(file, "later");
    drive.addFile(source, "new", "later");
    EXPECT_EQ(compare(disk, picture, {}).files, 2);
}

TEST_F(DemoComparison, findsOneOtherByte) {
    write("Inner/a%2Fb.txt", "bytez");
    EXPECT_EQ(difference(),
              "“" + (disk / "Inner/a%2Fb.txt").string() + "” holds other bytes than Google Drive did.");
}

TEST_F(DemoComparison, findsAnotherSize) {
    write("Inner/a%2Fb.txt", "bytes and more");
    EXPECT_THAT(difference(), HasSubstr("is no file of the size that Google Drive held."));
}

TEST_F(DemoComparison, findsWhatIsMissing) {
    fs::remove(disk / "Nothing yet");
    EXPECT_EQ(difference(), "“" + disk.string() + "” lacks “Nothing yet” of Google Drive.");
}

TEST_F(DemoComparison, findsWhatIsTooMuch) {
    write("Inner/b", "");
    EXPECT_EQ(difference(), "“" + (disk / "Inner" / "b").string() + "” was not in Google Drive.");
}

TEST_F(DemoComparison, findsAFileInPlaceOfAFolder) {
    fs::remove(disk / "Nothing yet");
    write("Nothing yet", "");
    EXPECT_THROW(compare(disk, picture, {}), std::system_error);
}

TEST_F(DemoComparison, endsWhenStopped) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(compare(disk, picture, stop.get_token()), CancellationError);
}

TEST(DemoNames, areReadAsAPersonWould) {
    const auto shows = [](std::string_view found, const std::string& name,
                          const std::string& extension = "") {
        return isNameOf(found, {.id = "an id", .name = name, .extension = extension});
    };
    EXPECT_TRUE(shows("plain.txt", "plain.txt"));
    EXPECT_TRUE(shows("a%2Fb%3Ac", "a/b:c"));
    EXPECT_TRUE(shows("100%25", "100%"));
    EXPECT_TRUE(shows("line%0Abreak", "line\nbreak"));
    EXPECT_TRUE(shows("zero%200Bwidth", "zero\u200Bwidth"));
    EXPECT_TRUE(shows("größe ☃ 📄", "größe ☃ 📄"));
    EXPECT_TRUE(shows("Plan.docx", "Plan", ".docx"));
    EXPECT_TRUE(shows("twin [5e92a53cfa].txt", "twin.txt"));
    EXPECT_TRUE(shows("Plan [5e92a53cfa].docx", "Plan", ".docx"));
    EXPECT_FALSE(shows("twin [5e92a53cfb].txt", "twin.txt"));
    EXPECT_FALSE(shows("100%", "100%"));
    EXPECT_FALSE(shows("Plan", "Plan", ".docx"));
    EXPECT_FALSE(shows("Plan.docx.docx", "Plan", ".docx"));
    EXPECT_FALSE(shows("plain.tx", "plain.txt"));
    EXPECT_FALSE(shows("plain.txtx", "plain.txt"));
    EXPECT_FALSE(shows("PLAIN.txt", "plain.txt"));
    EXPECT_FALSE(shows("", "plain.txt"));
}

} // namespace marrowbox::demo
