#include "Models/EmailAddress.h"

#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <vector>

namespace marrowbox {

TEST(EmailAddress, acceptsDotsAndAPlusSignBeforeTheAtAndAHyphenInTheDomain) {
    for (const char* address : {"a@b.de", "first.last+tag@my-domain.example", "a'b@x.co", "A1@1.museum",
                                "!#$%&'*+/=?^_`{|}~-@a.b.c.example"})
        EXPECT_TRUE(isEmailAddress(address)) << address;
}

TEST(EmailAddress, refusesEverythingElse) {
    for (const char* address :
         {"",        "@",       "a@",       "@b.de",        "a",      "a@localhost", "a b@c.de",
          "a@-b.de", "a@b-.de", "a@.b.de",  "a@b.d",        "a@b.d1", "a@b.de.",     "a@b@c.de",
          " a@b.de", "a@b.de ", "a@b_c.de", "\"a b\"@c.de", "ä@b.de", "a@ö.de",      "a@b..de"})
        EXPECT_FALSE(isEmailAddress(address)) << address;
}

TEST(EmailAddress, refusesWhatCouldBeginAnotherHeader) {
    for (const char* address : {"a@b.de\n", "a@b.de\r\nBcc: c@d.de", "\na@b.de", "a\r@b.de", "a@b.d\ne",
                                "a@b.de\r", "a@b.de>, <c@d.de", "a@b.de,c@d.de"})
        EXPECT_FALSE(isEmailAddress(address)) << address;
    EXPECT_FALSE(isEmailAddress(std::string_view("a@b.de\0", 7)));
}

// Every text of up to seven of these characters, against the pattern that defines an address.
TEST(EmailAddress, followsItsPatternThroughout) {
    const std::regex pattern("[A-Za-z0-9.!#$%&'*+/=?^_`{|}~-]+@[A-Za-z0-9](?:[A-Za-z0-9.-]*[A-Za-z0-9])?"
                             "\\.[A-Za-z]{2,}");
    constexpr std::string_view letters = "a@.-";
    int addresses = 0;
    std::vector<std::string> texts = {""};
    for (int length = 0; length < 7; ++length) {
        std::vector<std::string> longer;
        for (const std::string& text : texts)
            for (const char letter : letters)
                longer.push_back(text + letter);
        texts = std::move(longer);
        for (const std::string& text : texts) {
            const bool matches = std::regex_match(text, pattern);
            addresses += matches;
            EXPECT_EQ(isEmailAddress(text), matches) << text;
        }
    }
    EXPECT_GT(addresses, 10);
}

TEST(EmailAddress, takesATextOfAnyLength) {
    EXPECT_TRUE(isEmailAddress(std::string(1'000'000, 'a') + "@" + std::string(1'000'000, 'b') + ".de"));
}

} // namespace marrowbox
