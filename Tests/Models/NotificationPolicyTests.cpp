#include "Models/NotificationPolicy.h"

#include "Models/JSONRules.h"
#include "Models/NotificationDigest.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(NotificationPolicy, standsInTheOrderOfThePicker) {
    std::string names;
    for (const auto policy : allNotificationPolicies)
        names += std::string(enumerationName(policy)) + ":" + title(policy) + " ";
    EXPECT_EQ(names, "all:All daily:Daily off:Off ");
}

TEST(NotificationPolicy, explainsItself) {
    EXPECT_EQ(detail(NotificationPolicy::all), "An email after every snapshot.");
    EXPECT_EQ(detail(NotificationPolicy::daily),
              "One email covering every snapshot since the last summary, and never more than one a day.");
    EXPECT_EQ(detail(NotificationPolicy::off), "No email for this backup.");
}

TEST(NotificationDigest, isDueWhenNoneWasSentYet) {
    EXPECT_TRUE(NotificationDigest::isDue(std::nullopt, Date{0}));
}

TEST(NotificationDigest, isDueOnceExactlyADayHasPassed) {
    constexpr Date sent{1'000};
    EXPECT_EQ(NotificationDigest::interval, 86'400);
    EXPECT_TRUE(NotificationDigest::isDue(sent, sent + 86'400));
    EXPECT_TRUE(NotificationDigest::isDue(sent, sent + 86'401));
    EXPECT_FALSE(NotificationDigest::isDue(sent, sent + 86'399.5));
}

TEST(NotificationDigest, isNotDueWhenTheClockWasSetBack) {
    EXPECT_FALSE(NotificationDigest::isDue(Date{1'000}, Date{0}));
}

TEST(NotificationDigest, followsAnIntervalOfTheCaller) {
    EXPECT_TRUE(NotificationDigest::isDue(Date{0}, Date{60}, 60));
    EXPECT_FALSE(NotificationDigest::isDue(Date{0}, Date{59}, 60));
}

} // namespace marrowbox
