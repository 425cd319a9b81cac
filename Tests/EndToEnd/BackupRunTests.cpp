#include "GoogleBackup.h"
#include "Sandbox/RequestMatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace sandbox;
using test::GoogleBackup;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t mebibyte = 1 << 20;

/// So many mebibytes, no two alike; quicker to serve than a pattern.
Content numberedMebibytes(std::int64_t count) {
    std::string bytes(static_cast<std::size_t>(count * mebibyte), '.');
    for (std::int64_t number = 0; number < count; ++number) {
        const auto text = std::to_string(number);
        bytes.replace(static_cast<std::size_t>(number * mebibyte), text.size(), text);
    }
    return bytes;
}

TEST(BackupRun, bringsBinaryEmptyAndLargeFiles) {
    GoogleBackup backup;
    const auto deep = backup.drive.addFolder(backup.drive.addFolder(backup.folder, "deep"), "er");
    backup.drive.addFile(backup.folder, "binary", Content::pattern(1, 300'001));
    backup.drive.addFile(backup.folder, "empty", "");
    backup.drive.addFile(deep, "large", Content::pattern(2, 20 * mebibyte + 1));
    backup.drive.addFile("root", "outside", "not a part of the source");
    const auto snapshot = backup.run();
    backup.expectHolds(snapshot, {"binary", "empty", "deep", "deep/er", "deep/er/large"});
    backup.expectSettled(1);
    EXPECT_EQ(snapshot.summary, (RunSummary{3, 0, 0, 0, 0, 300'001 + 20 * mebibyte + 1}));
    EXPECT_THAT(backup.progress(), ElementsAre("Reading Google Drive…", "Downloading 1–3 of 3 changed files…",
                                               "Verifying the backup…"));
}

TEST(BackupRun, bringsAFileThatRcloneFetchesInParallelRanges) {
    GoogleBackup backup;
    backup.drive.addFile(backup.folder, "huge", numberedMebibytes(256));
    backup.expectHolds(backup.run(), {"huge"});
    backup.expectSettled(1);
    EXPECT_GT(backup.sandbox.requests().count([](const RecordedRequest& request) {
        return request.queryItem("alt") == "media" && request.header("Range").has_value();
    }),
              1U);
}

TEST(BackupRun, exportsNativeDocumentsInTheFourFormats) {
    GoogleBackup backup;
    backup.drive.addNative(backup.folder, "Plan", NativeKind::document, "text");
    backup.drive.addNative(backup.folder, "Plan.xlsx", NativeKind::spreadsheet, "cells");
    backup.drive.addNative(backup.folder, "Talk", NativeKind::presentation, "slides");
    backup.drive.addNative(backup.folder, "Sketch", NativeKind::drawing, "lines");
    backup.drive.addFile(backup.folder, "Plan.pdf", "an ordinary file");
    const auto snapshot = backup.run();
    backup.expectHolds(snapshot, {"Plan.docx", "Plan.xlsx.xlsx", "Talk.pptx", "Sketch.svg", "Plan.pdf"});
    backup.expectSettled(1);
    EXPECT_EQ(snapshot.summary.exported, 4);
}

TEST(BackupRun, bringsThirtyThreeFilesInTwoBatches) {
    GoogleBackup backup;
    std::vector<std::string> paths;
    for (int number = 1; number <= 33; ++number) {
        paths.push_back("file " + std::to_string(number));
        backup.drive.addFile(backup.folder, paths.back(), "content of " + paths.back());
    }
    backup.expectHolds(backup.run(), paths);
    backup.expectSettled(1);
    EXPECT_THAT(backup.progress(),
                ElementsAre("Reading Google Drive…", "Downloading 1–32 of 33 changed files…",
                            "Downloading 33–33 of 33 changed files…", "Verifying the backup…"));
    EXPECT_EQ(backup.rcloneCalls(), 2U);
}

TEST(BackupRun, bringsASharedDrive) {
    GoogleBackup backup;
    const auto shared = backup.drive.addSharedDrive("Team");
    const auto inside = backup.drive.addFolder(shared, "Inside");
    backup.drive.addFile(inside, "one", "of the team");
    backup.drive.addNative(shared, "Notes", NativeKind::document, "of the team too");
    backup.location = {shared, "Team", shared};
    backup.expectHolds(backup.run(), {"Inside", "Inside/one", "Notes.docx"});
    backup.expectSettled(1);
    EXPECT_EQ(backup.rcloneCalls(), 0U); // a shared drive has no such root
}

TEST(BackupRun, asksGoogleInThisOrder) {
    GoogleBackup backup;
    const auto file = backup.drive.addFile(backup.folder, "a", "content");
    const auto inner = backup.drive.addFolder(backup.folder, "b");
    const auto document = backup.drive.addNative(inner, "c", NativeKind::document, "text");
    backup.run();
    const std::string item = "GET /drive/v3/files/";
    const std::vector<std::string> inventory{item + backup.folder, "GET /drive/v3/files",
                                             "GET /drive/v3/files"};
    std::vector<std::string> expected = inventory;
    expected.insert(expected.end(), {item + "root", item + file, item + file, item + document,
                                     "GET /drive/v3/about", "GET /feeds/download/documents/export/Export"});
    expected.insert(expected.end(), inventory.begin(), inventory.end());
    EXPECT_EQ(backup.sandbox.requests().lines(), expected);
}

TEST(BackupRun, bringsAwkwardNames) {
    GoogleBackup backup;
    const std::vector<std::pair<std::string, std::string>> names{
        {"-rf", "-rf"},
        {"--config", "--config"},
        {"a/b:c\\d", "a%2Fb%3Ac%5Cd"},
        {"100%", "100%25"},
        {".", "%2E"},
        {"..", "%2E%2E"},
        {".hidden", ".hidden"},
        {" both ends ", " both ends%20"},
        {"dots..", "dots.%2E"},
        {"line\nbreak\ttab", "line%0Abreak%09tab"},
        {"'quotes' \"$HOME\" `id` *?<>|&;", "'quotes' \"$HOME\" `id` *?<>|&;"},
        {"{braces} [brackets] ~ #", "{braces} [brackets] ~ #"},
        {"„Ünïcödé“ – 日本語", "„Ünïcödé“ – 日本語"},
        {"👩‍🔬", "👩%200D🔬"},
        {"e\u0301 taken apart", "e\u0301 taken apart"},
        {"full／width． ：", "full／width． ："},
        {"．", "．"},
        {"‛Twas ␊ ␡", "‛Twas ␊ ␡"},
        {"␀", "␀"},
        {std::string(239, 'n'), std::string(239, 'n')},
    };
    const std::vector<std::string> paths = backup.addFoldersNamed(names);
    backup.expectHolds(backup.run(), paths);
    backup.expectSettled(1);
}

TEST(BackupRun, reusesWhatDidNotChange) {
    GoogleBackup backup;
    const auto anyMedia = [](const RecordedRequest& request) { return request.queryItem("alt") == "media"; };
    const auto kept = backup.drive.addFile(backup.folder, "kept", Content::pattern(1, 70'000));
    const auto changed = backup.drive.addFile(backup.folder, "changed", "before");
    const auto moved = backup.drive.addFile(backup.folder, "moved", "carried over");
    const auto removed = backup.drive.addFile(backup.folder, "removed", "for now");
    backup.drive.addNative(backup.folder, "Plan", NativeKind::document, "text");
    backup.expectHolds(backup.run(), {"kept", "changed", "moved", "removed", "Plan.docx"});

    backup.drive.replaceContent(changed, "after");
    backup.drive.remove(removed);
    backup.drive.addFile(backup.folder, "new", "here");
    backup.sandbox.requests().clear();
    const auto second = backup.run();
    backup.expectHolds(second, {"kept", "changed", "moved", "new", "Plan.docx"});
    EXPECT_EQ(second.summary, (RunSummary{1, 1, 1, 3, 0, 9}));
    EXPECT_EQ(backup.sandbox.requests().count(anyMedia), 2U);
    EXPECT_EQ(backup.rcloneCalls(), 1U);

    backup.sandbox.requests().clear();
    const auto third = backup.run();
    backup.expectHolds(third, {"kept", "changed", "moved", "new", "Plan.docx"});
    EXPECT_EQ(third.summary, (RunSummary{0, 0, 0, 5, 0, 0}));
    EXPECT_EQ(backup.sandbox.requests().count(anyMedia), 0U);
    EXPECT_EQ(backup.rcloneCalls(), 0U);
    EXPECT_THAT(backup.progress(), ElementsAre("Reading Google Drive…", "Verifying the backup…"));
    backup.expectSettled(3);
}

TEST(BackupRun, renewsATokenThatIsNearItsEnd) {
    GoogleBackup backup;
    backup.drive.addFile(backup.folder, "file", "content");
    backup.connect(std::chrono::seconds(60));
    backup.expectHolds(backup.run(), {"file"});
    backup.expectSettled(1);
    EXPECT_EQ(backup.sandbox.requests().count(tokenCall()), 1U); // the renewed one serves the whole run
}

TEST(BackupRun, goesOnWhenRcloneRenewsTheTokenByItself) {
    GoogleBackup backup;
    backup.drive.addFile(backup.folder, "file", "content");
    backup.connect(std::chrono::seconds(5));
    backup.shiftClock(-300); // by our clock it lasts; rclone asks the machine's
    backup.expectHolds(backup.run(), {"file"});
    backup.expectSettled(1);
    const auto calls = backup.sandbox.requests().matching(tokenCall());
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].header("User-Agent").value_or(""), testing::StartsWith("rclone/"));
}

} // namespace

} // namespace marrowbox
