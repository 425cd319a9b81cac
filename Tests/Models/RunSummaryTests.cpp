#include "Models/RunSummary.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(RunSummary, countsAddedUpdatedAndRemovedAsChanged) {
    const RunSummary summary{
        .added = 1, .updated = 20, .removed = 300, .unchanged = 4000, .exported = 50'000};
    EXPECT_EQ(summary.changed(), 321);
}

TEST(RunSummary, hasNothingChangedWithOnlyUnchangedAndExported) {
    EXPECT_EQ((RunSummary{.unchanged = 7, .exported = 3}).changed(), 0);
    EXPECT_EQ(RunSummary().changed(), 0);
}

} // namespace marrowbox
