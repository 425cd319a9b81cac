#include "Platform/UserLocale.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(UserLocale, isTheFirstOfItsThreeVariablesThatIsNotEmpty) {
    EXPECT_EQ(userLocale({.all = "fr_FR", .time = "de_DE", .lang = "en_US"}), "fr_FR");
    EXPECT_EQ(userLocale({.all = "", .time = "de_DE", .lang = "en_US"}), "de_DE");
    EXPECT_EQ(userLocale({.lang = "en_US"}), "en_US");
}

TEST(UserLocale, leavesOutTheCharacterSetAndItsVariants) {
    EXPECT_EQ(userLocale({.lang = "de_DE.UTF-8"}), "de_DE");
    EXPECT_EQ(userLocale({.lang = "de_DE@euro"}), "de_DE");
}

TEST(UserLocale, isTheOneOfMachinesWhereNothingElseIsChosen) {
    EXPECT_EQ(userLocale({}), "en_US_POSIX");
    EXPECT_EQ(userLocale({.lang = "C.UTF-8"}), "en_US_POSIX");
    EXPECT_EQ(userLocale({.all = "POSIX", .lang = "de_DE"}), "en_US_POSIX");
}

} // namespace marrowbox
