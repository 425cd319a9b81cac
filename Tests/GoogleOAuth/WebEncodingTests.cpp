#include "GoogleOAuth/WebEncoding.h"

#include "Models/BackupError.h"
#include "Support/Thrown.h"

#include <gtest/gtest.h>

namespace marrowbox::test {

TEST(WebEncoding, writesAFormSortedAndEscaped) {
    EXPECT_EQ(WebEncoding::form({{"b", "x y"}, {"a", "1&2"}}), "a=1%262&b=x%20y");
}

TEST(WebEncoding, writesAnEmptyFormAsNothing) {
    EXPECT_EQ(WebEncoding::form({}), "");
}

TEST(WebEncoding, keepsAnEmptyValue) {
    EXPECT_EQ(WebEncoding::form({{"code", ""}}), "code=");
}

TEST(WebEncoding, escapesTheBytesOfUnicode) {
    EXPECT_EQ(WebEncoding::form({{"ä", "+/%"}}), "%C3%A4=%2B%2F%25");
}

TEST(WebEncoding, writesURLSafeBase64WithoutPadding) {
    EXPECT_EQ(WebEncoding::base64URL("\xFB\xFF"), "-_8");
    EXPECT_EQ(WebEncoding::base64URL(""), "");
    EXPECT_EQ(WebEncoding::base64URL("abc"), "YWJj");
    EXPECT_EQ(WebEncoding::base64URL("a"), "YQ");
}

TEST(WebEncoding, drawsFreshRandomTextOf43Characters) {
    const std::string first = WebEncoding::random();
    EXPECT_EQ(first.size(), 43U);
    EXPECT_EQ(first.find_first_of("+/="), std::string::npos);
    EXPECT_NE(WebEncoding::random(), first);
}

TEST(WebEncoding, drawsAll256Bits) {
    const std::string text =
        WebEncoding::random([](std::size_t count) { return std::string(count, '\xFF'); });
    EXPECT_EQ(text, std::string(42, '_') + "8");
}

TEST(WebEncoding, saysWhenTheGeneratorFails) {
    const auto failing = [](std::size_t) -> std::optional<std::string> { return std::nullopt; };
    EXPECT_EQ(thrown<BackupError>([&] { WebEncoding::random(failing); }),
              "Could not generate a secure sign-in request.");
}

} // namespace marrowbox::test
