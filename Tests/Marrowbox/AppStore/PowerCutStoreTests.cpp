// The power is cut while the store writes its configuration, in several ways, and the next start finds the
// old one or the new one. With MARROWBOX_EVERY_MOMENT in the environment it is cut after each change;
// otherwise some are left out.
#include "Models/JSONFile.h"
#include "StoreWorld.h"
#include "Support/Spread.h"
#include "Support/StorageRecording.h"
#include "Support/WatchedProgram.h"

#include <algorithm>
#include <climits>
#include <gtest/gtest.h>
#include <iostream>
#include <set>

namespace marrowbox::test {

namespace {

/// A folder on which the power is cut, with the store's data folder in it, or without one yet. Skipped where
/// the system does not let a process watch another.
class PowerCutStore : public testing::Test {
  protected:
    void SetUp() override {
        if (const auto reason = reasonForNoWatching())
            GTEST_SKIP() << *reason;
        fs::create_directory(storage);
    }

    void prepareUnit() {
        world.write(oneUnit(world));
        fs::copy(world.data, data, fs::copy_options::recursive);
        contents.push_back(readFile(file));
    }

    /// Runs the program to its end while its changes are recorded, and each content of the configuration.
    void record(StorageRecording& recording) {
        WatchedProgram program(
            {"/usr/bin/env", "TMPDIR=" + world.home.string(), MARROWBOX_CRASH_STORE, data, world.disk});
        const int status = program.run([&](const FileCall& call) {
            if (call.target == file)
                contents.push_back(readFile(call.path));
            return recording.note(call);
        });
        EXPECT_EQ(status, 0) << program.words();
        recording.endOfProgram();
    }

    /// Cuts the power at so many moments, or at all, and starts the program on what is left.
    void cutPower(const StorageRecording& recording, int atMost) {
        const bool all = test::triesEveryMoment();
        const PowerCutMoments moments{.atMost = all ? INT_MAX : atMost};
        const PowerCutCount count = cutPowerEverywhere(recording, moments, [&](const LeftByPowerCut& left) {
            SCOPED_TRACE("cut " + left.words);
            fs::remove_all(storage);
            fs::create_directory(storage);
            writeTree(left.tree, storage);
            expectOldOrNew(left.programsEnded == 1);
            expectUsable();
            return !HasFailure();
        });
        RecordProperty("cuts", static_cast<int>(count.cuts));
        std::cout << count.cuts << " power cuts in " << count.changes << " changes, " << count.states
                  << " states\n";
    }

    /// The configuration is a whole one that the program wrote or found, and the last one once it has ended.
    void expectOldOrNew(bool hasEnded) {
        if (!fs::exists(file)) {
            EXPECT_TRUE(startsWithNothing && !hasEnded) << "no configuration";
            return;
        }
        const std::string left = readFile(file);
        EXPECT_TRUE(std::ranges::find(contents, left) != contents.end()) << left;
        EXPECT_NO_THROW(decodeJSON<AppConfiguration>(left));
        found.insert(left);
        if (hasEnded)
            EXPECT_EQ(left, contents.back());
    }

    void expectUsable() const {
        StoreWorld next;
        next.environment = {{"MARROW_DATA_DIR", data.string()}};
        AppStore& store = next.start();
        EXPECT_TRUE(store.configurationIsReadable()) << next.error();
        EXPECT_EQ(next.configuration().units.empty(), startsWithNothing);
        EXPECT_NO_THROW(store.persist());
        EXPECT_EQ(JSONFile::read<AppConfiguration>(file), next.configuration());
        for (const std::string& name : directoryNames(data))
            EXPECT_FALSE(name.starts_with(".Configuration.")) << name;
    }

    StoreWorld world;
    const fs::path storage = world.home / "Storage";
    const fs::path data = storage / "Data";
    const fs::path file = data / "Configuration.json";
    bool startsWithNothing = false;
    std::vector<std::string> contents; ///< Of the configuration, one after the other.
    std::set<std::string> found;       ///< Those of them that a cut has left.
};

} // namespace

TEST_F(PowerCutStore, findsAWholeConfigurationWhateverItWasWriting) {
    prepareUnit();
    StorageRecording recording(storage);
    record(recording);
    EXPECT_GE(contents.size(), 10U);
    cutPower(recording, 60);
    EXPECT_GT(found.size(), 3U) << "the cuts met hardly any write";
}

TEST_F(PowerCutStore, hasItsFirstConfigurationInAFolderThatLasts) {
    startsWithNothing = true;
    StorageRecording recording(storage);
    record(recording);
    EXPECT_EQ(std::set<std::string>(contents.begin(), contents.end()).size(), 1U);
    cutPower(recording, 60);
    EXPECT_EQ(found.size(), 1U);
}

} // namespace marrowbox::test
