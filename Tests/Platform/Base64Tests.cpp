#include "Platform/Base64.h"

#include "Platform/RandomBytes.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(Base64, givesTheKnownTexts) {
    struct {
        const char* bytes;
        const char* text;
    } constexpr rows[] = {{"", ""},
                          {"f", "Zg=="},
                          {"fo", "Zm8="},
                          {"foo", "Zm9v"},
                          {"foob", "Zm9vYg=="},
                          {"fooba", "Zm9vYmE="},
                          {"foobar", "Zm9vYmFy"}};
    for (const auto& row : rows) {
        EXPECT_EQ(base64Encoded(row.bytes), row.text);
        EXPECT_EQ(base64Decoded(row.text), row.bytes);
    }
    EXPECT_EQ(base64Encoded("\xFB\xFF\xFE"), "+//+");
}

TEST(Base64, bringsBackBytesOfEveryLength) {
    for (std::size_t length = 0; length < 300; ++length) {
        const std::string bytes = randomBytes(length).value();
        ASSERT_EQ(base64Decoded(base64Encoded(bytes)), bytes) << length;
    }
    const std::string zeros(7, '\0');
    EXPECT_EQ(base64Decoded(base64Encoded(zeros)), zeros);
}

TEST(Base64, writesLongTextsWithoutLineBreaks) {
    EXPECT_EQ(base64Encoded(std::string(300, 'x')).find('\n'), std::string::npos);
}

TEST(Base64, refusesMalformedText) {
    for (const char* text : {"Z", "Zg", "Zg=", "Zg===", "=", "====", "Zg==Zg==", "Z===", "Zm9v\n", "Zm9v Zm9",
                             " Zm9v", "Zm9\n", "-__-", "Zm9ä", "Zh==", "Zm9=", "Zg=v", "*m9v"})
        EXPECT_EQ(base64Decoded(text), std::nullopt) << text;
    EXPECT_EQ(base64Decoded(std::string_view("Zm\0v", 4)), std::nullopt);
}

} // namespace marrowbox
