#include "Marrowbox/SetupViews/UnitSettingsModel.h"

#include "SetupWorld.h"

#include <gtest/gtest.h>

namespace marrowbox {

using test::SetupWorld;

namespace {

/// Anna's unit, its settings open.
struct OpenSettings {
    OpenSettings() : OpenSettings(std::nullopt) {}
    explicit OpenSettings(std::optional<std::int64_t> retentionDays) {
        AppConfiguration configuration = test::oneUnit(world);
        configuration.units[0].retentionDays = retentionDays;
        world.write(configuration);
        world.start();
        sheet = std::make_unique<UnitSettingsModel>(world.store, world.unit());
        QObject::connect(sheet.get(), &UnitSettingsModel::dismissed, [this] { ++dismissals; });
    }

    SetupWorld world;
    std::unique_ptr<UnitSettingsModel> sheet;
    int dismissals = 0;
};

} // namespace

TEST(UnitSettingsModel, storesNothingBeforeItIsSaved) {
    OpenSettings open;
    const AppConfiguration before = open.world.configuration();
    open.sheet->setName("Archive");
    open.sheet->setFrequency("weekly");
    open.sheet->setWeekday(3);
    open.sheet->setHour(22);
    open.sheet->setMinute(45);
    open.sheet->setHistory(90);
    open.sheet->setPolicy("daily");
    open.sheet->setTheme("coral");
    EXPECT_EQ(open.world.configuration(), before);
    open.sheet->dismiss();
    EXPECT_EQ(open.dismissals, 1);
    EXPECT_EQ(open.world.configuration(), before);
}

TEST(UnitSettingsModel, savesWhatWasEdited) {
    OpenSettings open;
    open.sheet->setName(" Archive ");
    open.sheet->setFrequency("weekly");
    open.sheet->setWeekday(3);
    open.sheet->setHour(22);
    open.sheet->setMinute(45);
    open.sheet->setPolicy("daily");
    open.sheet->setTheme("coral");
    open.sheet->save();
    EXPECT_EQ(open.dismissals, 1);
    const SyncUnit& unit = open.world.unit();
    EXPECT_EQ(unit.name, "Archive");
    EXPECT_EQ(
        unit.schedule,
        (BackupSchedule{.frequency = ScheduleFrequency::weekly, .hour = 22, .minute = 45, .weekday = 3}));
    EXPECT_EQ(unit.nextRun, unit.schedule.next(open.world.time.now(), Calendar(open.world.zone, "en_US")));
    EXPECT_EQ(unit.notifications, NotificationPolicy::daily);
    EXPECT_EQ(unit.theme, AccentTheme::coral);
}

TEST(UnitSettingsModel, leavesWhatARunChangedMeanwhile) {
    OpenSettings open;
    open.world.store->run(open.world.unit(), 0);
    open.world.time.settle();
    SyncUnit moved = open.world.unit();
    moved.nextRun = open.world.time.now() + 12345;
    moved.lastDigestAt = open.world.time.now();
    open.world.store->updateUnit(moved);
    open.sheet->setName("Archive");
    open.sheet->save();
    EXPECT_EQ(open.world.unit().nextRun, moved.nextRun);
    EXPECT_EQ(open.world.unit().lastDigestAt, moved.lastDigestAt);
    EXPECT_EQ(open.world.unit().name, "Archive");
}

TEST(UnitSettingsModel, leavesAPolicyAndAThemeUnsetThatNobodyPicked) {
    OpenSettings open;
    open.sheet->setPolicy("all");
    open.sheet->setTheme("blue");
    open.sheet->setName("Archive");
    open.sheet->save();
    EXPECT_EQ(open.world.unit().notifications, std::nullopt);
    EXPECT_EQ(open.world.unit().theme, std::nullopt);
}

TEST(UnitSettingsModel, asksForTheTimeThatTheFrequencyNeeds) {
    OpenSettings open;
    struct Row {
        const char* frequency;
        bool hour, minute, weekday;
    };
    for (const Row& row : {Row{"manual", false, false, false}, Row{"tenMinutes", false, false, false},
                           Row{"hourly", false, true, false}, Row{"daily", true, true, false},
                           Row{"weekly", true, true, true}}) {
        open.sheet->setFrequency(row.frequency);
        EXPECT_EQ(open.sheet->asksForHour(), row.hour) << row.frequency;
        EXPECT_EQ(open.sheet->asksForMinute(), row.minute) << row.frequency;
        EXPECT_EQ(open.sheet->asksForWeekday(), row.weekday) << row.frequency;
    }
}

TEST(UnitSettingsModel, offersTheFrequenciesTheWeekdaysAndThePolicies) {
    OpenSettings open;
    EXPECT_EQ(UnitSettingsModel::frequencies().size(), 5);
    EXPECT_EQ(UnitSettingsModel::frequencies().at(1).toMap().value("title"), "Every 10 minutes");
    EXPECT_EQ(open.sheet->weekdays().at(0).toMap().value("title"), "Sunday");
    EXPECT_EQ(open.sheet->weekdays().at(6).toMap().value("value"), 7);
    EXPECT_EQ(UnitSettingsModel::policies().at(2).toMap().value("title"), "Off");
    EXPECT_EQ(open.sheet->policyDetail(), "An email after every snapshot.");
    open.sheet->setPolicy("off");
    EXPECT_EQ(open.sheet->policyDetail(), "No email for this backup.");
}

TEST(UnitSettingsModel, savesALongerHistoryAtOnce) {
    OpenSettings open(30);
    open.sheet->setHistory(365);
    open.sheet->save();
    EXPECT_FALSE(open.sheet->confirmsRetention());
    EXPECT_EQ(open.world.unit().retentionDays, 365);
}

TEST(UnitSettingsModel, savesAHistoryWithoutEndAtOnce) {
    OpenSettings open(30);
    open.sheet->setHistory(0);
    open.sheet->save();
    EXPECT_EQ(open.dismissals, 1);
    EXPECT_EQ(open.world.unit().retentionDays, std::nullopt);
}

TEST(UnitSettingsModel, asksBeforeItShortensAHistoryWithoutEnd) {
    OpenSettings open;
    open.sheet->setHistory(30);
    open.sheet->save();
    EXPECT_TRUE(open.sheet->confirmsRetention());
    EXPECT_EQ(open.dismissals, 0);
    EXPECT_EQ(open.world.unit().retentionDays, std::nullopt);
    open.sheet->keepHistory();
    EXPECT_FALSE(open.sheet->confirmsRetention());
    EXPECT_EQ(open.dismissals, 0);
    EXPECT_EQ(open.world.unit().retentionDays, std::nullopt);
    open.sheet->save();
    open.sheet->applyHistoryLimit();
    EXPECT_EQ(open.dismissals, 1);
    EXPECT_EQ(open.world.unit().retentionDays, 30);
}

TEST(UnitSettingsModel, asksBeforeItShortensALimitedHistoryAndNotWhenItStays) {
    OpenSettings open(90);
    open.sheet->setHistory(30);
    open.sheet->save();
    EXPECT_TRUE(open.sheet->confirmsRetention());
    open.sheet->keepHistory();
    open.sheet->setHistory(90);
    open.sheet->save();
    EXPECT_FALSE(open.sheet->confirmsRetention());
    EXPECT_EQ(open.dismissals, 1);
}

TEST(UnitSettingsModel, countsALimitBelowOneDayAsForEver) {
    OpenSettings open(0);
    EXPECT_EQ(open.sheet->history(), 0);
    open.sheet->setHistory(30);
    open.sheet->save();
    EXPECT_TRUE(open.sheet->confirmsRetention());
}

TEST(UnitSettingsModel, offersALimitThatTheUnitHasAlready) {
    OpenSettings open(45);
    ASSERT_EQ(open.sheet->histories().size(), 5);
    EXPECT_EQ(open.sheet->histories().at(4).toMap().value("title"), "45 days");
    EXPECT_EQ(open.sheet->history(), 45);
    OpenSettings usual(90);
    EXPECT_EQ(usual.sheet->histories().size(), 4);
}

TEST(UnitSettingsModel, cannotSaveABackupWithoutAName) {
    OpenSettings open;
    open.sheet->setName("  ");
    EXPECT_FALSE(open.sheet->canSave());
    open.sheet->save();
    EXPECT_EQ(open.dismissals, 0);
    EXPECT_EQ(open.world.unit().name, "Papers");
}

TEST(UnitSettingsModel, closesWhenTheBackupWasRemovedMeanwhile) {
    OpenSettings open;
    open.world.store->removeUnit(open.world.unit());
    open.sheet->setName("Archive");
    open.sheet->save();
    EXPECT_EQ(open.dismissals, 1);
    EXPECT_TRUE(open.world.configuration().units.empty());
}

TEST(UnitSettingsModel, seesWhetherAllEmailIsOff) {
    OpenSettings open;
    EXPECT_TRUE(open.sheet->emailIsOff());
    int changes = 0;
    QObject::connect(open.sheet.get(), &UnitSettingsModel::changed, [&changes] { ++changes; });
    open.world.store->saveEmail(test::mailToAnna());
    EXPECT_FALSE(open.sheet->emailIsOff());
    EXPECT_GT(changes, 0);
}

TEST(UnitSettingsModel, opensTheEmailSettingsOnceItsSheetIsGone) {
    OpenSettings open;
    const AppState& state = open.world.state();
    open.sheet->openGlobalEmailSettings();
    EXPECT_EQ(open.dismissals, 1);
    open.sheet.reset();
    open.world.time.advance(0.24);
    EXPECT_FALSE(*state.showSettings);
    open.world.time.advance(0.02);
    EXPECT_TRUE(*state.showSettings);
    EXPECT_EQ(*state.settingsTab, 2);
}

} // namespace marrowbox
