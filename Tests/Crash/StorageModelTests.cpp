// The model of a disk that power cuts are tried on, and that a writer who forgets something is found by it.
#include "Platform/Files.h"
#include "Support/ScratchFolder.h"
#include "Support/StorageRecording.h"

#include <fstream>
#include <gtest/gtest.h>
#include <set>

namespace marrowbox::test {

namespace {

using Kind = StorageChange::Kind;

Bytes text(const char* letters) {
    return std::make_shared<const std::string>(letters);
}

/// A disk with the file "old", to which these changes happen.
StorageModel disk(const std::vector<StorageChange>& changes) {
    StorageModel model({{"old", text("before")}, {"folder", {}}});
    for (const StorageChange& change : changes)
        model.apply(change);
    return model;
}

/// What a file may hold after a power cut; "-" for a file that is not there.
std::set<std::string> fates(const StorageModel& model, const std::string& path) {
    std::set<std::string> found;
    for (unsigned moment = 0; moment < 32; ++moment)
        for (const PowerCut& cut : powerCuts(moment)) {
            const StoredTree tree = model.after(cut);
            const auto file = tree.find(path);
            found.insert(file == tree.end() ? "-" : *file->second);
        }
    return found;
}

using Fates = std::set<std::string>;

const std::vector<StorageChange> replacement = {{Kind::makeFile, "new"},
                                                {.kind = Kind::write, .path = "new", .bytes = text("AB")},
                                                {Kind::synchronize, "new"},
                                                {Kind::move, "new", "old"}};

std::vector<StorageChange> without(std::vector<StorageChange> changes, Kind kind) {
    std::erase_if(changes, [&](const StorageChange& change) { return change.kind == kind; });
    return changes;
}

/// The ends of a shell's commands in a folder with the file "old", wherever the power is cut.
class WrittenByAShell : public testing::Test {
  protected:
    void SetUp() override {
        std::ofstream(folder / "old") << "before";
        if (const auto reason = reasonForNoWatching())
            GTEST_SKIP() << *reason;
    }

    /// What "old" may hold, and that it may be gone, when the program has ended or before.
    Fates fatesOf(const std::string& commands, bool atTheEnd = false) {
        StorageRecording recording(folder.path());
        WatchedProgram program({"/bin/sh", "-c", "cd " + folder.path().string() + " && " + commands});
        EXPECT_EQ(program.run([&](const FileCall& call) { return recording.note(call); }), 0);
        recording.endOfProgram();
        Fates found;
        cutPowerEverywhere(recording, {}, [&](const LeftByPowerCut& left) {
            const auto file = left.tree.find("old");
            if (left.programsEnded == 1 || !atTheEnd)
                found.insert(file == left.tree.end() ? "-" : *file->second);
            return true;
        });
        return found;
    }

    ScratchFolder folder;
};

} // namespace

TEST(StorageModel, keepsWhatWasThereBefore) {
    EXPECT_EQ(fates(disk({}), "old"), Fates{"before"});
}

TEST(StorageModel, mayLoseANewFileOrItsBytes) {
    const StorageModel model =
        disk({{Kind::makeFile, "new"}, {.kind = Kind::write, .path = "new", .bytes = text("AB")}});
    EXPECT_EQ(fates(model, "new"), (Fates{"-", "", "A", "AB", std::string(2, '\0')}));
}

TEST(StorageModel, mayLoseTheNameOfASynchronisedFile) {
    const StorageModel model = disk({{Kind::makeFile, "new"}, {Kind::synchronize, "new"}});
    EXPECT_EQ(fates(model, "new"), (Fates{"-", ""}));
}

TEST(StorageModel, mayKeepANameWithoutItsBytesWhenTheFolderIsSynchronised) {
    const StorageModel model = disk({{Kind::makeFile, "new"},
                                     {.kind = Kind::write, .path = "new", .bytes = text("A")},
                                     {Kind::synchronize, ""}});
    EXPECT_EQ(fates(model, "new"), (Fates{"", "A", std::string(1, '\0')}));
}

TEST(StorageModel, keepsTheOldFileOrTheNewOneOfASynchronisedReplacement) {
    EXPECT_EQ(fates(disk(replacement), "old"), (Fates{"before", "AB"}));
}

TEST(StorageModel, findsAReplacementThatWasNotSynchronised) {
    EXPECT_TRUE(fates(disk(without(replacement, Kind::synchronize)), "old").contains(""));
}

TEST(StorageModel, keepsTheNewFileOnceTheFolderIsSynchronised) {
    std::vector<StorageChange> changes = replacement;
    changes.push_back({Kind::synchronize, ""});
    EXPECT_EQ(fates(disk(changes), "old"), Fates{"AB"});
}

TEST(StorageModel, mayKeepALaterNameAndLoseAnEarlierOne) {
    const StorageModel model =
        disk({{Kind::makeFile, "new"}, {Kind::synchronize, "new"}, {Kind::remove, "old"}});
    const StoredTree tree = model.after({"", PowerCut::Names::latestKept, PowerCut::Data::kept});
    EXPECT_FALSE(tree.contains("new") || tree.contains("old"));
}

TEST(StorageModel, mayBringARemovedFileBack) {
    EXPECT_EQ(fates(disk({{Kind::remove, "old"}}), "old"), (Fates{"-", "before"}));
    EXPECT_EQ(fates(disk({{Kind::remove, "old"}, {Kind::synchronize, ""}}), "old"), Fates{"-"});
}

TEST(StorageModel, losesAFileWithItsFolder) {
    const StorageModel model = disk({{Kind::makeFolder, "made"},
                                     {Kind::makeFile, "made/file"},
                                     {Kind::synchronize, "made/file"},
                                     {Kind::synchronize, "made"}});
    EXPECT_EQ(fates(model, "made/file"), (Fates{"-", ""}));
}

TEST(StorageModel, keepsTheTwoEndsOfAMoveBetweenFoldersApart) {
    EXPECT_EQ(fates(disk({{Kind::move, "old", "folder/moved"}, {Kind::synchronize, ""}}), "folder/moved"),
              (Fates{"-", "before"}));
    EXPECT_EQ(fates(disk({{Kind::move, "old", "folder/moved"}, {Kind::synchronize, "folder"}}), "old"),
              (Fates{"-", "before"}));
}

TEST(StorageModel, changesNothingThatASystemWouldRefuse) {
    const StorageModel model = disk({{Kind::makeFile, "nowhere/file"},
                                     {Kind::makeFolder, "old"},
                                     {Kind::move, "missing", "old"},
                                     {Kind::makeFile, "folder/file"},
                                     {Kind::remove, "folder"}});
    StoredTree seen = model.seen();
    EXPECT_EQ(*seen.at("old"), "before");
    EXPECT_EQ(seen.size(), 3U);
}

TEST_F(WrittenByAShell, withoutSynchronisingLosesBoth) {
    const Fates found = fatesOf("printf AB > new && mv new old");
    for (const char* fate : {"before", "", "A", "AB"})
        EXPECT_TRUE(found.contains(fate)) << fate;
}

TEST_F(WrittenByAShell, withTheNewFileSynchronisedLosesNeither) {
    EXPECT_EQ(fatesOf("printf AB > new && sync new && mv new old"), (Fates{"before", "AB"}));
}

TEST_F(WrittenByAShell, withoutTheFolderSynchronisedPromisesNothingAtItsEnd) {
    EXPECT_EQ(fatesOf("printf AB > new && sync new && mv new old", true), (Fates{"before", "AB"}));
}

TEST_F(WrittenByAShell, withTheFolderSynchronisedKeepsWhatItSaid) {
    EXPECT_EQ(fatesOf("printf AB > new && sync new && mv new old && sync .", true), Fates{"AB"});
}

TEST_F(WrittenByAShell, aheadOfItsSynchronisingIsFound) {
    // The move waits for nothing that the other process does, and comes first, however long it takes to.
    const std::string work = "i=0; while [ $i -lt 50000 ]; do i=$((i+1)); done; ";
    EXPECT_TRUE(fatesOf("printf AB > new && { sync new & " + work + "mv new old; wait; }").contains(""));
}

TEST_F(WrittenByAShell, inPlaceIsFound) {
    EXPECT_TRUE(fatesOf("printf AB > old && sync old").contains("A"));
}

} // namespace marrowbox::test
