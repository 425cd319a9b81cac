#include "DriveAPI/DriveNames.h"
#include "DriveFileBuilder.h"

#include "Models/BackupError.h"
#include "Support/Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string exported(const std::string& name, const std::string& type = "text/plain") {
    return DriveNames::exportedName(driveFile("id", name, type));
}

std::string native(const std::string& kind) {
    return "application/vnd.google-apps." + kind;
}

const std::string tagOfA = " [ca978112ca]"; // SHA-256 of "a"
const std::string tagOfB = " [3e23e81600]"; // SHA-256 of "b"

} // namespace

TEST(DriveNames, makesPortableNames) {
    const struct {
        const char* name;
        std::string drive;
        std::string disk;
    } rows[] = {
        {"plain", "report.txt", "report.txt"},
        {"separators", "a/b:c\\d", "a%2Fb%3Ac%5Cd"},
        {"per cent", "100%", "100%25"},
        {"an escape is escaped", "%2F", "%252F"},
        {"one dot", ".", "%2E"},
        {"two dots", "..", "%2E%2E"},
        {"three dots", "...", "..%2E"},
        {"hidden", ".hidden", ".hidden"},
        {"trailing blank", "a ", "a%20"},
        {"two trailing blanks", "a  ", "a %20"},
        {"trailing dot", "a.", "a%2E"},
        {"two trailing dots", "a..", "a.%2E"},
        {"dot then blank", "a. ", "a.%20"},
        {"blank then dot", "a .", "a %2E"},
        {"blank alone", " ", "%20"},
        {"line feed", "a\nb", "a%0Ab"},
        {"NUL", std::string("a\0b", 3), "a%00b"},
        {"delete", "a\x7F", "a%7F"},
        {"C1 control", "a\u0085b", "a%85b"},
        {"zero width space", "a\u200Bb", "a%200Bb"},
        {"tag character", "a\U000E0001b", "a%E0001b"},
        {"soft hyphen", "a\u00ADb", "a%ADb"},
        {"letters of other scripts", "Ünïcødé 資料 😀", "Ünïcødé 資料 😀"},
        {"ends with an ideographic blank", "a\u3000", "a\u3000"},
        {"characters other systems mind", "a<b>|c\"d?*", "a<b>|c\"d?*"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(exported(row.drive), row.disk) << row.name;
        EXPECT_EQ(exported(row.drive, folderType), row.disk) << row.name;
    }
}

TEST(DriveNames, appendsTheExtensionOfAnExportAlways) {
    EXPECT_EQ(exported("Plan", native("document")), "Plan.docx");
    EXPECT_EQ(exported("Plan", native("spreadsheet")), "Plan.xlsx");
    EXPECT_EQ(exported("Plan", native("presentation")), "Plan.pptx");
    EXPECT_EQ(exported("Plan", native("drawing")), "Plan.svg");
    EXPECT_EQ(exported("Plan.docx", native("document")), "Plan.docx.docx");
    EXPECT_EQ(exported("Plan.", native("document")), "Plan%2E.docx");
    EXPECT_EQ(exported("..", native("document")), "%2E%2E.docx");
    EXPECT_EQ(exported("", native("document")), ".docx");
}

TEST(DriveNames, refusesATypeThatCannotBeExported) {
    for (const char* kind : {"form", "shortcut", "site", "documents", "document.x", "", "folders"})
        EXPECT_EQ(
            thrown<BackupError>([&] { exported("My/Form", native(kind)); }),
            "“My/Form” is a Google type that cannot be exported by this version (for example a Form or "
            "shortcut). Choose a source folder without that item. Nothing will be marked as fully backed "
            "up.")
            << kind;
}

TEST(DriveNames, takesATypeThatOnlyResemblesANativeOneAsItIs) {
    EXPECT_EQ(exported("a", "application/vnd.google-appsx"), "a");
    EXPECT_EQ(exported("a", "Application/vnd.google-apps.form"), "a");
    EXPECT_EQ(exported("a", ""), "a");
}

TEST(DriveNames, takes239BytesAndNoMore) {
    EXPECT_EQ(exported(std::string(239, 'a')).size(), 239U);
    EXPECT_EQ(exported(std::string(234, 'a'), documentType).size(), 239U);
    EXPECT_EQ(exported(std::string(236, 'a') + "%").size(), 239U);
    for (const auto& [name, type] : {std::pair(std::string(240, 'a'), std::string("text/plain")),
                                     std::pair(std::string(235, 'a'), documentType),
                                     std::pair(std::string(237, 'a') + "/", std::string("text/plain"))})
        EXPECT_EQ(thrown<BackupError>([&] { exported(name, type); }),
                  "The name “" + name + "” is too long for a portable backup.");
}

TEST(DriveNames, countsBytesAndNotCharacters) {
    std::string name;
    for (int index = 0; index < 119; ++index)
        name += "ä";
    EXPECT_EQ(exported(name), name);
    EXPECT_THROW(exported(name + "ä"), BackupError);
}

TEST(DriveNames, refusesAnEmptyNameWithTheSameSentence) {
    EXPECT_EQ(thrown<BackupError>([] { exported(""); }), "The name “” is too long for a portable backup.");
}

TEST(DriveNames, putsATagBeforeTheExtension) {
    EXPECT_EQ(DriveNames::tagged("report.txt", "a"), "report" + tagOfA + ".txt");
    EXPECT_EQ(DriveNames::tagged("archive.tar.gz", "a"), "archive.tar" + tagOfA + ".gz");
    EXPECT_EQ(DriveNames::tagged("report", "a"), "report" + tagOfA);
    EXPECT_EQ(DriveNames::tagged(".hidden", "a"), ".hidden" + tagOfA);
}

TEST(DriveNames, tagsAllThatCollide) {
    const std::vector<DriveFile> children{driveFile("a", "report.txt"), driveFile("b", "REPORT.TXT"),
                                          driveFile("c", "other.txt")};
    EXPECT_THAT(DriveNames::namesOf(children),
                ElementsAre("report" + tagOfA + ".txt", "REPORT" + tagOfB + ".TXT", "other.txt"));
}

TEST(DriveNames, tagsEqualNames) {
    const std::vector<DriveFile> children{driveFile("a", "x"), driveFile("b", "x")};
    EXPECT_THAT(DriveNames::namesOf(children), ElementsAre("x" + tagOfA, "x" + tagOfB));
}

TEST(DriveNames, tagsNamesThatDifferInCompositionAlone) {
    const std::vector<DriveFile> children{driveFile("a", "é"), driveFile("b", "e\u0301")};
    EXPECT_THAT(DriveNames::namesOf(children), ElementsAre("é" + tagOfA, "e\u0301" + tagOfB));
}

TEST(DriveNames, seesTheExtensionOfAnExportInACollision) {
    const std::vector<DriveFile> children{driveFile("a", "Plan", documentType), driveFile("b", "plan.docx")};
    EXPECT_THAT(DriveNames::namesOf(children),
                ElementsAre("Plan" + tagOfA + ".docx", "plan" + tagOfB + ".docx"));
}

TEST(DriveNames, tagsAFolderThatCollidesWithAFile) {
    const std::vector<DriveFile> children{driveFolder("a", "Data"), driveFile("b", "data")};
    EXPECT_THAT(DriveNames::namesOf(children), ElementsAre("Data" + tagOfA, "data" + tagOfB));
}

TEST(DriveNames, doesNotMeasureATaggedNameAgain) {
    const std::string name(239, 'a');
    const std::vector<DriveFile> children{driveFile("a", name), driveFile("b", name)};
    EXPECT_THAT(DriveNames::namesOf(children), ElementsAre(name + tagOfA, name + tagOfB));
}

TEST(DriveNames, namesNothingForNoChildren) {
    EXPECT_THAT(DriveNames::namesOf({}), IsEmpty());
}

TEST(DriveNames, knowsWhatMayStandInAQuery) {
    for (const char* text : {"root", "0AbC-_9", "-", "_"})
        EXPECT_TRUE(DriveNames::isIdentifier(text)) << text;
    for (const std::string& text : {std::string(), std::string("a'b"), std::string("a b"), std::string("a\n"),
                                    std::string("a/b"), std::string("ä"), std::string("a\0", 2)})
        EXPECT_FALSE(DriveNames::isIdentifier(text)) << text;
}

} // namespace marrowbox::test
