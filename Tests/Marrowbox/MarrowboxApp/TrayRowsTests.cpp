#include "Marrowbox/MarrowboxApp/TrayRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using testing::ElementsAre;

namespace {

struct TrayMenu : testing::Test {
    StoreChanges changes;
    AppState state{changes};

    SyncUnit addUnit(const std::string& name) {
        SyncUnit unit;
        unit.id = Uuid::random();
        unit.name = name;
        state.configuration.change([&](AppConfiguration& current) { current.units.push_back(unit); });
        return unit;
    }
    void mount(const std::string& name) {
        const Uuid id = Uuid::random();
        state.mounted.change([&](auto& mounted) {
            mounted.emplace(id, SnapshotMount::Mounted{.id = id, .displayName = name});
        });
    }
    std::vector<std::string> texts() const {
        std::vector<std::string> result;
        for (const TrayRow& row : trayRows(state))
            result.push_back(row.isLine ? "-" : row.text.toStdString());
        return result;
    }
    TrayRow row(const std::string& text) const {
        for (const TrayRow& each : trayRows(state))
            if (each.text.toStdString() == text)
                return each;
        ADD_FAILURE() << "no row " << text;
        return {};
    }
};

} // namespace

TEST_F(TrayMenu, leadsToTheWindowTheSettingsAndTheEndBeforeThereIsABackup) {
    EXPECT_THAT(texts(), ElementsAre("Your backup companion", "Open Marrowbox", "-", "-", "Settings",
                                     "Quit Marrowbox"));
    EXPECT_EQ(traySymbol(state), "cloud.checkmark");
}

TEST_F(TrayMenu, hasARowForEachUnitInTheirOrder) {
    addUnit("Photos");
    const SyncUnit papers = addUnit("Papers");
    EXPECT_THAT(texts(), ElementsAre("Your backup companion", "Open Marrowbox", "-", "Back up Photos",
                                     "Back up Papers", "-", "Settings", "Quit Marrowbox"));
    EXPECT_EQ(row("Back up Papers").command, TrayCommand::Any(TrayCommand::BackUp{papers.id}));
    EXPECT_TRUE(row("Back up Papers").isEnabled);
}

TEST_F(TrayMenu, tellsOfTheRunningBackupAndOffersToCancelIt) {
    const SyncUnit papers = addUnit("Papers");
    state.activeUnitID.set(papers.id);
    state.progress.set("Downloading 3 of 7…");
    EXPECT_THAT(texts(), ElementsAre("Downloading 3 of 7…", "Open Marrowbox", "-", "Back up Papers",
                                     "Cancel backup", "-", "Settings", "Quit Marrowbox"));
    EXPECT_FALSE(row("Back up Papers").isEnabled);
    EXPECT_EQ(traySymbol(state), "arrow.triangle.2.circlepath.cloud");
}

TEST_F(TrayMenu, beginsWithTheStatusAlsoBeforeARunHasAnythingToSay) {
    state.activeUnitID.set(addUnit("Papers").id);
    EXPECT_FALSE(trayRows(state).front().isLine);
}

TEST_F(TrayMenu, listsMountedSnapshotsByName) {
    mount("Marrowbox Photos");
    mount("Marrowbox Papers");
    EXPECT_THAT(texts(),
                ElementsAre("Your backup companion", "Open Marrowbox", "-", "-", "Mounted snapshots",
                            "Marrowbox Papers", "Marrowbox Photos", "-", "Settings", "Quit Marrowbox"));
    const TrayRow mounted = row("Marrowbox Papers");
    ASSERT_EQ(mounted.children.size(), 2U);
    EXPECT_EQ(mounted.children[0].text, "Open in file manager");
    EXPECT_EQ(mounted.children[1].text, "Eject");
    EXPECT_EQ(mounted.children[1].icon, "eject");
}

TEST_F(TrayMenu, countsTheMailsThatWait) {
    RunRecord waiting;
    waiting.notify = true;
    waiting.outcome = RunOutcome::failed;
    state.configuration.change([&](AppConfiguration& current) { current.runs = {waiting, waiting}; });
    EXPECT_THAT(texts(), testing::Contains("2 email summaries waiting to send"));
    state.configuration.change([&](AppConfiguration& current) { current.runs.assign(1200, waiting); });
    EXPECT_THAT(texts(), testing::Contains("1,200 email summaries waiting to send"));
}

} // namespace marrowbox
