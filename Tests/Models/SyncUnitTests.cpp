#include "Models/SyncUnit.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

constexpr Date now{700'000'000.5};

SyncUnit describedUnit() {
    SyncUnit unit;
    unit.id = Uuid::random();
    unit.name = "Photos";
    unit.accountID = "account";
    unit.source = {.id = "root", .name = "My Drive"};
    unit.destinationPath = "/media/disk";
    unit.schedule = {.frequency = ScheduleFrequency::hourly};
    return unit;
}

} // namespace

TEST(SyncUnit, reportsEverythingInBlueUnlessToldOtherwise) {
    SyncUnit unit = describedUnit();
    EXPECT_EQ(unit.notificationPolicy(), NotificationPolicy::all);
    EXPECT_EQ(unit.accent(), AccentTheme::blue);
    unit.notifications = NotificationPolicy::off;
    unit.theme = AccentTheme::coral;
    EXPECT_EQ(unit.notificationPolicy(), NotificationPolicy::off);
    EXPECT_EQ(unit.accent(), AccentTheme::coral);
}

TEST(SyncUnit, isDueByItsScheduleFromNowOn) {
    const Calendar calendar("Etc/UTC", "en_US");
    SyncUnit described = describedUnit();
    EXPECT_EQ(withFirstRun(described, now, calendar).nextRun, now + 3600);
    described.schedule = {.frequency = ScheduleFrequency::daily, .hour = 9};
    EXPECT_EQ(withFirstRun(described, now, calendar).nextRun, described.schedule.next(now, calendar));
}

TEST(SyncUnit, isNeverDueWhenManual) {
    SyncUnit described = describedUnit();
    described.schedule.frequency = ScheduleFrequency::manual;
    described.nextRun = now;
    EXPECT_EQ(withFirstRun(described, now, Calendar("Etc/UTC", "en_US")).nextRun, std::nullopt);
}

TEST(SyncUnit, isNewWithoutTheTracesOfAnOldOne) {
    SyncUnit described = describedUnit();
    described.isEnabled = false;
    described.lastDigestAt = now;
    const SyncUnit unit = withFirstRun(described, now, Calendar("Etc/UTC", "en_US"));
    EXPECT_FALSE(unit.isEnabled);
    EXPECT_FALSE(unit.lastDigestAt);
    described.isEnabled.reset();
    described.lastDigestAt.reset();
    described.nextRun = unit.nextRun;
    EXPECT_EQ(unit, described) << "all else stays as it was described";
}

} // namespace marrowbox
