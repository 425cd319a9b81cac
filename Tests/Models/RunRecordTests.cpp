#include "Models/RunRecord.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

constexpr Date start{700'000'000.5};

SyncUnit photosUnit() {
    SyncUnit unit;
    unit.id = Uuid::random();
    unit.name = "Photos";
    unit.destinationPath = "/media/disk";
    return unit;
}

} // namespace

TEST(RunRecord, beginsRunningWithNothingDone) {
    const SyncUnit unit = photosUnit();
    const RunRecord record = beginRunRecord(unit, "me@example.com", true, start);
    RunRecord expected;
    expected.id = record.id;
    expected.unitID = unit.id;
    expected.unitName = "Photos";
    expected.accountEmail = "me@example.com";
    expected.destination = "/media/disk";
    expected.startedAt = start;
    expected.notify = true;
    EXPECT_EQ(record, expected);
    EXPECT_EQ(record.outcome, RunOutcome::running);
    EXPECT_FALSE(record.endedAt);
    EXPECT_EQ(record.summary, RunSummary());
    EXPECT_EQ(record.emailAttempts, 0);
    EXPECT_FALSE(record.emailSent);
}

TEST(RunRecord, hasAnIdentityOfItsOwn) {
    const SyncUnit unit = photosUnit();
    EXPECT_NE(beginRunRecord(unit, "", false, start).id, beginRunRecord(unit, "", false, start).id);
}

} // namespace marrowbox
