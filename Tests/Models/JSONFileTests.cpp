#include "Models/JSONFile.h"

#include "Support/ScratchFolder.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Spread.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(JSONFile, givesBackWhatWasWritten) {
    test::ScratchFolder folder;
    const Snapshot snapshot = test::snapshotOfManyKinds();
    JSONFile::write(snapshot, folder / "x.json");
    EXPECT_EQ(JSONFile::read<Snapshot>(folder / "x.json"), snapshot);
}

TEST(JSONFile, writesSortedPrettyAndPrivate) {
    test::ScratchFolder folder;
    JSONFile::write(
        SnapshotEntry{.source = {.id = "1", .path = "a/b", .version = "2", .mimeType = "t", .size = 3}},
        folder / "x.json");
    EXPECT_EQ(readFile(folder / "x.json"), R"({
  "source": {
    "id": "1",
    "isDirectory": false,
    "mimeType": "t",
    "path": "a/b",
    "size": 3,
    "version": "2"
  },
  "storedSize": 0
})");
    EXPECT_EQ(linkStatus(folder / "x.json")->st_mode & 07777, 0600U);
}

TEST(JSONFile, replacesTheFileAndLeavesNothingBeside) {
    test::ScratchFolder folder;
    JSONFile::write(RunSummary{.added = 1}, folder / "x.json");
    JSONFile::write(RunSummary{.added = 2}, folder / "x.json");
    EXPECT_EQ(JSONFile::read<RunSummary>(folder / "x.json").added, 2);
    EXPECT_EQ(directoryNames(folder.path()), std::vector<std::string>{"x.json"});
}

TEST(JSONFile, leavesTheOldFileWhenTheRecordCannotBeWritten) {
    test::ScratchFolder folder;
    JSONFile::write(SourceEntry{.id = "good"}, folder / "x.json");
    EXPECT_THROW(JSONFile::write(SourceEntry{.id = "bad \xFF bytes"}, folder / "x.json"), JSONEncodingError);
    EXPECT_EQ(JSONFile::read<SourceEntry>(folder / "x.json").id, "good");
    EXPECT_EQ(directoryNames(folder.path()), std::vector<std::string>{"x.json"});
}

TEST(JSONFile, passesTheSystemsWordsThrough) {
    test::ScratchFolder folder;
    try {
        JSONFile::read<RunSummary>(folder / "missing.json");
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
    EXPECT_THROW(JSONFile::write(RunSummary(), folder / "no" / "x.json"), std::system_error);
}

TEST(JSONFile, refusesAManifestThatWasCutAtAnyByte) {
    const std::string whole = encodeJSON(test::snapshotOfManyKinds(), JSONStyle::pretty);
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_THROW(decodeJSON<Snapshot>(whole.substr(0, length)), JSONDecodingError) << length;
}

TEST(JSONFile, refusesAFlippedByteOrReadsWhatItSays) {
    const std::string whole = encodeJSON(test::snapshotOfManyKinds(), JSONStyle::pretty);
    for (std::size_t position = 0; position < whole.size(); position += test::stepOfManyCases())
        for (const int flip : {1, 2, 4, 8, 16, 32, 64, 128}) {
            std::string damaged = whole;
            damaged[position] = static_cast<char>(damaged[position] ^ flip);
            try {
                // What was read, written again and read again, is what the damaged text says.
                const auto said = decodeJSON<Snapshot>(damaged);
                EXPECT_EQ(decodeJSON<Snapshot>(encodeJSON(said, JSONStyle::compact)), said);
            } catch (const JSONDecodingError&) {
            }
        }
}

TEST(JSONFile, readsTheSameFromPiecesAsFromOneText) {
    test::ScratchFolder folder;
    Snapshot snapshot = test::snapshotOfManyKinds();
    for (int number = 0; number < 4000; ++number)
        snapshot.entries.push_back(test::file("folder/é" + std::to_string(number) + "\n.txt", "content"));
    JSONFile::write(snapshot, folder / "x.json");
    ASSERT_GT(*regularFileSize(folder / "x.json"), 1'000'000);
    EXPECT_EQ(JSONFile::read<Snapshot>(folder / "x.json"), decodeJSON<Snapshot>(readFile(folder / "x.json")));
    EXPECT_EQ(JSONFile::read<Snapshot>(folder / "x.json"), snapshot);
}

TEST(JSONFile, holdsEqualTextsAndEntriesOnceInASharedReading) {
    const std::string text = encodeJSON(test::snapshotOfManyKinds(), JSONStyle::pretty);
    JSONSharing sharing;
    const auto first = decodeJSON<Snapshot>(text, &sharing);
    const auto second = decodeJSON<Snapshot>(text, &sharing);
    ASSERT_EQ(first, second);
    for (std::size_t index = 0; index < first.entries.size(); ++index)
        EXPECT_EQ(&*first.entries[index], &*second.entries[index]);
}

} // namespace marrowbox
