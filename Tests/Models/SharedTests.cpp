#include "Models/Shared.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace marrowbox {

namespace {

/// A record that tells, through its pointer's count, how many of it are alive.
struct Counted {
    std::shared_ptr<int> number;
};

} // namespace

TEST(Shared, liesOnceForAllCopies) {
    const auto number = std::make_shared<int>(7);
    {
        const Shared<Counted> first(Counted{number});
        const Shared<Counted> second = first; // NOLINT: the copy is what is looked at
        EXPECT_EQ(&*first, &*second);
        EXPECT_EQ(number.use_count(), 2);
    }
    EXPECT_EQ(number.use_count(), 1);
}

TEST(Shared, isOnePointerWide) {
    EXPECT_EQ(sizeof(Shared<Counted>), sizeof(void*));
}

TEST(Shared, isEqualWhenTheRecordsAre) {
    const Shared<std::string> first(std::string("text"));
    EXPECT_EQ(first, Shared<std::string>(std::string("text")));
    EXPECT_NE(first, Shared<std::string>(std::string("other")));
}

TEST(Shared, letsGoOfWhatItHeldWhenAssigned) {
    const auto old = std::make_shared<int>(1);
    const auto fresh = std::make_shared<int>(2);
    Shared<Counted> shared(Counted{old});
    shared = Shared<Counted>(Counted{fresh});
    EXPECT_EQ(old.use_count(), 1);
    EXPECT_EQ(*shared->number, 2);
}

TEST(Shared, survivesAssignmentToItself) {
    Shared<std::string> shared(std::string("text"));
    const Shared<std::string>& itself = shared;
    shared = itself;
    EXPECT_EQ(*shared, "text");
}

TEST(Shared, isMovedInLists) {
    const auto number = std::make_shared<int>(7);
    {
        std::vector<Shared<Counted>> list;
        for (int index = 0; index < 100; ++index)
            list.emplace_back(Counted{number});
        list.erase(list.begin(), list.begin() + 50);
        EXPECT_EQ(number.use_count(), 51);
    }
    EXPECT_EQ(number.use_count(), 1);
}

TEST(Shared, isCopiedAndDroppedByManyThreads) {
    const auto number = std::make_shared<int>(7);
    {
        const Shared<Counted> shared(Counted{number});
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread)
            threads.emplace_back([mine = shared] {
                for (int round = 0; round < 5'000; ++round) {
                    const Shared<Counted> copy = mine; // NOLINT: the copy is what is tested
                    ASSERT_EQ(*copy->number, 7);
                }
            });
    }
    EXPECT_EQ(number.use_count(), 1);
}

} // namespace marrowbox
