#include "Models/Uuid.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(Uuid, readsBothCasesAndWritesUpperCase) {
    const auto id = Uuid::parse("0123abcd-4567-89ef-0123-456789abcdef");
    ASSERT_TRUE(id);
    EXPECT_EQ(id->text(), "0123ABCD-4567-89EF-0123-456789ABCDEF");
    EXPECT_EQ(Uuid::parse(id->text()), id);
}

TEST(Uuid, refusesEveryOtherForm) {
    EXPECT_FALSE(Uuid::parse(""));
    EXPECT_FALSE(Uuid::parse("0123ABCD456789EF0123456789ABCDEF"));
    EXPECT_FALSE(Uuid::parse("0123ABCD-4567-89EF-0123-456789ABCDEG"));
    EXPECT_FALSE(Uuid::parse("0123ABCD-4567-89EF-0123-456789ABCDEF "));
    EXPECT_FALSE(Uuid::parse("0123ABCD+4567-89EF-0123-456789ABCDEF"));
}

TEST(Uuid, isFreshEachTime) {
    EXPECT_NE(Uuid::random(), Uuid::random());
}

} // namespace marrowbox
