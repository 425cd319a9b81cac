#include "Life/LongLife.h"
#include "Support/ScratchFolder.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace test;

constexpr LongLife::Terms fewFiles{.files = 20, .runsPerDay = 4, .retentionDays = 3};

} // namespace

TEST(LongLife, keepsTheWholeHistoryOfItsRetentionAndNothingElse) {
    const ScratchFolder destination;
    const ScratchFolder restored;
    LongLife life(destination.path(), fewFiles);
    for (int day = 1; day <= 20; ++day) {
        life.liveOneDay();
        ASSERT_EQ(life.fault(restored / std::to_string(day)), "") << "on day " << day;
    }
    EXPECT_EQ(life.runs(), 80U);
    EXPECT_EQ(life.footprint().snapshots, 13U);
}

TEST(LongLife, needsNoMoreOnceItsRetentionIsReached) {
    const ScratchFolder destination;
    LongLife life(destination.path(), fewFiles);
    life.liveOneDay();
    const std::size_t descriptors = life.footprint().descriptors;
    for (int day = 2; day <= 4; ++day)
        life.liveOneDay();
    const LongLife::Footprint reached = life.footprint();
    for (int day = 5; day <= 20; ++day)
        life.liveOneDay();
    const LongLife::Footprint end = life.footprint();
    EXPECT_EQ(end.descriptors, descriptors);
    EXPECT_EQ(end.snapshots, reached.snapshots);
    // From one run to the next three files have contents that they did not have.
    EXPECT_LE(end.objects, fewFiles.files + 3 * (end.snapshots - 1));
    // So few files differ much in size, and they never pile up.
    EXPECT_LE(static_cast<double>(end.bytes), 1.25 * static_cast<double>(reached.bytes));
}

} // namespace marrowbox
