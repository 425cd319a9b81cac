#include "StringLiterals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

using test::stringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(StringLiterals, areTheTextsInQuotes) {
    EXPECT_THAT(stringLiterals(R"(f("one", "two"); text: 'three')"), ElementsAre("one", "two", "three"));
    EXPECT_THAT(stringLiterals(R"(say("a \"b\" c"))"), ElementsAre("a \"b\" c"));
}

TEST(StringLiterals, areJoinedWhenOnlyBlanksAreBetweenThem) {
    EXPECT_THAT(stringLiterals("f(\"one \"\n   \"two\", \"three\")"), ElementsAre("one two", "three"));
}

TEST(StringLiterals, mayBeRaw) {
    EXPECT_THAT(stringLiterals("auto a = R\"x(one \")\" // two)x\"; \"three\""),
                ElementsAre("one \")\" // two", "three"));
}

TEST(StringLiterals, areNotInCommentsOrNumbers) {
    EXPECT_THAT(stringLiterals("// \"one\"\n/* 'two' \" */ int three = 1'000'000;"), IsEmpty());
}

TEST(StringLiterals, endWithTheSource) {
    EXPECT_THAT(stringLiterals("\"cut o\\"), testing::SizeIs(1));
    EXPECT_THAT(stringLiterals("R\"(cut"), ElementsAre("cut"));
    EXPECT_THAT(stringLiterals("/* cut"), IsEmpty());
}

} // namespace marrowbox
