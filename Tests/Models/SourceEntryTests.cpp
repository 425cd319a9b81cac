#include "Models/SourceEntry.h"

#include <gtest/gtest.h>
#include <limits>

namespace marrowbox {

namespace {

SourceEntry report() {
    return {.id = "1a2b",
            .path = "Work/Report.pdf",
            .version = "42",
            .mimeType = "application/pdf",
            .size = 1000,
            .md5 = SharedText("d41d8cd98f00b204e9800998ecf8427e")};
}

/// Entries that differ from the report in one field of their content each.
std::vector<SourceEntry> changedReports() {
    std::vector<SourceEntry> changed(6, report());
    changed[0].id = "1a2c";
    changed[1].version = "43";
    changed[2].mimeType = "application/pdf+x";
    changed[3].size = 1001;
    changed[4].md5.reset();
    changed[5].md5 = SharedText("00000000000000000000000000000000");
    return changed;
}

} // namespace

TEST(SourceEntry, hasAFingerprintOfItsContent) {
    EXPECT_EQ(report().fingerprint(), "1a2b|42|application/pdf|1000|d41d8cd98f00b204e9800998ecf8427e");
}

TEST(SourceEntry, endsItsFingerprintInABarWithoutADigest) {
    SourceEntry entry = report();
    entry.md5.reset();
    entry.size = -1;
    EXPECT_EQ(entry.fingerprint(), "1a2b|42|application/pdf|-1|");
    entry.size = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(entry.fingerprint(), "1a2b|42|application/pdf|-9223372036854775808|");
}

TEST(SourceEntry, appendsItsFingerprint) {
    std::string text = "before ";
    report().appendFingerprint(text);
    EXPECT_EQ(text, "before " + report().fingerprint());
}

TEST(SourceEntry, keepsItsFingerprintWhenItIsMoved) {
    SourceEntry moved = report();
    moved.path = "Elsewhere/Other.pdf";
    moved.isDirectory = true;
    EXPECT_EQ(moved.fingerprint(), report().fingerprint());
    EXPECT_EQ(moved.fingerprintHash(), report().fingerprintHash());
    EXPECT_TRUE(moved.hasFingerprintOf(report()));
}

TEST(SourceEntry, changesItsFingerprintWithEachFieldOfTheContent) {
    for (const SourceEntry& changed : changedReports()) {
        EXPECT_NE(changed.fingerprint(), report().fingerprint());
        EXPECT_NE(changed.fingerprintHash(), report().fingerprintHash());
        EXPECT_FALSE(changed.hasFingerprintOf(report()));
    }
}

TEST(SourceEntry, comparesFingerprintsAsTextsEvenWhenFieldsHoldTheSeparator) {
    SourceEntry left = report();
    SourceEntry right = report();
    left.id = "a|b";
    left.version = "c";
    right.id = "a";
    right.version = "b|c";
    ASSERT_EQ(left.fingerprint(), right.fingerprint());
    EXPECT_TRUE(left.hasFingerprintOf(right));
    EXPECT_EQ(left.fingerprintHash(), right.fingerprintHash());
}

TEST(SourceEntry, takesNoDigestForAnEmptyOne) {
    SourceEntry none = report();
    none.md5.reset();
    SourceEntry empty = report();
    empty.md5 = SharedText();
    EXPECT_TRUE(none.hasFingerprintOf(empty));
    EXPECT_NE(none, empty);
}

TEST(SourceEntry, isAnExportWhenItIsANativeDocument) {
    SourceEntry entry = report();
    EXPECT_FALSE(entry.isExport());
    entry.mimeType = "application/vnd.google-apps.document";
    EXPECT_TRUE(entry.isExport());
    entry.mimeType = "application/vnd.google-apps.";
    EXPECT_TRUE(entry.isExport());
    entry.mimeType = "application/vnd.google-apps";
    EXPECT_FALSE(entry.isExport());
}

TEST(SourceEntry, isNoExportWhenItIsAFolder) {
    SourceEntry entry = report();
    entry.mimeType = "application/vnd.google-apps.folder";
    entry.isDirectory = true;
    EXPECT_FALSE(entry.isExport());
}

TEST(SourceEntry, isEqualInAllSevenFields) {
    EXPECT_EQ(report(), report());
    for (const SourceEntry& changed : changedReports())
        EXPECT_NE(changed, report());
    SourceEntry moved = report();
    moved.path = "x";
    EXPECT_NE(moved, report());
    SourceEntry directory = report();
    directory.isDirectory = true;
    EXPECT_NE(directory, report());
}

TEST(SourceEntry, hashesByAllItsFields) {
    const std::hash<SourceEntry> hash;
    EXPECT_EQ(hash(report()), hash(report()));
    SourceEntry moved = report();
    moved.path = "x";
    EXPECT_NE(hash(moved), hash(report()));
}

} // namespace marrowbox
