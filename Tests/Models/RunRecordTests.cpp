#include "Models/RunRecord.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

constexpr Date now{700'000'000.5};

SyncUnit describedUnit() {
    SyncUnit unit;
    unit.id = Uuid::random();
    unit.name = "Photos";
    unit.destinationPath = "/media/disk";
    return unit;
}

} // namespace

TEST(RunRecord, beginsRunningWithNothingDone) {
    const SyncUnit unit = describedUnit();
    const RunRecord record = beginRunRecord(unit, "me@example.com", true, now);
    RunRecord expected;
    expected.id = record.id;
    expected.unitID = unit.id;
    expected.unitName = "Photos";
    expected.accountEmail = "me@example.com";
    expected.destination = "/media/disk";
    expected.startedAt = now;
    expected.notify = true;
    EXPECT_EQ(record, expected);
    EXPECT_EQ(record.outcome, RunOutcome::running);
    EXPECT_FALSE(record.endedAt);
    EXPECT_EQ(record.summary, RunSummary());
    EXPECT_EQ(record.emailAttempts, 0);
    EXPECT_FALSE(record.emailSent);
}

TEST(RunRecord, hasAnIdentityOfItsOwn) {
    const SyncUnit unit = describedUnit();
    EXPECT_NE(beginRunRecord(unit, "", false, now).id, beginRunRecord(unit, "", false, now).id);
}

} // namespace marrowbox
